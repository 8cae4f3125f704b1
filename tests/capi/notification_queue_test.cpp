// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/Readable.hpp"
#include "support/SdkTest.hpp"

#include <array>
#include <cerrno>

#include <fcntl.h>

using namespace test_support;

namespace {

const Bytes gpioPacket{0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A};
const Bytes gpioFrame{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A};
constexpr size_t ample = 1 << 16;

unsigned callbacks = 0;

void countCallback(const Notification* /*notification*/) {
    ++callbacks;
}

class NotificationQueueInC : public SdkTest {};
INSTANTIATE_ON_BOTH_VARIANTS(NotificationQueueInC);

TEST_P(NotificationQueueInC, ANotificationIsWaitedForTakenAndDecoded) {
    const int descriptor = VeltraSDK_OpenNotificationQueue(handle(), ample);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_FALSE(isReadable(descriptor));
    hid.deliver(GetParam().input(gpioPacket));
    ASSERT_TRUE(isReadable(descriptor, generousLimitMs));

    VeltraSDK_QueuedNotification notification{};
    Bytes frame(64, 0xEE);
    ASSERT_TRUE(VeltraSDK_TakeNotification(handle(), &notification, frame.data(), frame.size()));
    EXPECT_EQ(notification.kind, NotificationKind_Gpio);
    EXPECT_EQ(notification.frameSize, gpioFrame.size());
    EXPECT_EQ(notification.lostBefore, 0U);
    EXPECT_GT(notification.timeNanoseconds, 0U);
    EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 7), gpioFrame);
    EXPECT_EQ(frame[7], 0xEE);

    const Notification record =
        VeltraSDK_notificationFromQueue(&notification, frame.data(), frame.size());
    EXPECT_EQ(record.size, gpioFrame.size());
    unsigned char event = 0;
    EXPECT_TRUE(VeltraSDK_notificationAsGpio(&record, &event));
    EXPECT_EQ(event, 0x2A);
    UartRxData received{};
    EXPECT_FALSE(VeltraSDK_notificationAsUartRx(&record, &received));

    EXPECT_FALSE(isReadable(descriptor));
    EXPECT_FALSE(VeltraSDK_TakeNotification(handle(), &notification, frame.data(), frame.size()));
}

TEST_P(NotificationQueueInC, FramesOf256BytesAndMoreAreDecodedToo) {
    ASSERT_GE(VeltraSDK_OpenNotificationQueue(handle(), ample), 0);
    for (const size_t size : {256U, 257U, 3000U}) {
        Bytes sent = counting(size);
        const Bytes header{0x00,
                           0x00,
                           0x81,
                           0x10,
                           0x00,
                           0x00,
                           static_cast<uint8_t>((size - 8) & 0xFFU),
                           static_cast<uint8_t>((size - 8) >> 8U)};
        std::copy(header.begin(), header.end(), sent.begin());
        for (const Bytes& report : GetParam().inputs(sent)) {
            hid.deliver(report);
        }
        ASSERT_TRUE(hid.waitUntilDrained());

        VeltraSDK_QueuedNotification notification{};
        Bytes frame(4096);
        ASSERT_TRUE(
            VeltraSDK_TakeNotification(handle(), &notification, frame.data(), frame.size()));
        const Notification record =
            VeltraSDK_notificationFromQueue(&notification, frame.data(), frame.size());
        UartRxData received{};
        ASSERT_TRUE(VeltraSDK_notificationAsUartRx(&record, &received));
        EXPECT_EQ(Bytes(received.data, received.data + received.length),
                  Bytes(sent.begin() + 8, sent.end()));
    }
}

TEST_P(NotificationQueueInC, ARecordOfACutFrameHasTheBytesThatWereStored) {
    const VeltraSDK_QueuedNotification notification{0, 0, NotificationKind_Gpio, 7};
    for (size_t capacity = 0; capacity <= gpioFrame.size() + 1; ++capacity) {
        const Notification record =
            VeltraSDK_notificationFromQueue(&notification, gpioFrame.data(), capacity);
        EXPECT_EQ(record.data, gpioFrame.data());
        EXPECT_EQ(record.size, std::min(capacity, gpioFrame.size()));
        unsigned char event = 0;
        EXPECT_EQ(VeltraSDK_notificationAsGpio(&record, &event), capacity >= 7);
    }
}

