// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/NotificationQueue.hpp"

#include "sdk/Engine.hpp"

#include <chrono>
#include <new>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace {

uint64_t now() {
    const auto sinceBoot = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::nanoseconds(sinceBoot).count());
}

} // namespace

int NotificationQueue::State::open(size_t bytes) {
    if (bytes < NotificationRing::minSize || bytes > NotificationRing::maxSize) {
        return none;
    }
    // Written here, so that the polling thread does not wait for the machine to find the memory.
    std::unique_ptr<uint8_t[]> memory(new (std::nothrow) uint8_t[bytes]());
    if (memory == nullptr) {
        return none;
    }
    const std::lock_guard<std::mutex> lock(mutex);
    if (descriptor != none) {
        return none;
    }
    const int opened = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (opened != none) {
        ring = NotificationRing(std::move(memory), bytes);
        descriptor = opened;
    }
    return opened;
}

bool NotificationQueue::State::isOpen(int queue) const {
    return queue != none && queue == descriptor;
}

void NotificationQueue::State::close(int queue) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!isOpen(queue)) {
        return;
    }
    makeReadable();
    ring = NotificationRing();
    descriptor = none;
}

template <typename Put>
void NotificationQueue::State::putIfOpen(const Put& put) {
    if (descriptor == none) {
        return;
    }
    const uint64_t time = now();
    const std::lock_guard<std::mutex> lock(mutex);
    if (descriptor == none) {
        return;
    }
    const bool wasEmpty = ring.isEmpty();
    put(time);
    if (wasEmpty && !ring.isEmpty()) {
        makeReadable();
    }
}

void NotificationQueue::State::put(NotificationKind kind, const uint8_t* frame, size_t size) {
    putIfOpen([=](uint64_t time) { ring.put(time, kind, frame, size); });
}

void NotificationQueue::State::putEndOfLink() {
    putIfOpen([this](uint64_t time) { ring.putEndOfLink(time); });
}

void NotificationQueue::State::makeReadable() const {
    eventfd_write(descriptor, 1);
}

void NotificationQueue::State::makeUnreadable() const {
    eventfd_t count = 0;
    eventfd_read(descriptor, &count);
}

NotificationQueue::NotificationQueue(VeltraSDK& sdk, size_t bytes)
    : state(sdk.engine->notificationQueue()), eventDescriptor(sdk.engine->openQueue(bytes)) {}

NotificationQueue::~NotificationQueue() {
    close();
    if (eventDescriptor != State::none) {
        ::close(eventDescriptor);
    }
}

bool NotificationQueue::take(Entry& entry) {
    return state->take(eventDescriptor, [&](const VeltraSDK_QueuedNotification& record) {
        entry.frame.resize(record.frameSize);
        entry.timeNanoseconds = record.timeNanoseconds;
        entry.lostBefore = record.lostBefore;
        entry.kind = record.kind;
        return std::pair(entry.frame.data(), entry.frame.size());
    });
}

bool NotificationQueue::take(VeltraSDK_QueuedNotification& notification, uint8_t* frame,
                             size_t capacity) {
    return state->take(eventDescriptor, [&](const VeltraSDK_QueuedNotification& record) {
        notification = record;
        return std::pair(frame, capacity);
    });
}

bool NotificationQueue::isOpen() const {
    return state->isOpen(eventDescriptor);
}

void NotificationQueue::close() {
    state->close(eventDescriptor);
}
