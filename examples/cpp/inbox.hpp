// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Where the C++ examples keep notifications until main() asks for them: they arrive on a thread of
// the library's own, and are valid only while the handler runs.
#pragma once

#include <veltrasdk/VeltraSDK.hpp>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <queue>
#include <vector>

class Inbox {
public:
    struct Item {
        NotificationKind kind;
        std::vector<uint8_t> frame;

        /// The notification as it came; valid as long as the item.
        [[nodiscard]] Notification notification() const {
            Notification record{};
            record.kind = kind;
            record.data = frame.data();
            record.size = frame.size();
            return record;
        }
    };

    /// For VeltraSDK::onNotification(): copies the notification, and returns.
    void put(const Notification& notification) {
        const std::lock_guard<std::mutex> lock(mutex);
        items.push({notification.kind, {notification.data, notification.data + notification.size}});
        arrived.notify_one();
    }

    /// Waits for the next notification of the kind, passing over others; nothing when none comes.
    std::optional<Item> take(NotificationKind kind) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        std::unique_lock<std::mutex> lock(mutex);
        while (arrived.wait_until(lock, limit, [this] { return !items.empty(); })) {
            Item item = std::move(items.front());
            items.pop();
            if (item.kind == kind) {
                return item;
            }
        }
        return std::nullopt;
    }

private:
    std::mutex mutex;
    std::condition_variable arrived;
    std::queue<Item> items;
};