TEST_P(NotificationQueueInC, TheCallbackIsCalledBesideTheQueue) {
    callbacks = 0;
    VeltraSDK_onNotification(handle(), countCallback);
    ASSERT_GE(VeltraSDK_OpenNotificationQueue(handle(), ample), 0);
    deliver(gpioPacket);
    EXPECT_EQ(callbacks, 1U);
    VeltraSDK_QueuedNotification notification{};
    EXPECT_TRUE(VeltraSDK_TakeNotification(handle(), &notification, nullptr, 0));
}

TEST_P(NotificationQueueInC, DisconnectingIsAnEntryWithoutAFrame) {
    ASSERT_GE(VeltraSDK_OpenNotificationQueue(handle(), ample), 0);
    VeltraSDK_Disconnect(handle());
    VeltraSDK_QueuedNotification notification{1, 2, NotificationKind_Gpio, 3};
    ASSERT_TRUE(VeltraSDK_TakeNotification(handle(), &notification, nullptr, 0));
    EXPECT_EQ(notification.frameSize, 0U);
    EXPECT_EQ(notification.lostBefore, 0U);
    EXPECT_EQ(notification.kind, NotificationKind_Unknown);
}

TEST_P(NotificationQueueInC, AHandleHasOneQueueAndOpensAnotherOneBehindIt) {
    const int first = VeltraSDK_OpenNotificationQueue(handle(), ample);
    ASSERT_GE(first, 0);
    EXPECT_EQ(VeltraSDK_OpenNotificationQueue(handle(), ample), -1);
    deliver(gpioPacket);
    EXPECT_TRUE(isReadable(first)) << "the first queue is as it was";

    VeltraSDK_CloseNotificationQueue(handle());
    VeltraSDK_CloseNotificationQueue(handle());
    VeltraSDK_QueuedNotification notification{};
    EXPECT_FALSE(VeltraSDK_TakeNotification(handle(), &notification, nullptr, 0));
    EXPECT_TRUE(isReadable(first)) << "whoever polls learns that the queue is closed";

    const int second = VeltraSDK_OpenNotificationQueue(handle(), ample);
    ASSERT_GE(second, 0);
    EXPECT_FALSE(isReadable(second));
    deliver(gpioPacket);
    EXPECT_TRUE(VeltraSDK_TakeNotification(handle(), &notification, nullptr, 0));
}

TEST_P(NotificationQueueInC, DestroyingTheHandleClosesTheDescriptor) {
    for (const bool isOpen : {true, false}) {
        VeltraSDK_Handle* const created = VeltraSDK_Create(0);
        const int descriptor = VeltraSDK_OpenNotificationQueue(created, ample);
        ASSERT_GE(descriptor, 0);
        if (!isOpen) {
            VeltraSDK_CloseNotificationQueue(created);
        }
        VeltraSDK_Destroy(created);
        EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
        EXPECT_EQ(errno, EBADF);
    }
}

TEST_P(NotificationQueueInC, ASizeOutOfRangeOpensNothing) {
    EXPECT_EQ(VeltraSDK_OpenNotificationQueue(handle(), 53), -1);
    EXPECT_EQ(VeltraSDK_OpenNotificationQueue(handle(), SIZE_MAX), -1);
    VeltraSDK_QueuedNotification notification{};
    EXPECT_FALSE(VeltraSDK_TakeNotification(handle(), &notification, nullptr, 0));
    EXPECT_GE(VeltraSDK_OpenNotificationQueue(handle(), 54), 0);
}

TEST(NotificationQueueWithoutAHandle, NothingIsOpenedTakenOrClosed) {
    EXPECT_EQ(VeltraSDK_OpenNotificationQueue(nullptr, ample), -1);
    VeltraSDK_QueuedNotification notification{1, 2, NotificationKind_Gpio, 3};
    EXPECT_FALSE(VeltraSDK_TakeNotification(nullptr, &notification, nullptr, 0));
    EXPECT_EQ(notification.frameSize, 3U);
    VeltraSDK_CloseNotificationQueue(nullptr);
}

} // namespace
