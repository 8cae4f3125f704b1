// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// In strict mode an operation's answer is the response with its own identifier and command code.
#include "support/SdkTest.hpp"

#include <deque>
#include <mutex>

using namespace test_support;

namespace {

const Bytes readPin1{0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05};
const Bytes readPin2{0x17, 0x00, 0x02, 0x00, 0x03, 0x14, 0x05};
const Bytes pinIsHigh1{0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01};
const Bytes pinIsHigh2{0x1F, 0x00, 0x02, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01};
const Bytes pinIsLow1{0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x00};
const Bytes gpioEvent{0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A};

constexpr auto untouched = static_cast<GpioLogicLevel>(untouchedByte);

class StrictMatchingTest : public SdkTest {
protected:
    /// Expects the request that reads pin 5 under identifier 1, and answers it with @p packets.
    void onWireSeveral(const std::vector<Bytes>& packets) {
        std::vector<Bytes> answers;
        answers.reserve(packets.size());
        for (const Bytes& packet : packets) {
            answers.push_back(GetParam().input(packet));
        }
        hid.expectWrite(GetParam().output(readPin1), answers);
    }

    uint16_t readPin() { return sdk().gpioDigitalRead(GpioPinNumber_5, level); }

    GpioLogicLevel level = untouched;
};
INSTANTIATE_IN_STRICT_MODE(StrictMatchingTest);

TEST_P(StrictMatchingTest, AForeignResponseBeforeTheOwnIsDroppedAndCounted) {
    onWireSeveral({{0x1F, 0x00, 0x02, 0x00, 0x03, 0x14, 0x34, 0x12, 0x00}, pinIsHigh1});
    EXPECT_EQ(readPin(), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);
    EXPECT_EQ(sdk().getUnmatchedResponses(), 1U);
}

TEST_P(StrictMatchingTest, EachByteOfTheIdentifierAndOfTheCommandCodeHasToBeTheOwn) {
    onWireSeveral({{0x1F, 0x00, 0x01, 0x01, 0x03, 0x14, 0x34, 0x12, 0x00},
                   {0x1F, 0x00, 0x01, 0x00, 0x02, 0x14, 0x34, 0x12, 0x00},
                   {0x1F, 0x00, 0x01, 0x00, 0x03, 0x15, 0x34, 0x12, 0x00},
                   pinIsHigh1});
    EXPECT_EQ(readPin(), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);
    EXPECT_EQ(sdk().getUnmatchedResponses(), 3U);
}

TEST_P(StrictMatchingTest, OfADoubledResponseTheFirstCountsAndTheSecondIsDropped) {
    onWireSeveral({pinIsHigh1, pinIsLow1});
    onWire(readPin2, pinIsHigh2);
    EXPECT_EQ(readPin(), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);
    EXPECT_EQ(readPin(), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);
    EXPECT_EQ(sdk().getUnmatchedResponses(), 1U);
}

TEST_P(StrictMatchingTest, AResponseThatNobodyAskedForIsDroppedAndCounted) {
    EXPECT_EQ(sdk().getUnmatchedResponses(), 0U);
    deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x34, 0x12, 0x00});
    EXPECT_EQ(sdk().getUnmatchedResponses(), 1U);
    onWire(readPin1, pinIsHigh1);
    EXPECT_EQ(readPin(), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

TEST_P(StrictMatchingTest, NeitherANotificationNorAFrameWithoutStatusIsAnUnmatchedResponse) {
    onWireSeveral({gpioEvent, {0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00}, gpioEvent, pinIsHigh1});
    EXPECT_EQ(readPin(), 0);
    EXPECT_EQ(sdk().getUnmatchedResponses(), 0U);
}

TEST_P(StrictMatchingTest, TheStatusOfTheOwnResponseIsTheResult) {
    onWire(readPin1, {0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0xCD, 0xAB, 0x01});
    EXPECT_EQ(readPin(), 0xABCD);
    EXPECT_EQ(level, GpioLogicLevel_High);
}

TEST_P(StrictMatchingTest, ARefusedArgumentGivesItsTurnBack) {
    Bytes data;
    EXPECT_EQ(sdk().i2cRead(0, 0x50, Bytes(5), 1, data, false), 0x8000);
    onWire(readPin2, pinIsHigh2);
    EXPECT_EQ(readPin(), 0);
}

TEST_P(StrictMatchingTest, WithoutALinkAnOperationIsNotConnected) {
    VeltraSDK object(-1);
    object.setStrict(true);
    EXPECT_EQ(object.gpioDigitalRead(GpioPinNumber_5, level), 0x4000);
    VeltraSDK::DeviceInfo info;
    EXPECT_EQ(object.getDeviceInfo(info), 0x4000);
    expectNothingSent();
}

TEST_P(StrictMatchingTest, IdentifiersGoRoundFrom65535To1) {
    VeltraSDK object(patientMs);
    object.setStrict(true);
    ASSERT_TRUE(object.connect(""));
    for (unsigned i = 1; i < 65'535; ++i) {
        object.generateTransactionId();
    }
    onWire({0x17, 0x00, 0xFF, 0xFF, 0x03, 0x14, 0x05},
           {0x1F, 0x00, 0xFF, 0xFF, 0x03, 0x14, 0x00, 0x00, 0x01});
    EXPECT_EQ(object.gpioDigitalRead(GpioPinNumber_5, level), 0);
    onWire(readPin1, pinIsHigh1);
    EXPECT_EQ(object.gpioDigitalRead(GpioPinNumber_5, level), 0);
    EXPECT_EQ(object.getUnmatchedResponses(), 0U);
}

/// With a time-out of 0 an operation ends at once, and every response comes late.
class StrictLateResponseTest : public ImpatientSdkTest {};
INSTANTIATE_IN_STRICT_MODE(StrictLateResponseTest);

TEST_P(StrictLateResponseTest, ALateResponseIsDroppedAndCountedAndHarmsNobody) {
    GpioLogicLevel level = untouched;
    onWire(readPin1);
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0x2000);
    EXPECT_EQ(level, untouched);
    deliver(pinIsHigh1);
    EXPECT_EQ(sdk().getUnmatchedResponses(), 1U);
    onWire(readPin2);
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0x2000);
    EXPECT_EQ(level, untouched);
}

