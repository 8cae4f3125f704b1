// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// An exception that leaves the polling thread ends the process: there is nobody to catch it.
#include "faults/FailingAllocation.hpp"
#include "support/SdkTest.hpp"

#include <veltrasdk/NotificationQueue.hpp>

#include <cstdlib>
#include <stdexcept>

using namespace test_support;

namespace {

const char* const handlerThrows = "terminate called after throwing.*runtime_error.*from a handler";
const char* const allocationFails = "terminate called after throwing.*bad_alloc";

const Bytes gpioNotification{0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x05};

[[noreturn]] void throwing(const Notification* /*notification*/) {
    throw std::runtime_error("thrown from a handler");
}

/// Each statement that ends the process runs in a process of its own.
class PollingThreadDeathTest : public testing::Test {
protected:
    PollingThreadDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }

    /// Returns only when the process survives.
    static void receiveNotification(ScriptedHid& hid) {
        hid.deliver(fullSpeed.input(gpioNotification));
        static_cast<void>(hid.waitUntilDrained());
    }

    static void attachAdapter(ScriptedHid& hid) {
        hid.attach({"1-1:1.0", vendorId, fullSpeed.productId, L"VA-0001"});
    }
};

TEST_F(PollingThreadDeathTest, AHandlerThatThrowsEndsTheProcess) {
    const auto run = [] {
        ScriptedHid hid;
        attachAdapter(hid);
        VeltraSDK sdk(0);
        sdk.onNotification([](const Notification& notification) { throwing(&notification); });
        sdk.connect("");
        receiveNotification(hid);
    };
    EXPECT_DEATH(run(), handlerThrows);
}

TEST_F(PollingThreadDeathTest, ACallbackThatThrowsEndsTheProcess) {
    const auto run = [] {
        ScriptedHid hid;
        attachAdapter(hid);
        const OwnedHandle handle(VeltraSDK_Create(0));
        VeltraSDK_onNotification(handle.get(), throwing);
        VeltraSDK_Connect(handle.get(), nullptr);
        receiveNotification(hid);
    };
    EXPECT_DEATH(run(), handlerThrows);
}

TEST_F(PollingThreadDeathTest, AnAllocationThatFailsWhenThePollingThreadStartsEndsTheProcess) {
    const auto run = [] {
        ScriptedHid hid;
        attachAdapter(hid);
        VeltraSDK sdk(0);
        failAllocationsOfOtherThreads();
        sdk.connect("");
        static_cast<void>(hid.waitForReads(1));
    };
    EXPECT_DEATH(run(), allocationFails);
}

TEST_F(PollingThreadDeathTest, AnAllocationThatFailsWhileJoiningPacketsEndsTheProcess) {
    const auto run = [] {
        ScriptedHid hid;
        attachAdapter(hid);
        VeltraSDK sdk(0);
        sdk.connect("");
        static_cast<void>(hid.waitForReads(1));
        failAllocationsOfOtherThreads();
        receiveNotification(hid);
    };
    EXPECT_DEATH(run(), allocationFails);
}

TEST_F(PollingThreadDeathTest, FillingANotificationQueueAllocatesNothing) {
    const auto run = [] {
        ScriptedHid hid;
        attachAdapter(hid);
        VeltraSDK sdk(0);
        NotificationQueue queue(sdk, 100);
        sdk.connect("");
        // What packets are joined in grows once.
        receiveNotification(hid);
        failAllocationsOfOtherThreads();
        for (int i = 0; i < 10; ++i) {
            receiveNotification(hid);
        }
        hid.failReading(true);
        static_cast<void>(hid.waitForReads(hid.readCalls() + 3));
        NotificationQueue::Entry entry;
        int taken = 0;
        while (queue.take(entry) && !entry.isEndOfLink()) {
            ++taken;
        }
        const bool asExpected = taken == 2 && entry.isEndOfLink() && entry.lostBefore == 9;
        sdk.disconnect();
        std::_Exit(asExpected ? 0 : 1);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

} // namespace
