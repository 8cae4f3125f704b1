// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/QueueEntries.hpp"
#include "support/SdkTest.hpp"
#include "support/ThreadStart.hpp"

#include <cerrno>
#include <system_error>

using namespace test_support;

namespace {

/// Queues of an object with a link, which has an end.
class NotificationQueueLinkTest : public SdkTest {
protected:
    NotificationQueueLinkTest() { sdk(); }

    /// Lets a read fail, as after an unplug, and waits until that has been told.
    void unplug() {
        hid.failReading(true);
        EXPECT_TRUE(hid.waitForReads(hid.readCalls() + 3));
    }
};
INSTANTIATE_ON_BOTH_VARIANTS(NotificationQueueLinkTest);

TEST_P(NotificationQueueLinkTest, ANotificationOfSeveralReportsIsOneEntry) {
    NotificationQueue queue(sdk(), ample);
    const Bytes frame = uartFrame(2500);
    for (const Bytes& report : GetParam().inputs(frame)) {
        hid.deliver(report);
    }
    ASSERT_TRUE(isReadable(queue.descriptor(), generousLimitMs));
    expectFrame(queue, frame);
}

TEST_P(NotificationQueueLinkTest, DisconnectingIsTheEndOfTheLink) {
    NotificationQueue queue(sdk(), ample);
    deliver({0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0xEE, 0xEE, 0x2A});
    sdk().disconnect();
    expectFrame(queue, gpio);
    expectEndOfLink(queue);
    expectEmpty(queue);
    sdk().disconnect();
    expectEmpty(queue);
}

TEST_P(NotificationQueueLinkTest, EachLinkHasAnEnd) {
    NotificationQueue queue(sdk(), ample);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(sdk().connect(""));
        ASSERT_TRUE(sdk().connect("")) << "an open link stays as it is";
        sdk().disconnect();
        expectEndOfLink(queue);
        expectEmpty(queue);
    }
}

TEST_P(NotificationQueueLinkTest, BootModeIsTheEndOfTheLink) {
    NotificationQueue queue(sdk(), ample);
    EXPECT_EQ(sdk().enterBootMode(), 0);
    expectEndOfLink(queue);
    EXPECT_EQ(sdk().enterBootMode(), 0x4000);
    expectEmpty(queue);
}

TEST_P(NotificationQueueLinkTest, TheFirstReadErrorIsTheEndOfTheLinkAndItsOnlyOne) {
    NotificationQueue queue(sdk(), ample);
    unplug();
    expectEndOfLink(queue);
    expectEmpty(queue);
    EXPECT_TRUE(sdk().connect("")) << "the link is still open";
    sdk().disconnect();
    expectEmpty(queue);

    hid.failReading(false);
    ASSERT_TRUE(sdk().connect(""));
    unplug();
    expectEndOfLink(queue);
}

TEST_P(NotificationQueueLinkTest, AQueueThatOpensBehindAReadErrorBeginsWithTheEnd) {
    unplug();
    NotificationQueue queue(sdk(), ample);
    expectEndOfLink(queue);
    expectEmpty(queue);
    const NotificationQueue second(sdk(), ample);
    expectEmpty(queue);
    sdk().disconnect();
    expectEmpty(queue);
}

TEST_P(NotificationQueueLinkTest, AQueueThatOpensWhileNotConnectedIsEmpty) {
    unplug();
    sdk().disconnect();
    NotificationQueue queue(sdk(), ample);
    expectEmpty(queue);
}

TEST_P(NotificationQueueLinkTest, AFailedConnectIsNoEnd) {
    sdk().disconnect();
    NotificationQueue queue(sdk(), ample);
    EXPECT_FALSE(sdk().connect("no such path"));
    {
        const ThreadStart failing([](const auto&) { return EAGAIN; });
        EXPECT_THROW(sdk().connect(""), std::system_error);
    }
    sdk().disconnect();
    expectEmpty(queue);
}

TEST_P(NotificationQueueLinkTest, DestructionIsTheEndOfTheLinkForAQueueThatOutlivesIt) {
    auto object = std::make_unique<VeltraSDK>(0);
    NotificationQueue queue(*object, ample);
    ASSERT_TRUE(object->connect(""));
    object.reset();
    expectEndOfLink(queue);
    expectEmpty(queue);
    EXPECT_TRUE(queue.isOpen());
}

TEST_P(NotificationQueueLinkTest, TheEndIsNeverLost) {
    for (size_t bytes = minSize; bytes < 3 * minSize; ++bytes) {
        NotificationQueue queue(sdk(), bytes);
        ASSERT_TRUE(sdk().connect(""));
        for (int i = 0; i < 9; ++i) {
            sdk().handleResponse(unknown);
        }
        sdk().disconnect();
        const uint64_t kept = (bytes - recordSize) / (recordSize + unknown.size());
        for (uint64_t i = 0; i < kept; ++i) {
            expectFrame(queue, unknown);
        }
        expectEndOfLink(queue, 9 - kept);
        expectEmpty(queue);
    }
}

TEST_P(NotificationQueueLinkTest, EndsWithANotificationBetweenThemAreTwo) {
    NotificationQueue queue(sdk(), ample);
    sdk().disconnect();
    ASSERT_TRUE(sdk().connect(""));
    sdk().handleResponse(gpio);
    sdk().disconnect();
    expectEndOfLink(queue);
    expectFrame(queue, gpio);
    expectEndOfLink(queue);
    expectEmpty(queue);
}

TEST_P(NotificationQueueLinkTest, EndsWithNothingBetweenThemAreOne) {
    NotificationQueue queue(sdk(), minSize);
    sdk().disconnect();
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(sdk().connect(""));
        sdk().handleResponse(uartRx);
        sdk().disconnect();
    }
    expectEndOfLink(queue);
    expectEmpty(queue);
    sdk().handleResponse(unknown);
    expectFrame(queue, unknown, 3);
}

} // namespace
