// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "bytes/words.hpp"

#include <gtest/gtest.h>

#include <limits>

using virtual_adapter::Bytes;
using virtual_adapter::bytesOf;
using virtual_adapter::bytesOfHex;
using virtual_adapter::decimalOf;
using virtual_adapter::flagOf;
using virtual_adapter::hexNumber;
using virtual_adapter::hexOf;
using virtual_adapter::numberOf;

namespace {

TEST(Words, ANumberIsDecimalHexadecimalOrBinary) {
    EXPECT_EQ(numberOf("0"), 0U);
    EXPECT_EQ(numberOf("255"), 255U);
    EXPECT_EQ(numberOf("0xfF"), 255U);
    EXPECT_EQ(numberOf("0X10"), 16U);
    EXPECT_EQ(numberOf("0b101"), 5U);
    EXPECT_EQ(numberOf("0xFFFFFFFFFFFFFFFF"), std::numeric_limits<uint64_t>::max());
}

TEST(Words, ANumberWithAnythingElseInItIsNone) {
    for (const char* word : {"", "x", "0x", "0b", "0b2", "0xG", "012", "00", "+1", "-1", " 1", "1 ",
                             "1.0", "1e3", "18446744073709551616", "0x10000000000000000"}) {
        EXPECT_EQ(numberOf(word), std::nullopt) << word;
    }
}

TEST(Words, ADecimalHasDigitsOnBothSidesOfItsPoint) {
    EXPECT_EQ(decimalOf("25"), 25.0);
    EXPECT_EQ(decimalOf("-10.5"), -10.5);
    EXPECT_EQ(decimalOf("0.25"), 0.25);
    for (const char* word :
         {"", "-", ".5", "5.", "1e3", "inf", "nan", "0x10", "+1", "1,5", "1.2.3", " 1", "--1"}) {
        EXPECT_EQ(decimalOf(word), std::nullopt) << word;
    }
}

TEST(Words, AFlagIsTrueOrFalse) {
    EXPECT_EQ(flagOf("true"), true);
    EXPECT_EQ(flagOf("false"), false);
    for (const char* word : {"", "1", "yes", "True"}) {
        EXPECT_EQ(flagOf(word), std::nullopt) << word;
    }
}

TEST(Words, BytesAreHexadecimalTextOrOneNumber) {
    EXPECT_EQ(bytesOf("hex:0011fF"), (Bytes{0x00, 0x11, 0xFF}));
    EXPECT_EQ(bytesOf("hex:"), Bytes{});
    EXPECT_EQ(bytesOf("str:a b"), (Bytes{'a', ' ', 'b'}));
    EXPECT_EQ(bytesOf("str:"), Bytes{});
    EXPECT_EQ(bytesOf("0x2A"), Bytes{0x2A});
    for (const char* word : {"", "hex:0", "hex:0g", "hex:0 1", "256", "text", "@file", "HEX:00"}) {
        EXPECT_EQ(bytesOf(word), std::nullopt) << word;
    }
}

TEST(Words, HexadecimalBytesReadBackAsTheyWereWritten) {
    EXPECT_EQ(hexOf({0x00, 0xAF}), "00af");
    EXPECT_EQ(bytesOfHex("00AF"), (Bytes{0x00, 0xAF}));
    EXPECT_EQ(bytesOfHex("0"), std::nullopt);
}

TEST(Words, AHexadecimalNumberHasAtLeastTwoDigits) {
    EXPECT_EQ(hexNumber(0), "0x00");
    EXPECT_EQ(hexNumber(0x1A2), "0x1A2");
}

} // namespace
