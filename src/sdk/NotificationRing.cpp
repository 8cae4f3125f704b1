// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/NotificationRing.hpp"

#include <algorithm>
#include <utility>

NotificationRing::NotificationRing(std::unique_ptr<uint8_t[]> memory, size_t capacity)
    : ring(std::move(memory)), size(capacity) {}

void NotificationRing::put(uint64_t timeNanoseconds, NotificationKind kind, const uint8_t* frame,
                           size_t frameSize) {
    const size_t needed = 2 * sizeof(Record) + frameSize;
    if (needed > size - used) {
        ++lost;
        return;
    }
    putRecord({timeNanoseconds, 0, kind, static_cast<uint32_t>(frameSize)});
    append(frame, frameSize);
    endIsLast = false;
}

void NotificationRing::putEndOfLink(uint64_t timeNanoseconds) {
    if (endIsLast && !isEmpty()) {
        return;
    }
    putRecord({timeNanoseconds, 0, NotificationKind_Unknown, 0});
    endIsLast = true;
}

void NotificationRing::putRecord(const Record& record) {
    Record counted = record;
    counted.lostBefore = std::exchange(lost, 0);
    append(&counted, sizeof(counted));
}

NotificationRing::Record NotificationRing::front() const {
    Record record{};
    copyFrom(begin, &record, sizeof(record));
    return record;
}

void NotificationRing::take(uint8_t* frame, size_t count) {
    const size_t frameSize = front().frameSize;
    copyFrom((begin + sizeof(Record)) % size, frame, std::min(count, frameSize));
    begin = (begin + sizeof(Record) + frameSize) % size;
    used -= sizeof(Record) + frameSize;
}

void NotificationRing::append(const void* bytes, size_t count) {
    const size_t end = (begin + used) % size;
    const size_t beforeWrap = std::min(count, size - end);
    const auto* const source = static_cast<const uint8_t*>(bytes);
    std::copy_n(source, beforeWrap, &ring[end]);
    std::copy_n(source + beforeWrap, count - beforeWrap, &ring[0]);
    used += count;
}

void NotificationRing::copyFrom(size_t offset, void* bytes, size_t count) const {
    const size_t beforeWrap = std::min(count, size - offset);
    auto* const destination = static_cast<uint8_t*>(bytes);
    std::copy_n(&ring[offset], beforeWrap, destination);
    std::copy_n(&ring[0], count - beforeWrap, destination + beforeWrap);
}
