// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

using namespace test_support;

namespace {

using SystemTest = SdkTest;
INSTANTIATE_IN_BOTH_MODES(SystemTest);

/// What strict mode does otherwise.
using SystemOutOfStepTest = SdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(SystemOutOfStepTest);

const Bytes askForString1{0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x01};
const Bytes askForString2{0x17, 0x00, 0x02, 0x00, 0x07, 0x04, 0x02};
const Bytes askForString3{0x17, 0x00, 0x03, 0x00, 0x07, 0x04, 0x03};
const Bytes askForString4{0x17, 0x00, 0x04, 0x00, 0x07, 0x04, 0x04};
const Bytes askForString5{0x17, 0x00, 0x05, 0x00, 0x07, 0x04, 0x05};
const Bytes string1{0x27, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x03, 'o', 'n'};
const Bytes string2{0x2B, 0x00, 0x02, 0x00, 0x07, 0x04, 0x00, 0x00, 0x04, 't', 'w', 'o'};

// One string.

TEST_P(SystemTest, AStringIsTheBytesBehindTheLengthByte) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x03},
           {0x33, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x06, 'H', 'e', 'l', 'l', 'o'});
    Bytes text{0xEE};
    EXPECT_EQ(sdk().getUsbString(text, 3), 0);
    EXPECT_EQ(text, (Bytes{'H', 'e', 'l', 'l', 'o'}));
}

TEST_P(SystemTest, BytesBehindTheAnnouncedStringAreIgnored) {
    onWire(askForString1,
           {0x2F, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x03, 'A', 'B', 0xEE, 0xEE});
    Bytes text;
    EXPECT_EQ(sdk().getUsbString(text, 1), 0);
    EXPECT_EQ(text, (Bytes{'A', 'B'}));
}

TEST_P(SystemTest, AStringMayHoldAnyBytes) {
    onWire(askForString1, {0x2B, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x04, 0x00, 0xFF, 0x80});
    Bytes text;
    EXPECT_EQ(sdk().getUsbString(text, 1), 0);
    EXPECT_EQ(text, (Bytes{0x00, 0xFF, 0x80}));
}

TEST_P(SystemTest, ALengthByteOfOneIsTheEmptyString) {
    onWire(askForString1, {0x1F, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x01});
    Bytes text{0xEE};
    EXPECT_EQ(sdk().getUsbString(text, 1), 0);
    EXPECT_TRUE(text.empty());
}

TEST_P(SystemTest, ALengthByteOfZeroIsTheEmptyString) {
    onWire(askForString1, {0x23, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x00, 'A'});
    Bytes text{0xEE};
    EXPECT_EQ(sdk().getUsbString(text, 1), 0);
    EXPECT_TRUE(text.empty());
}

TEST_P(SystemTest, AMissingLengthByteIsTheEmptyString) {
    onWire(askForString1, {0x1B, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00});
    Bytes text{0xEE};
    EXPECT_EQ(sdk().getUsbString(text, 1), 0);
    EXPECT_TRUE(text.empty());
}

TEST_P(SystemTest, MissingBytesOfAStringReadAsZero) {
    onWire(askForString1, {0x27, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x06, 'H', 'e'});
    Bytes text;
    EXPECT_EQ(sdk().getUsbString(text, 1), 0);
    EXPECT_EQ(text, (Bytes{'H', 'e', 0x00, 0x00, 0x00}));
}

TEST_P(SystemTest, TheLongestStringHas254Bytes) {
    Bytes response{0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0xFF};
    const Bytes longest = counting(254);
    response.insert(response.end(), longest.begin(), longest.end());
    onWireLong({0x01, 0x00, 0x07, 0x04, 0x01}, response);
    Bytes text;
    EXPECT_EQ(sdk().getUsbString(text, 1), 0);
    EXPECT_EQ(text, longest);
}

TEST_P(SystemTest, AStringIsReadWhateverTheStatus) {
    onWire(askForString1, {0x27, 0x00, 0x01, 0x00, 0x07, 0x04, 0x34, 0x12, 0x03, 'A', 'B'});
    Bytes text;
    EXPECT_EQ(sdk().getUsbString(text, 1), 0);
    EXPECT_EQ(text, (Bytes{'A', 'B'}));
}

