// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// In strict mode whoever waits learns at once that the adapter has gone. The objects wait without
// limit, or for longer than any test lasts: what does not end them lets them hang.
#include "support/SdkTest.hpp"

#include <future>

using namespace test_support;

namespace {

const Bytes readPin1{0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05};
const Bytes readPin2{0x17, 0x00, 0x02, 0x00, 0x03, 0x14, 0x05};
const Bytes pinIsHigh1{0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01};
const Bytes pinIsHigh2{0x1F, 0x00, 0x02, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01};
const Bytes enterBootMode2{0x13, 0x00, 0x02, 0x00, 0x02, 0x04};

constexpr auto untouched = static_cast<GpioLogicLevel>(untouchedByte);

class StrictGoneTest : public SdkTest {
protected:
    StrictGoneTest() : SdkTest(-1) {}

    uint16_t readPin() { return sdk().gpioDigitalRead(GpioPinNumber_5, level); }

    /// Begins to read a pin and returns when the request has been written.
    std::future<uint16_t> readPinMeanwhile() {
        VeltraSDK& object = sdk();
        const size_t before = hid.writes().size();
        auto read = std::async(std::launch::async,
                               [&] { return object.gpioDigitalRead(GpioPinNumber_5, level); });
        EXPECT_TRUE(hid.waitForWrites(before + 1));
        return read;
    }

    /// From now on every read fails; returns when one has, and has been dealt with.
    void unplug() {
        hid.failReading(true);
        EXPECT_TRUE(hid.waitForReads(hid.readCalls() + 2));
    }

