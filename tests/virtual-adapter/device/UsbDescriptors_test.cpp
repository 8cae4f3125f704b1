// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/UsbDescriptors.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

using namespace virtual_adapter;

namespace {

const UsbIdentity fullSpeed{fullSpeedVariant, 0x1209,   0x0001,
                            0x0100,           "Veltra", std::chrono::milliseconds(1)};
const UsbIdentity highSpeed{highSpeedVariant, 0x1209,   0x0002,
                            0x0100,           "Veltra", std::chrono::microseconds(125)};

TEST(UsbDescriptors, TheDeviceDescriptorNamesTheModel) {
    EXPECT_EQ(deviceDescriptor(fullSpeed), (Bytes{18, 1, 0x00, 0x02, 0, 0, 0, 64, 0x09, 0x12, 0x01,
                                                  0x00, 0x00, 0x01, 1, 2, 3, 1}));
    EXPECT_EQ(deviceDescriptor(highSpeed), (Bytes{18, 1, 0x00, 0x02, 0, 0, 0, 64, 0x09, 0x12, 0x02,
                                                  0x00, 0x00, 0x01, 1, 2, 3, 1}));
}

TEST(UsbDescriptors, AFullSpeedConfigurationHas64BytePackets) {
    EXPECT_EQ(configurationDescriptor(fullSpeed),
              (Bytes{0x09, 0x02, 0x29, 0x00, 0x01, 0x01, 0x00, 0x80, 0x32, // configuration
                     0x09, 0x04, 0x00, 0x00, 0x02, 0x03, 0x00, 0x00, 0x00, // interface
                     0x09, 0x21, 0x11, 0x01, 0x00, 0x01, 0x22, 0x1B, 0x00, // HID
                     0x07, 0x05, 0x81, 0x03, 0x40, 0x00, 0x01,             // in
                     0x07, 0x05, 0x01, 0x03, 0x40, 0x00, 0x01}));          // out
}

TEST(UsbDescriptors, AHighSpeedConfigurationHas1024BytePackets) {
    EXPECT_EQ(configurationDescriptor(highSpeed),
              (Bytes{0x09, 0x02, 0x29, 0x00, 0x01, 0x01, 0x00, 0x80, 0x32, // configuration
                     0x09, 0x04, 0x00, 0x00, 0x02, 0x03, 0x00, 0x00, 0x00, // interface
                     0x09, 0x21, 0x11, 0x01, 0x00, 0x01, 0x22, 0x1D, 0x00, // HID
                     0x07, 0x05, 0x81, 0x03, 0x00, 0x04, 0x01,             // in
                     0x07, 0x05, 0x01, 0x03, 0x00, 0x04, 0x01}));          // out
}

TEST(UsbDescriptors, ReportsAreUnnumberedAndOfTheModelsSize) {
    EXPECT_EQ(
        reportDescriptor(fullSpeed),
        (Bytes{0x06, 0x00, 0xFF, 0x09, 0x01, 0xA1, 0x01, 0x15, 0x00, 0x26, 0xFF, 0x00, 0x75, 0x08,
               0x95, 0x40, 0x09, 0x02, 0x81, 0x02, 0x95, 0x40, 0x09, 0x03, 0x91, 0x02, 0xC0}));
    EXPECT_EQ(reportDescriptor(highSpeed),
              (Bytes{0x06, 0x00, 0xFF, 0x09, 0x01, 0xA1, 0x01, 0x15, 0x00, 0x26,
                     0xFF, 0x00, 0x75, 0x08, 0x96, 0x00, 0x04, 0x09, 0x02, 0x81,
                     0x02, 0x96, 0x00, 0x04, 0x09, 0x03, 0x91, 0x02, 0xC0}));
}

TEST(UsbDescriptors, OnlyAHighSpeedDeviceHasAnotherSpeed) {
    EXPECT_EQ(deviceQualifierDescriptor(highSpeed), (Bytes{10, 6, 0x00, 0x02, 0, 0, 0, 64, 1, 0}));
    Bytes atFullSpeed = configurationDescriptor(highSpeed);
    atFullSpeed.at(1) = 0x07;
    for (const size_t packetSizeOffset : {31U, 38U}) {
        atFullSpeed.at(packetSizeOffset) = 0x40;
        atFullSpeed.at(packetSizeOffset + 1) = 0x00;
    }
    EXPECT_EQ(otherSpeedConfigurationDescriptor(highSpeed), atFullSpeed);
    EXPECT_EQ(deviceQualifierDescriptor(fullSpeed), Bytes{});
    EXPECT_EQ(otherSpeedConfigurationDescriptor(fullSpeed), Bytes{});
}

TEST(UsbDescriptors, FourStringsExist) {
    EXPECT_EQ(stringDescriptor(fullSpeed, "VA-1", 0), (Bytes{4, 3, 0x09, 0x04}));
    EXPECT_EQ(stringDescriptor(fullSpeed, "VA-1", 1), textDescriptor("Veltra"));
    EXPECT_EQ(stringDescriptor(fullSpeed, "VA-1", 2), textDescriptor("full-speed"));
    EXPECT_EQ(stringDescriptor(fullSpeed, "VA-1", 3), textDescriptor("VA-1"));
    EXPECT_EQ(stringDescriptor(fullSpeed, "VA-1", 4), Bytes{});
}

TEST(UsbDescriptors, ATextIsSentAsLittleEndianUtf16) {
    EXPECT_EQ(textDescriptor("V1"), (Bytes{6, 3, 'V', 0, '1', 0}));
    EXPECT_EQ(textDescriptor("\xC3\xA9\xE2\x82\xAC"), (Bytes{6, 3, 0xE9, 0x00, 0xAC, 0x20}));
    EXPECT_EQ(textDescriptor(""), (Bytes{2, 3}));
}

TEST(UsbDescriptors, ACharacterBeyondTheFirst65536IsASurrogatePair) {
    EXPECT_EQ(textDescriptor("\xF0\x9F\x98\x80"), (Bytes{6, 3, 0x3D, 0xD8, 0x00, 0xDE}));
    EXPECT_EQ(textDescriptor("\xF4\x8F\xBF\xBF"), (Bytes{6, 3, 0xFF, 0xDB, 0xFF, 0xDF}));
}

TEST(UsbDescriptors, BytesThatAreNotUtf8BecomeReplacementCharacters) {
    const Bytes one{4, 3, 0xFD, 0xFF};
    const Bytes two{6, 3, 0xFD, 0xFF, 0xFD, 0xFF};
    const Bytes three{8, 3, 0xFD, 0xFF, 0xFD, 0xFF, 0xFD, 0xFF};
    EXPECT_EQ(textDescriptor("\xFF"), one);
    EXPECT_EQ(textDescriptor("\xC3"), one) << "an unfinished sequence";
    EXPECT_EQ(textDescriptor("\xC0\x80"), two) << "an overlong zero";
    EXPECT_EQ(textDescriptor("\xED\xA0\x80"), three) << "a lone surrogate";
    EXPECT_EQ(textDescriptor("\xC3V"), (Bytes{6, 3, 0xFD, 0xFF, 'V', 0}));
    EXPECT_EQ(textDescriptor("\xF4\x90\x80\x80").front(), 2 + 4 * 2) << "beyond U+10FFFF";
}

TEST(UsbDescriptors, ALongTextIsCutBetweenTwoCharacters) {
    EXPECT_EQ(textDescriptor(std::string(126, 'x')).size(), 254U);
    EXPECT_EQ(textDescriptor(std::string(127, 'x')).size(), 254U);
    const Bytes cut = textDescriptor(std::string(125, 'x') + "\xF0\x9F\x98\x80");
    EXPECT_EQ(cut.size(), 252U);
    EXPECT_EQ(cut.front(), 252U);
}

} // namespace