TEST_P(SystemTest, AnyIndexIsPassedOn) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0xFF},
           {0x1F, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x01});
    Bytes text;
    EXPECT_EQ(sdk().getUsbString(text, 255), 0);
}

TEST_P(SystemOutOfStepTest, AStringWithAWrongIdentifierIsUnexpected) {
    onWire(askForString1, {0x23, 0x00, 0x02, 0x00, 0x07, 0x04, 0x00, 0x00, 0x02, 'A'});
    onWire({0x17, 0x00, 0x02, 0x00, 0x07, 0x04, 0x01},
           {0x23, 0x00, 0x02, 0x01, 0x07, 0x04, 0x00, 0x00, 0x02, 'A'});
    Bytes text{0xEE};
    EXPECT_EQ(sdk().getUsbString(text, 1), 0x6000);
    EXPECT_EQ(sdk().getUsbString(text, 1), 0x6000);
    EXPECT_EQ(text, Bytes{0xEE});
}

TEST_P(SystemOutOfStepTest, AStringWithAWrongCommandCodeIsUnexpected) {
    onWire(askForString1, {0x23, 0x00, 0x01, 0x00, 0x05, 0x04, 0x00, 0x00, 0x02, 'A'});
    onWire({0x17, 0x00, 0x02, 0x00, 0x07, 0x04, 0x01},
           {0x23, 0x00, 0x02, 0x00, 0x07, 0x05, 0x00, 0x00, 0x02, 'A'});
    Bytes text{0xEE};
    EXPECT_EQ(sdk().getUsbString(text, 1), 0x6000);
    EXPECT_EQ(sdk().getUsbString(text, 1), 0x6000);
    EXPECT_EQ(text, Bytes{0xEE});
}

TEST_P(SystemOutOfStepTest, ALateResponseToAnotherOperationIsUnexpected) {
    VeltraSDK object(0);
    ASSERT_TRUE(object.connect(""));
    GpioLogicLevel level{};
    EXPECT_EQ(object.gpioDigitalRead(GpioPinNumber_5, level), 0x2000);
    deliver({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01});
    Bytes text{0xEE};
    EXPECT_EQ(object.getUsbString(text, 1), 0x6000);
    EXPECT_EQ(text, Bytes{0xEE});
}

TEST_P(SystemTest, AStringThatDoesNotComeIsNoResponse) {
    onWire(askForString1);
    VeltraSDK object(0);
    ASSERT_TRUE(object.connect(""));
    Bytes text{0xEE};
    EXPECT_EQ(object.getUsbString(text, 1), 0x2000);
    EXPECT_EQ(text, Bytes{0xEE});
}

TEST_P(SystemTest, AStringIsNotReadWithoutALink) {
    VeltraSDK object(-1);
    Bytes text{0xEE};
    EXPECT_EQ(object.getUsbString(text, 1), 0x4000);
    EXPECT_EQ(text, Bytes{0xEE});
    expectNothingSent();
}

// All five strings.

TEST_P(SystemTest, DeviceInfoIsFiveStringsByFiveRequests) {
    onWire(askForString1, string1);
    onWire(askForString2, string2);
    onWire(askForString3, {0x1F, 0x00, 0x03, 0x00, 0x07, 0x04, 0x00, 0x00, 0x01});
    onWire(askForString4,
           {0x2F, 0x00, 0x04, 0x00, 0x07, 0x04, 0x00, 0x00, 0x05, 'f', 'o', 'u', 'r'});
    onWire(askForString5, {0x2B, 0x00, 0x05, 0x00, 0x07, 0x04, 0x00, 0x00, 0x04, 0xE9, 0x00, 0xFF});
    VeltraSDK::DeviceInfo info{"?", "?", "?", "?", "?"};
    EXPECT_EQ(sdk().getDeviceInfo(info), 0);
    EXPECT_EQ(info.usbString1, "on");
    EXPECT_EQ(info.usbString2, "two");
    EXPECT_EQ(info.usbString3, "");
    EXPECT_EQ(info.usbString4, "four");
    EXPECT_EQ(info.usbString5, std::string("\xE9\0\xFF", 3)) << "bytes, without any conversion";
    EXPECT_EQ(hid.writes().size(), 5U);
}

