// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

#include <array>
#include <new>

using namespace test_support;

namespace {

const Bytes hotJoin{0x00, 0x00, 0x82, 0x19, 0xEE, 0xEE, 0x04, 0x6A,
                    0x00, 0x01, 0x02, 0x03, 0x26, 0xC6, 0x09};
const Bytes ibi{0x00, 0x00, 0x81, 0x19, 0xEE, 0xEE, 0x09, 0x02, 0xAA, 0xBB};
const Bytes gpio{0x00, 0x00, 0x81, 0x14, 0xEE, 0xEE, 0x2A};
const Bytes uartRx{0x00, 0x00, 0x81, 0x10, 0xEE, 0xEE, 0x05, 0x00, 'H', 'e', 'l', 'l', 'o'};
const Bytes unknown{0x00, 0x00, 0x83, 0x19, 0xEE, 0xEE, 0x01, 0x02,
                    0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A};

class NotificationTest : public testing::Test {
protected:
    /// Hands @p check the notification that the routing makes of @p frame.
    template <typename Check>
    void route(const Bytes& frame, const Check& check) {
        bool called = false;
        sdk.onNotification([&](const Notification& notification) {
            called = true;
            EXPECT_EQ(notification.data, frame.data()) << "the frame is not copied";
            EXPECT_EQ(notification.size, frame.size());
            check(notification);
        });
        sdk.handleResponse(frame);
        EXPECT_TRUE(called);
    }

