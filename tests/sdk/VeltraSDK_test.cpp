// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

#include <future>
#include <limits>
#include <stdexcept>

using namespace test_support;

namespace {

// A pin is read in most tests: the smallest operation that decodes a payload.
const Bytes readPin1{0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05};
const Bytes readPin2{0x17, 0x00, 0x02, 0x00, 0x03, 0x14, 0x05};
const Bytes pinIsHigh1{0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01};
const Bytes pinIsHigh2{0x1F, 0x00, 0x02, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01};
const Bytes gpioEvent{0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A};

struct PinRead {
    uint16_t result;
    GpioLogicLevel level;
};

bool operator==(const PinRead& left, const PinRead& right) {
    return left.result == right.result && left.level == right.level;
}

std::ostream& operator<<(std::ostream& out, const PinRead& read) {
    return out << std::hex << "result 0x" << read.result << ", level " << unsigned{read.level};
}

PinRead readPin(VeltraSDK& sdk) {
    // A value that no response in this file carries.
    PinRead read{0, static_cast<GpioLogicLevel>(0xEE)};
    read.result = sdk.gpioDigitalRead(GpioPinNumber_5, read.level);
    return read;
}

constexpr auto untouched = static_cast<GpioLogicLevel>(0xEE);

using EngineTest = SdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(EngineTest);

/// The engine with a time-out of 0: an operation ends at once, and responses come late.
using LateResponseTest = ImpatientSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(LateResponseTest);

// Transaction identifiers.

TEST_P(EngineTest, IdentifiersRunFrom1To65535AndRoundTo1) {
    VeltraSDK object(0);
    for (unsigned expected = 1; expected <= 65'535; ++expected) {
        ASSERT_EQ(object.generateTransactionId(), expected);
    }
    EXPECT_EQ(object.generateTransactionId(), 1);
    EXPECT_EQ(object.generateTransactionId(), 2);
}

TEST_P(EngineTest, EveryObjectCountsItsOwnIdentifiers) {
    VeltraSDK first(0);
    VeltraSDK second(0);
    EXPECT_EQ(first.generateTransactionId(), 1);
    EXPECT_EQ(first.generateTransactionId(), 2);
    EXPECT_EQ(second.generateTransactionId(), 1);
}

TEST_P(EngineTest, EveryRequestTakesTheNextIdentifier) {
    onWire(readPin1, pinIsHigh1);
    onWire(readPin2, pinIsHigh2);
    EXPECT_EQ(readPin(sdk()).result, 0);
    EXPECT_EQ(readPin(sdk()).result, 0);
}

TEST_P(EngineTest, DisconnectingAndConnectingDoesNotResetTheIdentifiers) {
    onWire(readPin1, pinIsHigh1);
    onWire(readPin2, pinIsHigh2);
    EXPECT_EQ(readPin(sdk()).result, 0);
    sdk().disconnect();
    ASSERT_TRUE(sdk().connect(""));
    EXPECT_EQ(readPin(sdk()).result, 0);
}

TEST_P(EngineTest, AnOperationThatIsNotSentTakesAnIdentifierToo) {
    onWire(readPin2, pinIsHigh2);
    VeltraSDK object(patientMs);
    EXPECT_EQ(readPin(object).result, 0x4000);
    ASSERT_TRUE(object.connect(""));
    EXPECT_EQ(readPin(object).result, 0);
}

// Result codes.

TEST_P(EngineTest, TheStatusOfTheResponseIsTheResult) {
    onWire(readPin1, {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0xCD, 0xAB, 0x01});
    EXPECT_EQ(readPin(sdk()), (PinRead{0xABCD, GpioLogicLevel_High}));
}

TEST_P(EngineTest, AnOperationBeforeTheFirstConnectIsNotConnectedAndDoesNotWait) {
    VeltraSDK object(-1);
    EXPECT_EQ(readPin(object), (PinRead{0x4000, untouched}));
    expectNothingSent();
}

TEST_P(EngineTest, AnOperationAfterADisconnectIsNotConnected) {
    sdk().disconnect();
    EXPECT_EQ(readPin(sdk()), (PinRead{0x4000, untouched}));
    expectNothingSent();
}

TEST_P(EngineTest, ARefusedArgumentIsNotWaitedFor) {
    VeltraSDK object(-1);
    ASSERT_TRUE(object.connect(""));
    Bytes data;
    EXPECT_EQ(object.i2cRead(0, 0x50, Bytes(5), 1, data, false), 0x8000);
    expectNothingSent();
}

TEST_P(LateResponseTest, ARequestThatCannotBeWrittenGetsNoResponse) {
    hid.failWriting(-1);
    EXPECT_EQ(readPin(sdk()), (PinRead{0x2000, untouched}));
}

TEST_P(EngineTest, AResponseOfSixBytesIsWholeAndItsMissingPayloadReadsAsZero) {
    onWire(readPin1, {0x1B, 0x00, 0x01, 0x00, 0x03, 0x14, 0x34, 0x12});
    EXPECT_EQ(readPin(sdk()), (PinRead{0x1234, GpioLogicLevel_Low}));
}

// Time-outs.

TEST_P(EngineTest, WithoutATimeOutAnOperationWaitsForTheResponse) {
    onWire(readPin1);
    VeltraSDK object(-1);
    ASSERT_TRUE(object.connect(""));
    auto read = std::async(std::launch::async, [&] { return readPin(object); });
    ASSERT_TRUE(hid.waitForWrites(1));
    // Many reads time out meanwhile.
    ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 20));
    EXPECT_EQ(read.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    deliver(pinIsHigh1);
    EXPECT_EQ(read.get(), (PinRead{0, GpioLogicLevel_High}));
}