TEST_P(SystemTest, DeviceInfoStopsAtTheFirstStringThatDoesNotCome) {
    // Strings 1 and 2 are there at once, so that no wait is needed for them.
    VeltraSDK object(0);
    hid.respond([&](const Bytes& report) {
        if (report[7] < 3) {
            object.handleResponse({report[3], 0x00, 0x07, 0x04, 0x00, 0x00, 0x02,
                                   static_cast<uint8_t>('0' + report[7])});
        }
        return std::vector<Bytes>();
    });
    ASSERT_TRUE(object.connect(""));
    VeltraSDK::DeviceInfo info{"?", "?", "?", "?", "?"};
    EXPECT_EQ(object.getDeviceInfo(info), 0x2000);
    EXPECT_EQ(info.usbString1, "1");
    EXPECT_EQ(info.usbString2, "2");
    EXPECT_EQ(info.usbString3, "?");
    EXPECT_EQ(info.usbString4, "?");
    EXPECT_EQ(info.usbString5, "?");
    EXPECT_EQ(hid.writes(), (std::vector<Bytes>{GetParam().output(askForString1),
                                                GetParam().output(askForString2),
                                                GetParam().output(askForString3)}));
}

TEST_P(SystemOutOfStepTest, DeviceInfoStopsAtAnUnexpectedResponse) {
    onWire(askForString1, string1);
    onWire(askForString2, {0x23, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x02, 'A'});
    VeltraSDK::DeviceInfo info{"?", "?", "?", "?", "?"};
    EXPECT_EQ(sdk().getDeviceInfo(info), 0x6000);
    EXPECT_EQ(info.usbString1, "on");
    EXPECT_EQ(info.usbString2, "?");
    EXPECT_EQ(hid.writes().size(), 2U);
}

TEST_P(SystemTest, DeviceInfoIsNotReadWithoutALink) {
    VeltraSDK object(-1);
    VeltraSDK::DeviceInfo info{"?", "?", "?", "?", "?"};
    EXPECT_EQ(object.getDeviceInfo(info), 0x4000);
    EXPECT_EQ(info.usbString1, "?");
    expectNothingSent();
    EXPECT_EQ(object.generateTransactionId(), 1) << "no identifier was taken";
}

// Boot mode.

TEST_P(SystemTest, BootModeIsOneRequestWithoutAWaitAndEndsTheLink) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x02, 0x04});
    // It would wait for ever.
    VeltraSDK object(-1);
    ASSERT_TRUE(object.connect(""));
    EXPECT_EQ(object.enterBootMode(), 0);
    EXPECT_EQ(hid.openDevices(), 0U);
    EXPECT_EQ(object.enterBootMode(), 0x4000);
    VeltraSDK::DeviceInfo info;
    EXPECT_EQ(object.getDeviceInfo(info), 0x4000);
}

TEST_P(SystemTest, AfterBootModeTheObjectConnectsAgain) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x02, 0x04});
    onWire({0x17, 0x00, 0x02, 0x00, 0x07, 0x04, 0x01},
           {0x1F, 0x00, 0x02, 0x00, 0x07, 0x04, 0x00, 0x00, 0x01});
    EXPECT_EQ(sdk().enterBootMode(), 0);
    ASSERT_TRUE(sdk().connect(""));
    Bytes text;
    EXPECT_EQ(sdk().getUsbString(text, 1), 0);
}

TEST_P(SystemOutOfStepTest, BootModeDoesNotUseUpALateResponse) {
    VeltraSDK object(0);
    ASSERT_TRUE(object.connect(""));
    deliver({0x1F, 0x00, 0x99, 0x00, 0x03, 0x14, 0x34, 0x12, 0x01});
    EXPECT_EQ(object.enterBootMode(), 0);
    ASSERT_TRUE(object.connect(""));
    GpioLogicLevel level{};
    EXPECT_EQ(object.gpioDigitalRead(GpioPinNumber_5, level), 0x1234);
}

TEST_P(SystemOutOfStepTest, BootModeCountsAsSentThoughTheWriteFails) {
    hid.failWriting(-1);
    EXPECT_EQ(sdk().enterBootMode(), 0);
    EXPECT_EQ(hid.openDevices(), 0U);
}

TEST_P(SystemTest, BootModeIsNotEnteredWithoutALink) {
    VeltraSDK object(-1);
    EXPECT_EQ(object.enterBootMode(), 0x4000);
    expectNothingSent();
}

} // namespace
