// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/QueueEntries.hpp"
#include "support/SdkTest.hpp"

#include <array>
#include <deque>

#include <fcntl.h>
#include <sys/epoll.h>
#include <time.h>
#include <unistd.h>

using namespace test_support;
using Entry = NotificationQueue::Entry;

namespace {

const Bytes hotJoin{0x00, 0x00, 0x82, 0x19, 0xEE, 0xEE, 0x04, 0x6A,
                    0x00, 0x01, 0x02, 0x03, 0x26, 0xC6, 0x09};
const Bytes ibi{0x00, 0x00, 0x81, 0x19, 0xEE, 0xEE, 0x09, 0x02, 0xAA, 0xBB};

uint64_t monotonicNow() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(time.tv_nsec);
}

/// Frames are routed by the test itself, without a link.
class NotificationQueueTest : public testing::Test {
protected:
    void route(const Bytes& frame) { sdk.handleResponse(frame); }

    ScriptedHid hid;
    VeltraSDK sdk{0};
};

TEST_F(NotificationQueueTest, ANewQueueIsOpenAndEmpty) {
    NotificationQueue queue(sdk, ample);
    EXPECT_TRUE(queue.isOpen());
    ASSERT_GE(queue.descriptor(), 0);
    expectEmpty(queue);
}