TEST_P(EngineTest, ZeroAndNegativeTimeOutsButMinusOneDoNotWait) {
    for (const int milliseconds : {0, -2, -1000, std::numeric_limits<int>::min()}) {
        VeltraSDK object(milliseconds);
        ASSERT_TRUE(object.connect(""));
        EXPECT_EQ(readPin(object), (PinRead{0x2000, untouched})) << milliseconds;
    }
}

TEST_P(EngineTest, ATimeOutThatPassesWithoutAResponseIsNoResponse) {
    onWire(readPin1);
    VeltraSDK object(20);
    ASSERT_TRUE(object.connect(""));
    EXPECT_EQ(readPin(object), (PinRead{0x2000, untouched}));
}

TEST_P(EngineTest, TheLongestTimeOutIsWaitedOutNoLongerThanUntilTheResponse) {
    onWire(readPin1, pinIsHigh1);
    VeltraSDK object(std::numeric_limits<int>::max());
    ASSERT_TRUE(object.connect(""));
    EXPECT_EQ(readPin(object), (PinRead{0, GpioLogicLevel_High}));
}

// Late responses.

TEST_P(LateResponseTest, ALateResponseCompletesTheNextOperationAtOnce) {
    onWire(readPin1);
    onWire(readPin2);
    EXPECT_EQ(readPin(sdk()).result, 0x2000);
    deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01});
    EXPECT_EQ(readPin(sdk()), (PinRead{0x1234, GpioLogicLevel_High}));
}

TEST_P(LateResponseTest, ALateResponseMakesTheNextOneLateToo) {
    EXPECT_EQ(readPin(sdk()).result, 0x2000);
    deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x11, 0x11, 0x00});
    EXPECT_EQ(readPin(sdk()).result, 0x1111);
    deliver({0x1F, 0x00, 0x02, 0x00, 0x03, 0x14, 0x22, 0x22, 0x00});
    EXPECT_EQ(readPin(sdk()).result, 0x2222);
    EXPECT_EQ(readPin(sdk()).result, 0x2000);
}

TEST_P(LateResponseTest, OfSeveralLateResponsesTheLastCompletesTheNextOperation) {
    EXPECT_EQ(readPin(sdk()).result, 0x2000);
    deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x11, 0x11, 0x00});
    deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x22, 0x22, 0x01});
    EXPECT_EQ(readPin(sdk()), (PinRead{0x2222, GpioLogicLevel_High}));
    EXPECT_EQ(readPin(sdk()).result, 0x2000);
}

TEST_P(LateResponseTest, ALateResponseOutlivesADisconnect) {
    EXPECT_EQ(readPin(sdk()).result, 0x2000);
    deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01});
    sdk().disconnect();
    EXPECT_EQ(readPin(sdk()).result, 0x4000) << "which does not use the response up";
    ASSERT_TRUE(sdk().connect(""));
    EXPECT_EQ(readPin(sdk()), (PinRead{0x1234, GpioLogicLevel_High}));
}

