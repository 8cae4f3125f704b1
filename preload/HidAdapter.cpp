// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/HidAdapter.hpp"

#include <algorithm>

namespace virtual_adapter {

namespace {

using Clock = std::chrono::steady_clock;

/// What hidapi's libusb back end keeps: it drops the oldest report when one more arrives.
constexpr size_t hidapiQueueLength = 32;

} // namespace

HidAdapter::HidAdapter(const AdapterSettings& chosen)
    : settings(chosen), link(chosen.identity.variant, chosen.serialNumber, chosen.fault) {}

bool HidAdapter::isOnBus() {
    const std::lock_guard lock(mutex);
    return link.isOnBus();
}

bool HidAdapter::isOpen() {
    const std::lock_guard lock(mutex);
    return opened;
}

bool HidAdapter::open() {
    const std::lock_guard lock(mutex);
    if (opened || !isAccessible() || !link.isOnBus()) {
        return false;
    }
    opened = true;
    return true;
}

void HidAdapter::close() {
    const std::lock_guard lock(mutex);
    // What comes due later is for whoever opens next. Nothing here takes memory.
    const auto now = Clock::now();
    while (link.takeInputReport(now)) {
    }
    unread.clear();
    opened = false;
    changed.notify_all();
}

bool HidAdapter::write(const Bytes& report) {
    const std::lock_guard lock(mutex);
    // Readers look when the lock is free again, also when there is no memory for the answer.
    changed.notify_all();
    const bool written = opened && link.writeReport(report, Clock::now());
    receive();
    return written;
}

int HidAdapter::read(uint8_t* data, size_t size, int milliseconds) {
    std::unique_lock lock(mutex);
    const bool endless = milliseconds < 0;
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (opened) {
        receive();
        if (!unread.empty()) {
            return takeUnread(data, size);
        }
        if (!link.isOnBus()) {
            return -1;
        }
        if (!endless && Clock::now() >= deadline) {
            return 0;
        }
        const auto due = link.nextInputDue();
        if (endless && !due) {
            changed.wait(lock);
        } else {
            changed.wait_until(lock, endless ? *due : std::min(deadline, due.value_or(deadline)));
        }
    }
    return -1;
}

void HidAdapter::receive() {
    const auto now = Clock::now();
    while (auto report = link.takeInputReport(now)) {
        unread.push_back(std::move(*report));
        if (settings.fault.kind == FaultKind::LostReports && unread.size() > hidapiQueueLength) {
            unread.pop_front();
        }
    }
}

int HidAdapter::takeUnread(uint8_t* data, size_t size) {
    const Bytes report = std::move(unread.front());
    unread.pop_front();
    const size_t count = std::min(size, report.size());
    std::copy_n(report.begin(), count, data);
    return static_cast<int>(count);
}

} // namespace virtual_adapter