    GpioLogicLevel level = untouched;
};
INSTANTIATE_IN_STRICT_MODE(StrictGoneTest);

TEST_P(StrictGoneTest, AReadErrorEndsAnOperationThatWaitsWithoutLimit) {
    auto read = readPinMeanwhile();
    hid.deliverReadError();
    EXPECT_EQ(read.get(), 0x4000);
    EXPECT_EQ(level, untouched);
}

TEST_P(StrictGoneTest, AReadErrorEndsAnOperationThatWaitsForLong) {
    VeltraSDK object(patientMs);
    object.setStrict(true);
    ASSERT_TRUE(object.connect(""));
    hid.respond([&](const Bytes&) {
        hid.deliverReadError();
        return std::vector<Bytes>();
    });
    EXPECT_EQ(object.gpioDigitalRead(GpioPinNumber_5, level), 0x4000);
}

TEST_P(StrictGoneTest, AReadErrorInTheMiddleOfAResponseEndsTheOperation) {
    hid.respond([&](const Bytes&) {
        Bytes response{0x01, 0x00, 0x05, 0x09, 0x00, 0x00, 0x00, 0x00, 0x00};
        response.resize(9 + 2000, 0x11);
        hid.failReading(true);
        return std::vector<Bytes>{GetParam().inputs(response).front()};
    });
    Bytes data;
    EXPECT_EQ(sdk().i2cRead(0, 0x50, {}, 2000, data, false), 0x4000);
    EXPECT_TRUE(data.empty());
}

TEST_P(StrictGoneTest, AWriteThatFailsAsTheAdapterGoesIsNotConnectedAndNoMoreIsWritten) {
    size_t reports = 0;
    hid.respond([&](const Bytes&) {
        if (++reports == 2) {
            hid.failWriting(-1);
            hid.failReading(true);
        }
        return std::vector<Bytes>();
    });
    EXPECT_EQ(sdk().uartSendMessage(Bytes(5000, 0x55)), 0x4000);
    EXPECT_EQ(hid.writes().size(), 2U);
}

TEST_P(StrictGoneTest, AResponseThatCameBeforeTheReadErrorIsTheAnswer) {
    hid.settleWrites(true);
    hid.failReadingBehindAnswers();
    hid.respond([&](const Bytes&) { return std::vector<Bytes>{GetParam().input(pinIsHigh1)}; });
    EXPECT_EQ(readPin(), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

TEST_P(StrictGoneTest, OnceTheAdapterHasGoneNothingIsSent) {
    VeltraSDK& object = sdk();
    EXPECT_TRUE(object.isConnected());
    unplug();
    EXPECT_FALSE(object.isConnected());
    EXPECT_EQ(readPin(), 0x4000);
    EXPECT_EQ(object.i3cResetBus(), 0x4000);
    VeltraSDK::DeviceInfo info;
    EXPECT_EQ(object.getDeviceInfo(info), 0x4000);
    EXPECT_EQ(object.enterBootMode(), 0x4000);
    expectNothingSent();
}

TEST_P(StrictGoneTest, WhoeverWaitsForATurnIsEndedToo) {
    auto first = readPinMeanwhile();
    VeltraSDK& object = sdk();
    std::vector<std::future<uint16_t>> others;
    others.reserve(3);
    for (int i = 0; i < 3; ++i) {
        others.push_back(std::async(std::launch::async, [&] { return object.i3cResetBus(); }));
    }
    hid.deliverReadError();
    EXPECT_EQ(first.get(), 0x4000);
    for (auto& other : others) {
        EXPECT_EQ(other.get(), 0x4000);
    }
    EXPECT_EQ(hid.writes().size(), 1U);
}

TEST_P(StrictGoneTest, AnAdapterThatStallsIsNotGone) {
    hid.failWriting(-1);
    EXPECT_EQ(sdk().uartSendMessage(Bytes(5000, 0x55)), 0x2000);
    EXPECT_EQ(hid.writes().size(), 1U);
    EXPECT_TRUE(sdk().isConnected());
    hid.failWriting(std::nullopt);
    onWire(readPin2, pinIsHigh2);
    EXPECT_EQ(readPin(), 0);
}

TEST_P(StrictGoneTest, AResponseToARequestWhoseWriteSeemedToFailIsItsAnswer) {
    hid.failWriting(-1);
    hid.settleWrites(true);
    onWire(readPin1, pinIsHigh1);
    EXPECT_EQ(readPin(), 0);
}

TEST_P(StrictGoneTest, ConnectedAgainTheObjectIsOfUse) {
    sdk();
    unplug();
    EXPECT_TRUE(sdk().connect("")) << "the link is open";
    EXPECT_EQ(readPin(), 0x4000);
    hid.failReading(false);
    sdk().disconnect();
    EXPECT_FALSE(sdk().isConnected());
    ASSERT_TRUE(sdk().connect(""));
    EXPECT_TRUE(sdk().isConnected());
    onWire(readPin1, pinIsHigh1);
    EXPECT_EQ(readPin(), 0);
}

// Ended by another thread.

TEST_P(StrictGoneTest, DisconnectingEndsAnotherThreadsOperation) {
    auto read = readPinMeanwhile();
    sdk().disconnect();
    EXPECT_EQ(read.get(), 0x4000);
    EXPECT_EQ(hid.openDevices(), 0U);
    ASSERT_TRUE(sdk().connect(""));
    onWire(readPin2, pinIsHigh2);
    EXPECT_EQ(readPin(), 0);
}

TEST_P(StrictGoneTest, EnteringBootModeEndsAnotherThreadsOperationBeforeItIsSent) {
    auto read = readPinMeanwhile();
    EXPECT_EQ(sdk().enterBootMode(), 0);
    EXPECT_EQ(read.get(), 0x4000);
    EXPECT_EQ(hid.writes().back(), GetParam().output(enterBootMode2));
    EXPECT_EQ(hid.openDevices(), 0U);
}

TEST_P(StrictGoneTest, BootModeThatCannotBeWrittenIsNoResponseAndLeavesTheLink) {
    hid.failWriting(-1);
    EXPECT_EQ(sdk().enterBootMode(), 0x2000);
    EXPECT_TRUE(sdk().isConnected());
}

TEST_P(StrictGoneTest, BootModeThatCannotBeWrittenAsTheAdapterGoesIsNotConnected) {
    hid.respond([&](const Bytes&) {
        hid.failWriting(-1);
        hid.failReading(true);
        return std::vector<Bytes>();
    });
    EXPECT_EQ(sdk().enterBootMode(), 0x4000);
}

TEST_P(StrictGoneTest, DestructionEndsAnotherThreadsOperationsAndWaitsUntilTheyHaveLeft) {
    auto object = std::make_unique<VeltraSDK>(-1);
    object->setStrict(true);
    ASSERT_TRUE(object->connect(""));
    auto info = std::async(std::launch::async, [used = object.get()] {
        VeltraSDK::DeviceInfo read;
        return used->getDeviceInfo(read);
    });
    ASSERT_TRUE(hid.waitForWrites(1));
    object.reset();
    EXPECT_EQ(info.get(), 0x4000);
}

TEST_P(StrictGoneTest, DestroyingAHandleEndsAnotherThreadsCallsAndWaitsUntilTheyHaveLeft) {
    OwnedHandle owned(VeltraSDK_Create(-1));
    VeltraSDK_SetStrict(owned.get(), true);
    ASSERT_TRUE(VeltraSDK_Connect(owned.get(), nullptr));
    Bytes data(16, untouchedByte);
    auto read = std::async(std::launch::async, [&, used = owned.get()] {
        return VeltraSDK_I2cRead(used, 0, 0x50, nullptr, 0, 16, data.data(), false);
    });
    ASSERT_TRUE(hid.waitForWrites(1));
    owned.reset();
    EXPECT_EQ(read.get(), notConnected);
    EXPECT_EQ(data, Bytes(16, untouchedByte));
}

/// Whether the adapter can be reached is told in both modes.
class IsConnectedTest : public ImpatientSdkTest {};
INSTANTIATE_IN_BOTH_MODES(IsConnectedTest);

TEST_P(IsConnectedTest, FromConnectingToTheFirstReadErrorOrDisconnecting) {
    VeltraSDK object(0);
    EXPECT_FALSE(object.isConnected());
    EXPECT_TRUE(sdk().isConnected());
    hid.failReading(true);
    ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 2));
    EXPECT_FALSE(sdk().isConnected());
    hid.failReading(false);
    ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 2));
    EXPECT_FALSE(sdk().isConnected()) << "a later read that succeeds changes nothing";
    sdk().disconnect();
    ASSERT_TRUE(sdk().connect(""));
    EXPECT_TRUE(sdk().isConnected());
    sdk().disconnect();
    EXPECT_FALSE(sdk().isConnected());
}

TEST_P(IsConnectedTest, AHandleTellsTheSame) {
    EXPECT_FALSE(VeltraSDK_IsConnected(nullptr));
    EXPECT_TRUE(VeltraSDK_IsConnected(handle()));
    VeltraSDK_Disconnect(handle());
    EXPECT_FALSE(VeltraSDK_IsConnected(handle()));
}

} // namespace