TEST_P(LateResponseTest, AnObjectThatHasFallenBehindStaysBehind) {
    EXPECT_EQ(readPin(sdk()).result, 0x2000);
    deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01});
    Bytes text{0xEE};
    for (uint8_t id = 2; id < 10; ++id) {
        EXPECT_EQ(sdk().getUsbString(text, 1), 0x6000);
        deliver({0x23, 0x00, id, 0x00, 0x07, 0x04, 0x00, 0x00, 0x02, 'A'});
    }
    sdk().disconnect();
    ASSERT_TRUE(sdk().connect(""));
    EXPECT_EQ(sdk().getUsbString(text, 1), 0x6000) << "reconnecting does not help";
    EXPECT_EQ(text, Bytes{0xEE});
}

TEST_P(LateResponseTest, ANewObjectIsInStepOnceTheOldOneHasTakenTheLateResponses) {
    {
        VeltraSDK behind(0);
        ASSERT_TRUE(behind.connect(""));
        EXPECT_EQ(readPin(behind).result, 0x2000);
        deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x11, 0x11, 0x00});
        EXPECT_EQ(readPin(behind).result, 0x1111);
        deliver({0x1F, 0x00, 0x02, 0x00, 0x03, 0x14, 0x22, 0x22, 0x00});
    }
    hid.expectWrite(
        GetParam().output({0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x01}),
        {GetParam().input({0x23, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x02, 'A'})});
    VeltraSDK object(patientMs);
    ASSERT_TRUE(object.connect(""));
    Bytes text;
    EXPECT_EQ(object.getUsbString(text, 1), 0);
    EXPECT_EQ(text, Bytes{'A'});
}

TEST_P(LateResponseTest, AResponseThatNobodyAskedForCompletesTheFirstOperation) {
    VeltraSDK& object = sdk();
    deliver({0x1F, 0x00, 0x99, 0x00, 0x05, 0x09, 0x34, 0x12, 0x01});
    EXPECT_EQ(readPin(object), (PinRead{0x1234, GpioLogicLevel_High}));
}

// Routing.

TEST_P(EngineTest, AResponseWithAWrongIdentifierCompletesAnOperation) {
    onWire(readPin1, {0x1F, 0x00, 0x99, 0x77, 0x03, 0x14, 0x34, 0x12, 0x01});
    EXPECT_EQ(readPin(sdk()), (PinRead{0x1234, GpioLogicLevel_High}));
}

TEST_P(EngineTest, AResponseWithAWrongCommandCodeCompletesAnOperation) {
    onWire(readPin1, {0x1F, 0x00, 0x01, 0x00, 0x05, 0x09, 0x34, 0x12, 0x01});
    EXPECT_EQ(readPin(sdk()), (PinRead{0x1234, GpioLogicLevel_High}));
}

TEST_P(EngineTest, ANotificationCodeWithAnIdentifierIsAResponse) {
    onWire(readPin1, {0x1F, 0x00, 0x01, 0x00, 0x81, 0x14, 0x34, 0x12, 0x01});
    EXPECT_EQ(readPin(sdk()), (PinRead{0x1234, GpioLogicLevel_High}));
}

TEST_P(EngineTest, ANotificationDoesNotEndAWait) {
    hid.expectWrite(GetParam().output(readPin1),
                    {GetParam().input(gpioEvent), GetParam().input(pinIsHigh1)});
    EXPECT_EQ(readPin(sdk()), (PinRead{0, GpioLogicLevel_High}));
}

TEST_P(EngineTest, ANotificationIsNoResponseToAnOperation) {
    hid.expectWrite(GetParam().output(readPin1), {GetParam().input(gpioEvent)});
    VeltraSDK object(50);
    ASSERT_TRUE(object.connect(""));
    EXPECT_EQ(readPin(object), (PinRead{0x2000, untouched}));
}

TEST_P(LateResponseTest, ANotificationDoesNotOverwriteAPendingResponse) {
    EXPECT_EQ(readPin(sdk()).result, 0x2000);
    deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01});
    deliver(gpioEvent);
    EXPECT_EQ(readPin(sdk()), (PinRead{0x1234, GpioLogicLevel_High}));
}

