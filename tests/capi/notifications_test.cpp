// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

#include <algorithm>
#include <cstring>

using namespace test_support;

namespace {

/// What a C callback saw; it has no argument for the caller's data, hence the one object.
struct Seen {
    size_t calls = 0;
    NotificationKind kind{};
    const uint8_t* data = nullptr;
    size_t size = 0;
    Bytes bytes;
    bool viewsAreZero = false;
    bool uartRxTaken = false;
    UartRxData uartRx{};
};

Seen seen;

template <typename View>
bool isZero(const View& view) {
    return memoryOf(view) == Bytes(sizeof(view));
}

void remember(const Notification* notification) {
    ++seen.calls;
    seen.kind = notification->kind;
    seen.data = notification->data;
    seen.size = notification->size;
    seen.bytes.assign(notification->data, notification->data + notification->size);
    seen.viewsAreZero = isZero(notification->i3cHotJoinView) && isZero(notification->i3cIbiView) &&
                        isZero(notification->gpioView) && isZero(notification->uartRxView);
    seen.uartRxTaken = VeltraSDK_notificationAsUartRx(notification, &seen.uartRx);
}

void neverCalled(const Notification* /*notification*/) {
    ADD_FAILURE() << "a replaced callback was called";
}

class BridgeTest : public SdkTest {
protected:
    BridgeTest() {
        seen = Seen();
        VeltraSDK_onNotification(idle.get(), remember);
    }

    /// A handle with the callback, not yet connected.
    VeltraSDK_Handle* listening() { return idle.get(); }

    /// Hands the adapter's message to the handle, as the polling thread does.
    void route(const Bytes& frame) { idle->sdk->handleResponse(frame); }

    /// A UART notification whose frame has @p size bytes.
    static Bytes uartNotification(size_t size) {
        Bytes frame = counting(size);
        const size_t text = size - 8;
        const Bytes header{0x00,
                           0x00,
                           0x81,
                           0x10,
                           0x00,
                           0x00,
                           static_cast<uint8_t>(text & 0xFFU),
                           static_cast<uint8_t>(text >> 8U)};
        std::copy(header.begin(), header.end(), frame.begin());
        return frame;
    }