TEST_P(StrictLateResponseTest, ALateResponseOfManyReportsIsOneUnmatchedResponse) {
    Bytes data;
    EXPECT_EQ(sdk().i2cRead(0, 0x50, {}, 2000, data, false), 0x2000);
    Bytes response{0x01, 0x00, 0x05, 0x09, 0x00, 0x00, 0x00, 0x00, 0x00};
    response.resize(9 + 2000, 0x11);
    for (const Bytes& report : GetParam().inputs(response)) {
        hid.deliver(report);
    }
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(sdk().getUnmatchedResponses(), 1U);
    EXPECT_TRUE(data.empty());
}

/// An adapter with two I2C devices, each of which holds its own address everywhere. Its first
/// response comes late: together with the second one, behind a first attempt that has given up.
class TwoDevices {
public:
    explicit TwoDevices(const Variant& adapter) : variant(adapter) {}

    std::vector<Bytes> operator()(const Bytes& report) {
        Bytes response{report[3], report[4], report[5], report[6], 0x00, 0x00, 0x00, 0x00, 0x00};
        response.resize(9 + 16, report[10]);
        late.push_back(variant.inputs(response).front());
        if (requests++ == 0) {
            return {};
        }
        std::vector<Bytes> answers(late.begin(), late.end());
        late.clear();
        return answers;
    }

private:
    const Variant& variant;
    std::deque<Bytes> late;
    size_t requests = 0;
};

constexpr int alternatingReads = 2000;

class StrictOutOfStepTest : public ImpatientSdkTest {
protected:
    StrictOutOfStepTest() {
        hid.respond(TwoDevices(GetParam()));
        hid.settleWrites(true);
    }

    static uint8_t addressOf(int read) { return read % 2 == 0 ? 0x48 : 0x50; }
};
INSTANTIATE_IN_STRICT_MODE(StrictOutOfStepTest);

TEST_P(StrictOutOfStepTest, AfterOneLateResponseEveryReadOfTwoDevicesHasItsOwnData) {
    Bytes data;
    EXPECT_EQ(sdk().i2cRead(0, 0x48, {0x00}, 16, data, false), 0x2000);
    for (int i = 0; i < alternatingReads; ++i) {
        ASSERT_EQ(sdk().i2cRead(0, addressOf(i), {0x00}, 16, data, false), 0);
        ASSERT_EQ(data, Bytes(16, addressOf(i)));
    }
    EXPECT_EQ(sdk().getUnmatchedResponses(), 1U);
}