TEST_P(EngineTest, FramesShorterThanSixBytesAreDropped) {
    onWire(readPin1);
    onWire(readPin2);
    size_t notifications = 0;
    VeltraSDK object(0);
    object.onNotification([&](const Notification&) { ++notifications; });
    ASSERT_TRUE(object.connect(""));
    deliver({0x03, 0x00});
    deliver({0x07, 0x00, 0x01});
    deliver({0x0B, 0x00, 0x01, 0x00});
    deliver({0x0F, 0x00, 0x01, 0x00, 0x03});
    deliver({0x13, 0x00, 0x01, 0x00, 0x03, 0x14});
    deliver({0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x34});
    deliver({0x17, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00});
    EXPECT_EQ(readPin(object).result, 0x2000) << "none of them is a response";
    EXPECT_EQ(notifications, 0U) << "none of them is a notification";
    // What follows is taken as always.
    deliver({0x1B, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00});
    EXPECT_EQ(notifications, 1U);
    EXPECT_EQ(readPin(object).result, 0x2000);
    object.disconnect();
}

TEST_P(EngineTest, AFrameHandedInByHandIsRoutedLikeAReceivedOne) {
    VeltraSDK object(0);
    size_t notifications = 0;
    object.onNotification([&](const Notification&) { ++notifications; });
    object.handleResponse({});
    object.handleResponse({0x01});
    object.handleResponse({0x00, 0x00, 0x81, 0x14, 0x00, 0x00});
    EXPECT_EQ(notifications, 1U);
    object.handleResponse({0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01});
    EXPECT_EQ(notifications, 1U);
    ASSERT_TRUE(object.connect(""));
    EXPECT_EQ(readPin(object), (PinRead{0x1234, GpioLogicLevel_High}));
}

// Connecting.

TEST_P(EngineTest, ConnectingByPathOpensTheAdapterWithThatPath) {
    hid.attach({"1-2:1.0", vendorId, GetParam().productId, L"VA-0002"});
    VeltraSDK object(0);
    EXPECT_FALSE(object.connect("1-3:1.0"));
    EXPECT_FALSE(object.connect("VA-0002"));
    EXPECT_TRUE(object.connect("1-2:1.0"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
}

TEST_P(EngineTest, ConnectingBySerialNumberOpensTheAdapterWithThatSerialNumber) {
    hid.attach({"1-2:1.0", vendorId, GetParam().productId, L"VA-0002"});
    VeltraSDK object(0);
    EXPECT_FALSE(object.connectWithSerialNumber("va-0002"));
    EXPECT_FALSE(object.connectWithSerialNumber("1-2:1.0"));
    EXPECT_TRUE(object.connectWithSerialNumber("VA-0002"));
    EXPECT_EQ(hid.openedPath(), "1-2:1.0");
}

TEST_P(EngineTest, ASerialNumberThatCannotBeConvertedLeavesConnectAsARangeError) {
    hid.detachAll();
    hid.attach({"1-1:1.0", vendorId, GetParam().productId, std::wstring(1, wchar_t{0x110000})});
    VeltraSDK object(0);
    try {
        object.connectWithSerialNumber("VA-0001");
        ADD_FAILURE() << "no exception";
    } catch (const std::range_error& error) {
        EXPECT_STREQ(error.what(), "wstring_convert::to_bytes");
    }
    EXPECT_EQ(readPin(object).result, 0x4000);
    EXPECT_TRUE(object.connect(""));
}

TEST_P(EngineTest, ConnectingTheOtherModelGoesOnWithItsReportSize) {
    const Variant& other = GetParam().reportSize == fullSpeed.reportSize ? highSpeed : fullSpeed;
    hid.attach({"1-2:1.0", vendorId, other.productId, L"VA-0002"});
    hid.expectWrite(GetParam().output(readPin1), {GetParam().input(pinIsHigh1)});
    hid.expectWrite(other.output(readPin2), {other.input(pinIsHigh2)});
    EXPECT_EQ(readPin(sdk()).result, 0);
    sdk().disconnect();
    ASSERT_TRUE(sdk().connect("1-2:1.0"));
    EXPECT_EQ(readPin(sdk()).result, 0);
}

TEST_P(EngineTest, DestructionClosesTheLinkAndShutsHidapiDown) {
    auto object = std::make_unique<VeltraSDK>(0);
    ASSERT_TRUE(object->connect(""));
    EXPECT_EQ(hid.initCalls(), 1U);
    object.reset();
    EXPECT_EQ(hid.openDevices(), 0U);
    EXPECT_EQ(hid.exitCalls(), 1U);
}

TEST_P(EngineTest, AnObjectThatWasNeverConnectedSendsNothingAndOpensNothing) {
    std::make_unique<VeltraSDK>(-1).reset();
    expectNothingSent();
    EXPECT_EQ(hid.enumerateCalls(), 0U);
    EXPECT_EQ(hid.exitCalls(), 1U);
}

} // namespace
