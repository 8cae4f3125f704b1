// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// A queue that cannot be opened says so, leaves nothing behind, and can be opened afterwards.
#include "faults/FailingAllocation.hpp"
#include "support/Readable.hpp"
#include "support/SdkTest.hpp"

#include <veltrasdk/NotificationQueue.hpp>

#include <array>
#include <new>

#include <sys/resource.h>
#include <unistd.h>

using namespace test_support;

namespace {

const Bytes gpioFrame{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A};
constexpr size_t size = 1000;

/// While it exists, the process gets no further descriptor.
class NoMoreDescriptors {
public:
    NoMoreDescriptors() {
        getrlimit(RLIMIT_NOFILE, &before);
        const int lowestFree = dup(STDERR_FILENO);
        close(lowestFree);
        rlimit limited = before;
        limited.rlim_cur = static_cast<rlim_t>(lowestFree);
        setrlimit(RLIMIT_NOFILE, &limited);
    }
    ~NoMoreDescriptors() { setrlimit(RLIMIT_NOFILE, &before); }
    NoMoreDescriptors(const NoMoreDescriptors&) = delete;
    NoMoreDescriptors& operator=(const NoMoreDescriptors&) = delete;

private:
    rlimit before{};
};

void expectOfUse(VeltraSDK& sdk) {
    NotificationQueue queue(sdk, size);
    ASSERT_TRUE(queue.isOpen());
    sdk.handleResponse(gpioFrame);
    EXPECT_TRUE(isReadable(queue.descriptor()));
    NotificationQueue::Entry entry;
    ASSERT_TRUE(queue.take(entry));
    EXPECT_EQ(entry.frame, gpioFrame);
}

TEST(NotificationQueueFaults, EveryFailingAllocationLeavesTheQueueClosed) {
    const ScriptedHid hid;
    VeltraSDK sdk(0);
    const size_t liveBefore = liveAllocations();
    size_t position = 0;
    bool happened = true;
    while (happened) {
        {
            const FailingAllocation failing(++position);
            NotificationQueue queue(sdk, size);
            happened = failing.happened();
            EXPECT_EQ(queue.descriptor() == -1, happened);
            EXPECT_EQ(queue.isOpen(), !happened);
        }
        expectOfUse(sdk);
        EXPECT_EQ(liveAllocations(), liveBefore) << "memory was not released";
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(position, 2U) << "the ring is all that is allocated";
}

TEST(NotificationQueueFaults, EveryFailingAllocationLeavesTheHandlesQueueClosed) {
    const ScriptedHid hid;
    const OwnedHandle handle(VeltraSDK_Create(0));
    {
        const FailingAllocation failing(1);
        EXPECT_EQ(VeltraSDK_OpenNotificationQueue(handle.get(), size), -1);
        EXPECT_TRUE(failing.happened());
    }
    VeltraSDK_QueuedNotification notification{};
    EXPECT_FALSE(VeltraSDK_TakeNotification(handle.get(), &notification, nullptr, 0));
    {
        const FailingAllocation failing(2);
        EXPECT_GE(VeltraSDK_OpenNotificationQueue(handle.get(), size), 0);
        EXPECT_FALSE(failing.happened());
    }
}

TEST(NotificationQueueFaults, WithoutADescriptorLeftTheQueueStaysClosed) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers themselves need a descriptor to look at an object";
#endif
    const ScriptedHid hid;
    VeltraSDK sdk(0);
    const size_t liveBefore = liveAllocations();
    {
        const NoMoreDescriptors limited;
        const NotificationQueue queue(sdk, size);
        EXPECT_EQ(queue.descriptor(), -1);
        EXPECT_FALSE(queue.isOpen());
    }
    EXPECT_EQ(liveAllocations(), liveBefore) << "memory was not released";
    expectOfUse(sdk);
}

TEST(NotificationQueueFaults, AnEntryThatCannotBeTakenForWantOfMemoryStaysTheOldest) {
    const ScriptedHid hid;
    VeltraSDK sdk(0);
    NotificationQueue queue(sdk, size);
    sdk.handleResponse(gpioFrame);
    NotificationQueue::Entry entry;
    {
        const FailingAllocation failing(1);
        EXPECT_THROW(queue.take(entry), std::bad_alloc);
    }
    EXPECT_TRUE(entry.isEndOfLink()) << "the record is as it was";
    EXPECT_TRUE(isReadable(queue.descriptor()));
    ASSERT_TRUE(queue.take(entry));
    EXPECT_EQ(entry.frame, gpioFrame);
}

TEST(NotificationQueueFaults, TakingIntoTheCallersMemoryAllocatesNothing) {
    const ScriptedHid hid;
    VeltraSDK sdk(0);
    NotificationQueue queue(sdk, size);
    sdk.handleResponse(gpioFrame);
    sdk.handleResponse(gpioFrame);
    const FailingAllocation failing(1);
    VeltraSDK_QueuedNotification notification{};
    std::array<uint8_t, 16> frame{};
    EXPECT_TRUE(queue.take(notification, frame.data(), frame.size()));
    EXPECT_TRUE(queue.take(notification, frame.data(), frame.size()));
    EXPECT_FALSE(queue.take(notification, frame.data(), frame.size()));
    queue.close();
    EXPECT_FALSE(failing.happened());
}

} // namespace
