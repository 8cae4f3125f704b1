// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

#include <string>

using namespace test_support;

namespace {

const Bytes askForString1{0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x01};
const Bytes askForString2{0x17, 0x00, 0x02, 0x00, 0x07, 0x04, 0x02};
const Bytes askForString3{0x17, 0x00, 0x03, 0x00, 0x07, 0x04, 0x03};
const Bytes askForString4{0x17, 0x00, 0x04, 0x00, 0x07, 0x04, 0x04};
const Bytes askForString5{0x17, 0x00, 0x05, 0x00, 0x07, 0x04, 0x05};

using SystemInC = SdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(SystemInC);
using ImpatientSystemInC = ImpatientSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(ImpatientSystemInC);

// Device information.

TEST_P(SystemInC, DeviceInfoIsFiveTerminatedCopiesWithTheirLengths) {
    onWire(askForString1, {0x27, 0x00, 0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0x03, 'o', 'n'});
    onWire(askForString2, {0x1F, 0x00, 0x02, 0x00, 0x07, 0x04, 0x00, 0x00, 0x01});
    onWire(askForString3, {0x2B, 0x00, 0x03, 0x00, 0x07, 0x04, 0x00, 0x00, 0x04, 'a', 0x00, 0xFF});
    onWire(askForString4,
           {0x2F, 0x00, 0x04, 0x00, 0x07, 0x04, 0x00, 0x00, 0x05, 'f', 'o', 'u', 'r'});
    onWire(askForString5, {0x23, 0x00, 0x05, 0x00, 0x07, 0x04, 0x00, 0x00, 0x02, '5'});
    VeltraSDK_DeviceInfo info{};
    EXPECT_EQ(VeltraSDK_GetDeviceInfo(handle(), &info), 0);
    // The length counts every byte but the NUL behind them.
    EXPECT_EQ(std::string(info.usbString1, info.usbString1Length + 1), std::string("on\0", 3));
    EXPECT_EQ(std::string(info.usbString2, info.usbString2Length + 1), std::string("\0", 1));
    EXPECT_EQ(std::string(info.usbString3, info.usbString3Length + 1), std::string("a\0\xFF\0", 4));
    EXPECT_EQ(std::string(info.usbString4, info.usbString4Length + 1), std::string("four\0", 5));
    EXPECT_EQ(std::string(info.usbString5, info.usbString5Length + 1), std::string("5\0", 2));
    delete[] info.usbString1;
    delete[] info.usbString2;
    delete[] info.usbString3;
    delete[] info.usbString4;
    delete[] info.usbString5;
}

TEST_P(ImpatientSystemInC, AFailedDeviceInfoLeavesTheRecordUntouched) {
    // The first four strings are there at once; the fifth never comes.
    hid.respond([&](const Bytes& report) {
        if (report[7] < 5) {
            handle()->sdk->handleResponse({report[3], 0x00, 0x07, 0x04, 0x00, 0x00, 0x02, 'A'});
        }
        return std::vector<Bytes>();
    });
    char text[] = "?";
    VeltraSDK_DeviceInfo info{text, 1, text, 2, text, 3, text, 4, text, 5};
    EXPECT_EQ(VeltraSDK_GetDeviceInfo(handle(), &info), 0x2000);
    EXPECT_EQ(hid.writes().size(), 5U);
    for (const char* const pointer :
         {info.usbString1, info.usbString2, info.usbString3, info.usbString4, info.usbString5}) {
        EXPECT_EQ(pointer, text);
    }
    EXPECT_EQ(info.usbString1Length, 1U);
    EXPECT_EQ(info.usbString2Length, 2U);
    EXPECT_EQ(info.usbString3Length, 3U);
    EXPECT_EQ(info.usbString4Length, 4U);
    EXPECT_EQ(info.usbString5Length, 5U);
}

TEST_P(SystemInC, ADeviceInfoOfAnotherRequestIsUnexpected) {
    onWire(askForString1, {0x23, 0x00, 0x09, 0x00, 0x07, 0x04, 0x00, 0x00, 0x02, 'A'});
    VeltraSDK_DeviceInfo info{};
    EXPECT_EQ(VeltraSDK_GetDeviceInfo(handle(), &info), 0x6000);
    EXPECT_EQ(info.usbString1, nullptr);
}

// One string.

constexpr size_t wholeRoom = 255;

TEST_P(SystemInC, AStringIsStoredWithANulBehindIt) {
    onWire({0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x03},
           {0x2B, 0x00, 0x01, 0x00, 0x07, 0x04, 0x34, 0x12, 0x04, 'a', 0x00, 0xFF});
    std::string text(5, '?');
    EXPECT_EQ(VeltraSDK_GetUsbString(handle(), 3, text.data(), wholeRoom), 0) << "any status";
    EXPECT_EQ(text, std::string("a\0\xFF\0?", 5));
}

TEST_P(SystemInC, TheLongestStringFits) {
    Bytes response{0x01, 0x00, 0x07, 0x04, 0x00, 0x00, 0xFF};
    response.insert(response.end(), 254, 'x');
    onWireLong({0x01, 0x00, 0x07, 0x04, 0xFF}, response);
    std::string text(wholeRoom, '?');
    EXPECT_EQ(VeltraSDK_GetUsbString(handle(), 0xFF, text.data(), text.size()), 0);
    EXPECT_EQ(text, std::string(254, 'x') + '\0');
}

TEST_P(SystemInC, AStringThatDoesNotFitWithItsNulIsRefused) {
    std::string text(4, '?');
    for (const size_t capacity : {3U, 2U, 0U}) {
        const auto id = static_cast<uint8_t>(hid.writes().size() + 1);
        onWire({0x17, 0x00, id, 0x00, 0x07, 0x04, 0x01},
               {0x2B, 0x00, id, 0x00, 0x07, 0x04, 0x00, 0x00, 0x04, 'o', 'n', 'e'});
        EXPECT_EQ(VeltraSDK_GetUsbString(handle(), 1, text.data(), capacity), refused);
        EXPECT_EQ(text, "????");
    }
    onWire({0x17, 0x00, 0x04, 0x00, 0x07, 0x04, 0x01},
           {0x2B, 0x00, 0x04, 0x00, 0x07, 0x04, 0x00, 0x00, 0x04, 'o', 'n', 'e'});
    EXPECT_EQ(VeltraSDK_GetUsbString(handle(), 1, text.data(), 4), 0);
    EXPECT_STREQ(text.c_str(), "one");
}

TEST_P(SystemInC, WithoutABufferNoStringIsAskedFor) {
    EXPECT_EQ(VeltraSDK_GetUsbString(handle(), 1, nullptr, wholeRoom), refused);
    VeltraSDK_Disconnect(handle());
    EXPECT_EQ(VeltraSDK_GetUsbString(handle(), 1, nullptr, wholeRoom), refused);
    EXPECT_EQ(VeltraSDK_GetUsbString(nullptr, 1, nullptr, wholeRoom), notConnected);
    expectNothingSent();
}

TEST_P(SystemInC, AStringOfAnotherRequestIsNotStored) {
    onWire(askForString1, {0x23, 0x00, 0x09, 0x00, 0x07, 0x04, 0x00, 0x00, 0x02, 'A'});
    char text[] = "?";
    EXPECT_EQ(VeltraSDK_GetUsbString(handle(), 1, text, sizeof text), 0x6000);
    EXPECT_STREQ(text, "?");
}

// Boot mode.

TEST_P(SystemInC, BootModeIsOneRequestAndEndsTheLink) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x02, 0x04});
    EXPECT_EQ(VeltraSDK_EnterBootMode(handle()), 0);
    EXPECT_EQ(hid.openDevices(), 0U);
    EXPECT_EQ(VeltraSDK_EnterBootMode(handle()), 0x4000);
}

} // namespace