    [[nodiscard]] Bytes buffer() const {
        return {idle->notificationData.begin(), idle->notificationData.end()};
    }

private:
    OwnedHandle idle{VeltraSDK_Create(0)};
};
INSTANTIATE_ON_BOTH_VARIANTS(BridgeTest);

TEST_P(BridgeTest, ANotificationReachesTheCallbackAsARecordOverTheHandlesBuffer) {
    route({0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A});
    EXPECT_EQ(seen.calls, 1U);
    EXPECT_EQ(seen.kind, NotificationKind_Gpio);
    EXPECT_EQ(seen.data, listening()->notificationData.data());
    EXPECT_EQ(seen.bytes, (Bytes{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A}));
    EXPECT_TRUE(seen.viewsAreZero);
}

TEST_P(BridgeTest, AnUnknownNotificationReachesTheCallbackToo) {
    route({0x00, 0x00, 0x83, 0x19, 0x00, 0x00});
    EXPECT_EQ(seen.kind, NotificationKind_Unknown);
    EXPECT_EQ(seen.bytes, (Bytes{0x00, 0x00, 0x83, 0x19, 0x00, 0x00}));
}

TEST_P(BridgeTest, ANotificationOf255BytesIsWhole) {
    const Bytes frame = uartNotification(255);
    route(frame);
    EXPECT_EQ(seen.size, 255U);
    EXPECT_EQ(seen.bytes, frame);
    EXPECT_TRUE(seen.uartRxTaken);
    EXPECT_EQ(seen.uartRx.length, 247U);
    EXPECT_EQ(seen.uartRx.data, seen.data + 8);
}

TEST_P(BridgeTest, ANotificationOf256BytesArrivesWithSizeZero) {
    const Bytes frame = uartNotification(256);
    route(frame);
    EXPECT_EQ(seen.calls, 1U);
    EXPECT_EQ(seen.size, 0U);
    EXPECT_FALSE(seen.uartRxTaken);
    EXPECT_EQ(buffer(), frame);
}

TEST_P(BridgeTest, ANotificationOf300BytesArrivesWithSizeZeroAndItsFirst256Bytes) {
    const Bytes frame = uartNotification(300);
    ASSERT_TRUE(VeltraSDK_Connect(listening(), nullptr));
    for (const Bytes& report : GetParam().inputs(frame)) {
        hid.deliver(report);
    }
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(seen.calls, 1U);
    EXPECT_EQ(seen.kind, NotificationKind_UartRx);
    EXPECT_EQ(seen.size, 0U);
    EXPECT_FALSE(seen.uartRxTaken);
    EXPECT_EQ(seen.data, listening()->notificationData.data());
    EXPECT_EQ(buffer(), Bytes(frame.begin(), frame.begin() + 256));
}

TEST_P(BridgeTest, TheNextNotificationOverwritesTheBuffer) {
    route(uartNotification(300));
    route({0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A});
    EXPECT_EQ(seen.calls, 2U);
    EXPECT_EQ(seen.bytes, (Bytes{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A}));
}

TEST_P(BridgeTest, ANullCallbackSilencesNotifications) {
    VeltraSDK_onNotification(listening(), nullptr);
    route({0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A});
    EXPECT_EQ(seen.calls, 0U);
    EXPECT_EQ(buffer(), Bytes(256)) << "nothing is copied either";
    VeltraSDK_onNotification(listening(), remember);
    route({0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A});
    EXPECT_EQ(seen.calls, 1U);
}

TEST_P(BridgeTest, ANewCallbackReplacesTheOneBefore) {
    VeltraSDK_onNotification(listening(), neverCalled);
    VeltraSDK_onNotification(listening(), remember);
    route({0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A});
    EXPECT_EQ(seen.calls, 1U);
}

TEST_P(BridgeTest, InstallingACallbackReplacesTheHandlerOfTheObject) {
    listening()->sdk->onNotification(
        [](const Notification&) { ADD_FAILURE() << "a replaced handler was called"; });
    VeltraSDK_onNotification(listening(), remember);
    route({0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A});
    EXPECT_EQ(seen.calls, 1U);
}

TEST_P(BridgeTest, EveryHandleHasItsOwnCallback) {
    const OwnedHandle other(VeltraSDK_Create(0));
    VeltraSDK_onNotification(other.get(), neverCalled);
    route({0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A});
    EXPECT_EQ(seen.calls, 1U);
}

TEST_P(BridgeTest, ACallbackOutlivesADisconnect) {
    ASSERT_TRUE(VeltraSDK_Connect(listening(), nullptr));
    VeltraSDK_Disconnect(listening());
    ASSERT_TRUE(VeltraSDK_Connect(listening(), nullptr));
    deliver({0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A});
    EXPECT_EQ(seen.calls, 1U);
}

TEST_P(BridgeTest, ANewHandleHasNoCallbackAndAnEmptyBuffer) {
    const OwnedHandle fresh(VeltraSDK_Create(0));
    EXPECT_EQ(fresh->notificationCallback, nullptr);
    EXPECT_EQ(fresh->notificationSize, 0);
    EXPECT_EQ(Bytes(fresh->notificationData.begin(), fresh->notificationData.end()), Bytes(256));
}

// The accessors.

Notification recordOf(NotificationKind kind, const Bytes& frame) {
    Notification record{};
    record.kind = kind;
    record.data = frame.data();
    record.size = frame.size();
    return record;
}

/// A record whose bytes no accessor may touch.
template <typename View>
View filled() {
    View view;
    std::memset(&view, 0xEE, sizeof(view));
    return view;
}

template <typename View>
bool isUntouched(const View& view) {
    return memoryOf(view) == Bytes(sizeof(view), 0xEE);
}

/// Checks an accessor's every refusal: @p frame is a whole notification of @p kind.
template <typename View>
void expectRefusals(bool (*accessor)(const Notification*, View*), NotificationKind kind,
                    Bytes frame) {
    View view = filled<View>();
    const Notification whole = recordOf(kind, frame);
    EXPECT_TRUE(accessor(&whole, &view)) << "what is refused below differs in one respect";
    EXPECT_FALSE(accessor(&whole, nullptr));
    EXPECT_FALSE(accessor(nullptr, nullptr));

    view = filled<View>();
    EXPECT_FALSE(accessor(nullptr, &view));
    EXPECT_TRUE(isUntouched(view));

    Bytes longFrame = frame;
    longFrame.resize(300);
    for (unsigned other = 0; other <= NotificationKind_Unknown; ++other) {
        if (other != kind) {
            const Notification record = recordOf(static_cast<NotificationKind>(other), longFrame);
            EXPECT_FALSE(accessor(&record, &view)) << "kind " << other;
            EXPECT_TRUE(isUntouched(view));
        }
    }

    frame.pop_back();
    const Notification tooShort = recordOf(kind, frame);
    EXPECT_FALSE(accessor(&tooShort, &view));
    EXPECT_TRUE(isUntouched(view));
}

TEST(NotificationAccessors, AHotJoinOf15BytesIsDecoded) {
    const Bytes frame{0x00, 0x00, 0x82, 0x19, 0xEE, 0xEE, 0x04, 0x6A,
                      0x00, 0x01, 0x02, 0x03, 0x26, 0xC6, 0x09};
    const Notification record = recordOf(NotificationKind_I3cHotJoin, frame);
    I3cHotJoinData view{};
    EXPECT_TRUE(VeltraSDK_notificationAsI3cHotJoin(&record, &view));
    EXPECT_EQ(Bytes(view.pid, view.pid + 6), (Bytes{0x04, 0x6A, 0x00, 0x01, 0x02, 0x03}));
    EXPECT_EQ(view.bcrDcr[0], 0x26);
    EXPECT_EQ(view.bcrDcr[1], 0xC6);
    EXPECT_EQ(view.dynamicAddress, 0x09);
    expectRefusals(VeltraSDK_notificationAsI3cHotJoin, NotificationKind_I3cHotJoin, frame);
}

TEST(NotificationAccessors, AnIbiOf8BytesIsDecoded) {
    const Bytes frame{0x00, 0x00, 0x81, 0x19, 0xEE, 0xEE, 0x09, 0x02};
    const Notification record = recordOf(NotificationKind_I3cIbi, frame);
    I3cIbiData view{};
    EXPECT_TRUE(VeltraSDK_notificationAsI3cIbi(&record, &view));
    EXPECT_EQ(view.address, 0x09);
    EXPECT_EQ(view.payload, frame.data() + 8);
    EXPECT_EQ(view.payloadLength, 2U) << "the adapter's word, whatever the size";
    expectRefusals(VeltraSDK_notificationAsI3cIbi, NotificationKind_I3cIbi, frame);
}

TEST(NotificationAccessors, AGpioEventOf7BytesIsDecodedIntoOneByte) {
    const Bytes frame{0x00, 0x00, 0x81, 0x14, 0xEE, 0xEE, 0x2A};
    const Notification record = recordOf(NotificationKind_Gpio, frame);
    unsigned char values[3] = {0xEE, 0xEE, 0xEE};
    EXPECT_TRUE(VeltraSDK_notificationAsGpio(&record, &values[1]));
    EXPECT_EQ(Bytes(values, values + 3), (Bytes{0xEE, 0x2A, 0xEE}));
    expectRefusals(VeltraSDK_notificationAsGpio, NotificationKind_Gpio, frame);
}

TEST(NotificationAccessors, UartBytesOf8BytesAreDecoded) {
    const Bytes frame{0x00, 0x00, 0x81, 0x10, 0xEE, 0xEE, 0x05, 0x01};
    const Notification record = recordOf(NotificationKind_UartRx, frame);
    UartRxData view{};
    EXPECT_TRUE(VeltraSDK_notificationAsUartRx(&record, &view));
    EXPECT_EQ(view.length, 0x0105U);
    EXPECT_EQ(view.data, frame.data() + 8);
    expectRefusals(VeltraSDK_notificationAsUartRx, NotificationKind_UartRx, frame);
}

TEST(NotificationAccessors, TheCallersRecordIsNotWritten) {
    const Bytes frame{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A};
    const Notification record = recordOf(NotificationKind_Gpio, frame);
    unsigned char value = 0;
    EXPECT_TRUE(VeltraSDK_notificationAsGpio(&record, &value));
    EXPECT_EQ(record.gpioView.value, 0);
}

} // namespace
