// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/types.h>
#include <thread>
#include <unistd.h>

/// Tells whether a thread of this process has gone to sleep in the kernel. Made when the thread
/// runs already; needs no further descriptor to look.
class SleepingThread {
public:
    explicit SleepingThread(pid_t thread)
        : status(open(("/proc/self/task/" + std::to_string(thread) + "/stat").c_str(),
                      O_RDONLY | O_CLOEXEC)) {
        if (status < 0) {
            throw std::runtime_error("no such thread");
        }
    }
    ~SleepingThread() { close(status); }
    SleepingThread(const SleepingThread&) = delete;
    SleepingThread& operator=(const SleepingThread&) = delete;

    /// Waits until it sleeps; false when it has not done so in half a minute.
    [[nodiscard]] bool waitUntilAsleep() const {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!isAsleep()) {
            if (std::chrono::steady_clock::now() > limit) {
                return false;
            }
            std::this_thread::yield();
        }
        return true;
    }

private:
    [[nodiscard]] bool isAsleep() const {
        std::array<char, 128> text{};
        const ssize_t size = pread(status, text.data(), text.size(), 0);
        const std::string line(text.data(), size < 0 ? 0 : static_cast<size_t>(size));
        const size_t name = line.rfind(") ");
        return name != std::string::npos && line.at(name + 2) == 'S';
    }

    int status;
};