TEST_F(NotificationQueueTest, TheDescriptorNeverBlocksAndIsClosedOnExec) {
    const NotificationQueue queue(sdk, ample);
    EXPECT_EQ(fcntl(queue.descriptor(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_EQ(fcntl(queue.descriptor(), F_GETFL) & O_NONBLOCK, O_NONBLOCK);
}

TEST_F(NotificationQueueTest, DestructionClosesTheDescriptor) {
    auto queue = std::make_unique<NotificationQueue>(sdk, ample);
    const int descriptor = queue->descriptor();
    queue.reset();
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST_F(NotificationQueueTest, NotificationsAreTakenInTheirOrderWithTheirKinds) {
    NotificationQueue queue(sdk, ample);
    const std::array<const Bytes*, 5> frames{&hotJoin, &ibi, &gpio, &uartRx, &unknown};
    for (const Bytes* const frame : frames) {
        route(*frame);
    }
    for (uint32_t kind = 0; kind < frames.size(); ++kind) {
        const auto entry = takenFrom(queue);
        ASSERT_TRUE(entry.has_value());
        EXPECT_EQ(entry->kind, kind);
        EXPECT_EQ(entry->frame, *frames.at(kind));
        EXPECT_EQ(entry->lostBefore, 0U);
        EXPECT_FALSE(entry->isEndOfLink());
    }
    expectEmpty(queue);
}

TEST_F(NotificationQueueTest, WhatIsNoNotificationIsNotQueued) {
    NotificationQueue queue(sdk, ample);
    route({0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01});
    route({0x00, 0x00, 0x81, 0x14, 0x00});
    expectEmpty(queue);
}

TEST_F(NotificationQueueTest, WhatCameBeforeTheQueueIsNotInIt) {
    route(gpio);
    NotificationQueue queue(sdk, ample);
    expectEmpty(queue);
}

TEST_F(NotificationQueueTest, FramesOfAnySizeAreWhole) {
    NotificationQueue queue(sdk, 1 << 20);
    for (const size_t size : {6U, 255U, 256U, 257U, 4096U, 65'543U}) {
        route(uartFrame(size));
        expectFrame(queue, uartFrame(size));
    }
}

TEST_F(NotificationQueueTest, TheAccessorsDecodeWhatWasTaken) {
    NotificationQueue queue(sdk, ample);
    Bytes longFrame = uartFrame(308);
    longFrame[6] = 300 & 0xFFU;
    longFrame[7] = 300 >> 8U;
    for (const Bytes& frame : {gpio, hotJoin, longFrame}) {
        route(frame);
    }

    auto entry = takenFrom(queue);
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(entry->notification().gpio()->value, 0x2A);
    EXPECT_EQ(entry->notification().i3cIbi(), nullptr);

    entry = takenFrom(queue);
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(entry->notification().i3cHotJoin()->dynamicAddress, 0x09);

    entry = takenFrom(queue);
    ASSERT_TRUE(entry.has_value());
    const Notification received = entry->notification();
    const UartRxData* const view = received.uartRx();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->length, 300U);
    EXPECT_EQ(Bytes(view->data, view->data + view->length),
              Bytes(longFrame.begin() + 8, longFrame.end()));
}

TEST_F(NotificationQueueTest, AnEntryTellsWhenItCame) {
    NotificationQueue queue(sdk, ample);
    uint64_t earliest = monotonicNow();
    for (int i = 0; i < 3; ++i) {
        route(gpio);
        const uint64_t latest = monotonicNow();
        const auto entry = takenFrom(queue);
        ASSERT_TRUE(entry.has_value());
        EXPECT_GE(entry->timeNanoseconds, earliest);
        EXPECT_LE(entry->timeNanoseconds, latest);
        earliest = entry->timeNanoseconds;
    }
}

TEST_F(NotificationQueueTest, TheHandlerIsCalledBesideTheQueue) {
    NotificationQueue queue(sdk, ample);
    bool waits = false;
    sdk.onNotification([&](const Notification& notification) {
        EXPECT_EQ(notification.size, gpio.size());
        waits = isReadable(queue.descriptor());
    });
    route(gpio);
    EXPECT_TRUE(waits);
    expectFrame(queue, gpio);
}

// Taking into the caller's memory.

TEST_F(NotificationQueueTest, AFrameIsCutToTheCapacity) {
    NotificationQueue queue(sdk, ample);
    for (size_t capacity = 0; capacity <= ibi.size() + 1; ++capacity) {
        route(ibi);
        route(gpio);
        VeltraSDK_QueuedNotification notification{};
        Bytes frame(ibi.size() + 2, 0xEE);
        ASSERT_TRUE(queue.take(notification, frame.data(), capacity));
        Bytes expected(ibi.size() + 2, 0xEE);
        std::copy_n(ibi.begin(), std::min(capacity, ibi.size()), expected.begin());
        EXPECT_EQ(frame, expected);
        EXPECT_EQ(notification.frameSize, ibi.size()) << "the size of the whole frame";
        EXPECT_EQ(notification.kind, NotificationKind_I3cIbi);
        expectFrame(queue, gpio);
    }
}

TEST_F(NotificationQueueTest, WithoutCapacityNoMemoryIsNeeded) {
    NotificationQueue queue(sdk, ample);
    route(gpio);
    VeltraSDK_QueuedNotification notification{};
    EXPECT_TRUE(queue.take(notification, nullptr, 0));
    EXPECT_EQ(notification.frameSize, gpio.size());
}

TEST_F(NotificationQueueTest, TakingFromAnEmptyQueueWritesNothing) {
    NotificationQueue queue(sdk, ample);
    VeltraSDK_QueuedNotification notification{1, 2, NotificationKind_Gpio, 3};
    Bytes frame(4, 0xEE);
    EXPECT_FALSE(queue.take(notification, frame.data(), frame.size()));
    EXPECT_EQ(notification.timeNanoseconds, 1U);
    EXPECT_EQ(notification.lostBefore, 2U);
    EXPECT_EQ(notification.kind, NotificationKind_Gpio);
    EXPECT_EQ(notification.frameSize, 3U);
    EXPECT_EQ(frame, Bytes(4, 0xEE));

    Entry entry{1, 2, NotificationKind_Gpio, {0xEE}};
    EXPECT_FALSE(queue.take(entry));
    EXPECT_EQ(entry.frame, Bytes{0xEE});
    EXPECT_EQ(entry.timeNanoseconds, 1U);
}

// Loss.

TEST_F(NotificationQueueTest, TheNewestAreLostWhenItIsFullAndTheNextEntryCountsThem) {
    constexpr size_t three = 4 * recordSize + 3 * size_t{7};
    NotificationQueue queue(sdk, three);
    for (uint8_t i = 0; i < 5; ++i) {
        Bytes frame = gpio;
        frame.back() = i;
        route(frame);
    }
    for (uint8_t i = 0; i < 3; ++i) {
        Bytes frame = gpio;
        frame.back() = i;
        expectFrame(queue, frame);
    }
    expectEmpty(queue);
    route(ibi);
    route(gpio);
    expectFrame(queue, ibi, 2);
    expectFrame(queue, gpio, 0);
}

TEST_F(NotificationQueueTest, AFrameThatJustFitsIsKept) {
    for (const bool fits : {true, false}) {
        NotificationQueue queue(sdk, 2 * recordSize + uartRx.size() - (fits ? 0 : 1));
        route(uartRx);
        EXPECT_EQ(takenFrom(queue).has_value(), fits);
    }
}

TEST_F(NotificationQueueTest, AShorterFrameMayFitBehindALostOne) {
    NotificationQueue queue(sdk, 2 * recordSize + 7);
    route(uartRx);
    route(gpio);
    expectFrame(queue, gpio, 1);
}

TEST_F(NotificationQueueTest, EntriesStayWholeWhereverTheRingBegins) {
    for (size_t bytes = minSize; bytes < 4 * minSize; ++bytes) {
        NotificationQueue queue(sdk, bytes);
        std::deque<Entry> expected;
        size_t used = 0;
        uint64_t lost = 0;
        const auto takeOne = [&] {
            const auto entry = takenFrom(queue);
            ASSERT_TRUE(entry.has_value());
            EXPECT_EQ(entry->frame, expected.front().frame);
            EXPECT_EQ(entry->lostBefore, expected.front().lostBefore);
            used -= recordSize + entry->frame.size();
            expected.pop_front();
        };
        for (size_t i = 0; i < 200; ++i) {
            const Bytes frame = uartFrame(6 + i * 7 % 31);
            route(frame);
            if (used + 2 * recordSize + frame.size() > bytes) {
                ++lost;
            } else {
                expected.push_back({0, std::exchange(lost, 0), NotificationKind_UartRx, frame});
                used += recordSize + frame.size();
            }
            EXPECT_EQ(isReadable(queue.descriptor()), !expected.empty());
            if (i % 3 != 0 && !expected.empty()) {
                takeOne();
            }
        }
        while (!expected.empty()) {
            takeOne();
        }
        expectEmpty(queue);
        ASSERT_FALSE(HasFailure()) << bytes;
    }
}

// Waiting.

TEST_F(NotificationQueueTest, TheDescriptorIsReadableExactlyWhileAnEntryWaits) {
    NotificationQueue queue(sdk, ample);
    for (int round = 0; round < 3; ++round) {
        EXPECT_FALSE(isReadable(queue.descriptor()));
        route(gpio);
        EXPECT_TRUE(isReadable(queue.descriptor()));
        route(gpio);
        EXPECT_TRUE(takenFrom(queue).has_value());
        EXPECT_TRUE(isReadable(queue.descriptor()));
        EXPECT_TRUE(takenFrom(queue).has_value());
    }
    EXPECT_FALSE(isReadable(queue.descriptor()));
}

TEST_F(NotificationQueueTest, ALostNotificationMakesNothingReadable) {
    NotificationQueue queue(sdk, minSize);
    route(uartRx);
    expectEmpty(queue);
}

TEST_F(NotificationQueueTest, EpollTellsTheSame) {
    NotificationQueue queue(sdk, ample);
    const int epoll = epoll_create1(EPOLL_CLOEXEC);
    const auto events = [&] {
        epoll_event event{};
        return epoll_wait(epoll, &event, 1, 0);
    };
    for (const uint32_t mode : {uint32_t{EPOLLIN}, uint32_t{EPOLLIN} | uint32_t{EPOLLET}}) {
        epoll_event event{};
        event.events = mode;
        ASSERT_EQ(epoll_ctl(epoll, EPOLL_CTL_ADD, queue.descriptor(), &event), 0);
        EXPECT_EQ(events(), 0);
        for (int round = 0; round < 2; ++round) {
            route(gpio);
            EXPECT_EQ(events(), 1);
            EXPECT_TRUE(takenFrom(queue).has_value());
            EXPECT_EQ(events(), 0);
        }
        ASSERT_EQ(epoll_ctl(epoll, EPOLL_CTL_DEL, queue.descriptor(), nullptr), 0);
    }
    close(epoll);
}

// Opening and closing.

TEST_F(NotificationQueueTest, AnObjectHasOneQueueAtATime) {
    NotificationQueue first(sdk, ample);
    NotificationQueue second(sdk, ample);
    EXPECT_EQ(second.descriptor(), -1);
    EXPECT_FALSE(second.isOpen());
    route(gpio);
    EXPECT_FALSE(takenFrom(second).has_value());
    second.close();
    EXPECT_TRUE(first.isOpen());
    expectFrame(first, gpio);
}

TEST_F(NotificationQueueTest, AClosedQueueIsReadableAndHoldsNothing) {
    NotificationQueue queue(sdk, ample);
    route(gpio);
    queue.close();
    EXPECT_FALSE(queue.isOpen());
    EXPECT_FALSE(takenFrom(queue).has_value());
    route(gpio);
    EXPECT_FALSE(takenFrom(queue).has_value());
    EXPECT_TRUE(isReadable(queue.descriptor()));
    queue.close();
    EXPECT_TRUE(isReadable(queue.descriptor()));
}

TEST_F(NotificationQueueTest, AQueueOpensBehindAClosedOneWhichTakesNothingOfIt) {
    NotificationQueue closed(sdk, minSize);
    route(uartRx);
    closed.close();
    NotificationQueue queue(sdk, ample);
    ASSERT_TRUE(queue.isOpen());
    EXPECT_NE(queue.descriptor(), closed.descriptor());
    route(gpio);
    EXPECT_FALSE(takenFrom(closed).has_value());
    closed.close();
    EXPECT_TRUE(queue.isOpen());
    expectFrame(queue, gpio, 0);
}

TEST_F(NotificationQueueTest, ASizeOutOfRangeOpensNothing) {
    for (const size_t bytes : {size_t{0}, minSize - 1, (size_t{1} << 30U) + 1, SIZE_MAX}) {
        const NotificationQueue queue(sdk, bytes);
        EXPECT_EQ(queue.descriptor(), -1) << bytes;
        EXPECT_FALSE(queue.isOpen());
    }
    EXPECT_TRUE(NotificationQueue(sdk, minSize).isOpen());
}

} // namespace