TEST_P(StrictOutOfStepTest, AfterOneLateResponseEveryReadOfTwoDevicesHasItsOwnDataInC) {
    const uint8_t registerAddress = 0;
    Bytes data(16);
    const auto read = [&](uint8_t address) {
        return VeltraSDK_I2cRead(handle(), 0, address, &registerAddress, 1, 16, data.data(), false);
    };
    EXPECT_EQ(read(0x48), noResponse);
    for (int i = 0; i < alternatingReads; ++i) {
        ASSERT_EQ(read(addressOf(i)), 0);
        ASSERT_EQ(data, Bytes(16, addressOf(i)));
    }
    EXPECT_EQ(VeltraSDK_GetUnmatchedResponses(handle()), 1U);
}

/// What an object does that has left strict mode, or was never in it.
class NotStrictTest : public ImpatientSdkTest {};
INSTANTIATE_ON_BOTH_VARIANTS(NotStrictTest);

TEST_P(NotStrictTest, SwitchedOffAgainTheNextResponseIsTheAnswerWhateverItAnswers) {
    sdk().setStrict(true);
    sdk().setStrict(false);
    deliver({0x1F, 0x00, 0x99, 0x00, 0x05, 0x09, 0x34, 0x12, 0x01});
    onWire(readPin1);
    GpioLogicLevel level = untouched;
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0x1234);
    EXPECT_EQ(level, GpioLogicLevel_High);
    EXPECT_EQ(sdk().getUnmatchedResponses(), 0U);
}

TEST_P(NotStrictTest, EveryReportOfARequestIsWrittenWhateverFailsAndNobodyWaitsForMore) {
    const Bytes message(3000, 0x55);
    hid.failWriting(-1);
    EXPECT_EQ(sdk().uartSendMessage(message), 0x2000);
    EXPECT_EQ(hid.writes().size(),
              (6 + 3000 + GetParam().reportSize - 3) / (GetParam().reportSize - 2));
}

TEST_P(NotStrictTest, AReadErrorEndsNothingAndTheNextRequestIsWritten) {
    hid.deliverReadError();
    GpioLogicLevel level = untouched;
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0x2000);
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(sdk().gpioDigitalRead(GpioPinNumber_5, level), 0x2000);
    EXPECT_EQ(hid.writes().size(), 2U);
}

TEST_P(NotStrictTest, TheOverlapIsRefused) {
    EXPECT_EQ(sdk().setOverlap(1), 0x8000);
    EXPECT_EQ(sdk().setOverlap(2), 0x8000);
    sdk().setStrict(true);
    EXPECT_EQ(sdk().setOverlap(0), 0x8000);
    EXPECT_EQ(sdk().setOverlap(5), 0x8000);
    EXPECT_EQ(sdk().setOverlap(1), 0);
    EXPECT_EQ(sdk().setOverlap(4), 0);
    sdk().setStrict(false);
    EXPECT_EQ(sdk().setOverlap(2), 0x8000);
}

TEST_P(NotStrictTest, TheModeIsSwitchedThroughTheHandleToo) {
    EXPECT_EQ(VeltraSDK_SetOverlap(nullptr, 1), notConnected);
    EXPECT_EQ(VeltraSDK_GetUnmatchedResponses(nullptr), 0U);
    VeltraSDK_SetStrict(nullptr, true);
    EXPECT_EQ(VeltraSDK_SetOverlap(handle(), 1), refused);
    VeltraSDK_SetStrict(handle(), true);
    EXPECT_EQ(VeltraSDK_SetOverlap(handle(), 5), refused);
    EXPECT_EQ(VeltraSDK_SetOverlap(handle(), 4), 0);
    deliver(pinIsHigh1);
    EXPECT_EQ(VeltraSDK_GetUnmatchedResponses(handle()), 1U);
    VeltraSDK_SetStrict(handle(), false);
    deliver(pinIsHigh1);
    EXPECT_EQ(VeltraSDK_GetUnmatchedResponses(handle()), 1U);
}

} // namespace