    ScriptedHid hid;
    VeltraSDK sdk{0};
};

/// The accessors that take the notification: H, I, G and U in the order of the kinds.
std::string acceptedBy(const Notification& notification) {
    std::string accessors;
    accessors += notification.i3cHotJoin() != nullptr ? "H" : "";
    accessors += notification.i3cIbi() != nullptr ? "I" : "";
    accessors += notification.gpio() != nullptr ? "G" : "";
    accessors += notification.uartRx() != nullptr ? "U" : "";
    return accessors;
}

bool viewsAreZero(const Notification& notification) {
    const auto isZero = [](const auto& view) { return memoryOf(view) == Bytes(sizeof(view)); };
    return isZero(notification.i3cHotJoinView) && isZero(notification.i3cIbiView) &&
           isZero(notification.gpioView) && isZero(notification.uartRxView);
}

TEST(Notification, ANewRecordIsEmptyWhateverTheMemoryHeld) {
    alignas(Notification) std::array<uint8_t, sizeof(Notification)> memory{};
    memory.fill(0xEE);
    const auto* const notification = new (memory.data()) Notification;
    EXPECT_EQ(notification->data, nullptr);
    EXPECT_EQ(notification->size, 0U);
    EXPECT_EQ(memoryOf(notification->i3cHotJoinView), Bytes(sizeof(I3cHotJoinData)));
    EXPECT_EQ(notification->i3cIbiView.address, 0);
    EXPECT_EQ(notification->i3cIbiView.payload, nullptr);
    EXPECT_EQ(notification->i3cIbiView.payloadLength, 0U);
    EXPECT_EQ(notification->gpioView.value, 0);
    EXPECT_EQ(notification->uartRxView.data, nullptr);
    EXPECT_EQ(notification->uartRxView.length, 0U);
}

// Routing.

TEST_F(NotificationTest, TheCommandCodeTellsTheKind) {
    const auto expectKind = [&](const Bytes& frame, NotificationKind kind, unsigned value) {
        route(frame, [&](const Notification& notification) {
            EXPECT_EQ(notification.kind, kind);
            EXPECT_EQ(notification.kind, value);
            EXPECT_TRUE(viewsAreZero(notification));
        });
    };
    expectKind(hotJoin, NotificationKind_I3cHotJoin, 0);
    expectKind(ibi, NotificationKind_I3cIbi, 1);
    expectKind(gpio, NotificationKind_Gpio, 2);
    expectKind(uartRx, NotificationKind_UartRx, 3);
    expectKind(unknown, NotificationKind_Unknown, 4);
}

TEST_F(NotificationTest, AnyOtherCommandCodeIsUnknownAndDeliveredToo) {
    for (const Bytes& frame :
         {Bytes{0x00, 0x00, 0x83, 0x19, 0x00, 0x00}, Bytes{0x00, 0x00, 0x03, 0x14, 0x00, 0x00},
          Bytes{0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, Bytes{0x00, 0x00, 0x19, 0x82, 0x00, 0x00}}) {
        route(frame, [](const Notification& notification) {
            EXPECT_EQ(notification.kind, NotificationKind_Unknown);
        });
    }
}

TEST_F(NotificationTest, EveryKindIsTakenByItsOwnAccessorOnly) {
    route(hotJoin, [](const Notification& n) { EXPECT_EQ(acceptedBy(n), "H"); });
    route(ibi, [](const Notification& n) { EXPECT_EQ(acceptedBy(n), "I"); });
    route(gpio, [](const Notification& n) { EXPECT_EQ(acceptedBy(n), "G"); });
    route(uartRx, [](const Notification& n) { EXPECT_EQ(acceptedBy(n), "U"); });
    route(unknown, [](const Notification& n) { EXPECT_EQ(acceptedBy(n), ""); });
}

TEST_F(NotificationTest, ARefusingAccessorWritesNothing) {
    route(unknown, [](const Notification& notification) {
        acceptedBy(notification);
        EXPECT_TRUE(viewsAreZero(notification));
    });
    Bytes shortHotJoin = hotJoin;
    shortHotJoin.pop_back();
    route(shortHotJoin, [](const Notification& notification) {
        acceptedBy(notification);
        EXPECT_TRUE(viewsAreZero(notification));
    });
}

TEST_F(NotificationTest, WithoutAHandlerANotificationIsDropped) {
    sdk.handleResponse(gpio);
    route(gpio, [](const Notification&) {});
    sdk.onNotification(nullptr);
    sdk.handleResponse(gpio);
}

TEST_F(NotificationTest, ANewHandlerReplacesTheOneBefore) {
    size_t notifications = 0;
    sdk.onNotification(
        [](const Notification&) { ADD_FAILURE() << "a replaced handler was called"; });
    sdk.onNotification([&](const Notification&) { ++notifications; });
    sdk.handleResponse(gpio);
    EXPECT_EQ(notifications, 1U);
}

// Decoding.

TEST_F(NotificationTest, AHotJoinHoldsTheTargetsIdentifierCharacteristicsAndAddress) {
    route(hotJoin, [](const Notification& notification) {
        const I3cHotJoinData* const view = notification.i3cHotJoin();
        ASSERT_EQ(view, &notification.i3cHotJoinView) << "the view lies in the record";
        EXPECT_EQ(Bytes(view->pid, view->pid + 6), (Bytes{0x04, 0x6A, 0x00, 0x01, 0x02, 0x03}));
        EXPECT_EQ(view->bcrDcr[0], 0x26);
        EXPECT_EQ(view->bcrDcr[1], 0xC6);
        EXPECT_EQ(view->dynamicAddress, 0x09);
    });
}

TEST_F(NotificationTest, AnIbiHoldsTheTargetsAddressAndThePayload) {
    route(ibi, [](const Notification& notification) {
        const I3cIbiData* const view = notification.i3cIbi();
        ASSERT_EQ(view, &notification.i3cIbiView);
        EXPECT_EQ(view->address, 0x09);
        EXPECT_EQ(view->payload, notification.data + 8);
        EXPECT_EQ(view->payloadLength, 2U);
    });
}

TEST_F(NotificationTest, AGpioEventIsTheByteBehindTheStatus) {
    route(gpio, [](const Notification& notification) {
        const GpioData* const view = notification.gpio();
        ASSERT_EQ(view, &notification.gpioView);
        EXPECT_EQ(view->value, 0x2A);
    });
}

TEST_F(NotificationTest, UartBytesAreCountedIn16BitsLittleEndian) {
    route(uartRx, [](const Notification& notification) {
        const UartRxData* const view = notification.uartRx();
        ASSERT_EQ(view, &notification.uartRxView);
        EXPECT_EQ(view->length, 5U);
        EXPECT_EQ(view->data, notification.data + 8);
    });
    Bytes longer = uartRx;
    longer[7] = 0x02;
    route(longer, [](const Notification& notification) {
        ASSERT_NE(notification.uartRx(), nullptr);
        EXPECT_EQ(notification.uartRx()->length, 0x0205U);
    });
}

TEST_F(NotificationTest, AnAnnouncedLengthBeyondTheFrameIsPassedOn) {
    route({0x00, 0x00, 0x81, 0x19, 0x00, 0x00, 0x09, 0xFF}, [](const Notification& notification) {
        ASSERT_NE(notification.i3cIbi(), nullptr);
        EXPECT_EQ(notification.i3cIbi()->payloadLength, 255U);
        EXPECT_EQ(notification.i3cIbi()->payload, notification.data + notification.size);
    });
    route({0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0xFF, 0xFF}, [](const Notification& notification) {
        ASSERT_NE(notification.uartRx(), nullptr);
        EXPECT_EQ(notification.uartRx()->length, 65'535U);
        EXPECT_EQ(notification.uartRx()->data, notification.data + notification.size);
    });
}

TEST_F(NotificationTest, AFrameOneByteShorterThanItsKindNeedsIsRefused) {
    struct Kind {
        Bytes frame;
        size_t minSize;
    };
    for (const Kind& kind : {Kind{hotJoin, 15}, Kind{ibi, 8}, Kind{gpio, 7}, Kind{uartRx, 8}}) {
        Bytes frame = kind.frame;
        frame.resize(kind.minSize);
        route(frame, [](const Notification& n) { EXPECT_EQ(acceptedBy(n).size(), 1U); });
        frame.resize(kind.minSize - 1);
        route(frame, [](const Notification& n) { EXPECT_EQ(acceptedBy(n), ""); });
    }
}

TEST_F(NotificationTest, AFrameLongerThanItsKindNeedsIsTaken) {
    for (Bytes frame : {hotJoin, ibi, gpio, uartRx}) {
        frame.resize(300);
        route(frame, [](const Notification& n) { EXPECT_EQ(acceptedBy(n).size(), 1U); });
    }
}

TEST_F(NotificationTest, DecodingTwiceGivesTheSame) {
    route(gpio, [](const Notification& notification) {
        ASSERT_NE(notification.gpio(), nullptr);
        EXPECT_EQ(notification.gpio(), notification.gpio());
        EXPECT_EQ(notification.gpio()->value, 0x2A);
    });
}

TEST(Notification, AnEmptyRecordIsRefusedByEveryAccessor) {
    for (const auto kind : {NotificationKind_I3cHotJoin, NotificationKind_I3cIbi,
                            NotificationKind_Gpio, NotificationKind_UartRx}) {
        Notification notification{};
        notification.kind = kind;
        EXPECT_EQ(acceptedBy(notification), "");
    }
}

// Over the link.

using NotificationOverTheLink = SdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(NotificationOverTheLink);

TEST_P(NotificationOverTheLink, ANotificationReachesTheHandlerWithoutAnyOperation) {
    std::vector<Bytes> frames;
    VeltraSDK object(0);
    object.onNotification([&](const Notification& notification) {
        frames.emplace_back(notification.data, notification.data + notification.size);
    });
    ASSERT_TRUE(object.connect(""));
    deliver({0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0xEE, 0xEE, 0x2A});
    deliver({0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0xEE, 0xEE, 0x2B});
    EXPECT_EQ(frames, (std::vector<Bytes>{{0x00, 0x00, 0x81, 0x14, 0xEE, 0xEE, 0x2A},
                                          {0x00, 0x00, 0x81, 0x14, 0xEE, 0xEE, 0x2B}}));
    object.disconnect();
}

TEST_P(NotificationOverTheLink, ANotificationOverSeveralReportsArrivesWhole) {
    Bytes sent{0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0xD0, 0x07};
    const Bytes text = counting(2000);
    sent.insert(sent.end(), text.begin(), text.end());
    std::vector<Bytes> received;
    VeltraSDK object(0);
    object.onNotification([&](const Notification& notification) {
        ASSERT_NE(notification.uartRx(), nullptr);
        received.emplace_back(notification.uartRx()->data,
                              notification.uartRx()->data + notification.uartRx()->length);
    });
    ASSERT_TRUE(object.connect(""));
    for (const Bytes& report : GetParam().inputs(sent)) {
        hid.deliver(report);
    }
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_TRUE(received == std::vector<Bytes>{text});
    object.disconnect();
}

TEST_P(NotificationOverTheLink, AHandlerOutlivesADisconnect) {
    size_t notifications = 0;
    VeltraSDK object(0);
    object.onNotification([&](const Notification&) { ++notifications; });
    ASSERT_TRUE(object.connect(""));
    object.disconnect();
    ASSERT_TRUE(object.connect(""));
    deliver({0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A});
    EXPECT_EQ(notifications, 1U);
    object.disconnect();
}

} // namespace
