// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Words.hpp"
#include "refusal.hpp"

#include <fstream>
#include <gtest/gtest.h>

namespace veltra {
namespace {

uint64_t number(const std::string& text) {
    return parseNumber("number", text, 0, UINT64_MAX);
}

TEST(Words, ANumberIsDecimalHexadecimalOrBinary) {
    EXPECT_EQ(number("0"), 0U);
    EXPECT_EQ(number("31"), 31U);
    EXPECT_EQ(number("0x1F"), 31U);
    EXPECT_EQ(number("0X1f"), 31U);
    EXPECT_EQ(number("0b11111"), 31U);
    EXPECT_EQ(number("18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(number("0xffffffffffffffff"), UINT64_MAX);
}

TEST(Words, ANumberWithALeadingZeroIsRefused) {
    EXPECT_EQ(refusal([] { return number("010"); }),
              "number '010' begins with 0: write 0x for hexadecimal, or leave the 0 out");
    EXPECT_EQ(refusal([] { return number("00"); }).substr(0, 24), "number '00' begins with ");
}

TEST(Words, WhatIsNoNumberIsRefused) {
    for (const char* const text :
         {"", " 1", "1 ", "-1", "+1", "1.0", "0x", "0b", "0b2", "0xg", "1k", "18446744073709551616",
          "0x10000000000000000", "one", "\xC2\xB9"}) {
        EXPECT_EQ(refusal([&] { return number(text); }),
                  "number '" + std::string(text) + "' is no number: 31, 0x1f and 0b11111 are");
    }
}

TEST(Words, NothingIsClamped) {
    EXPECT_EQ(parseNumber("count", "10", 1, 10), 10U);
    EXPECT_EQ(refusal([] { return parseNumber("count", "11", 1, 10); }),
              "count '11' is out of range: 1 to 10");
    EXPECT_EQ(refusal([] { return parseNumber("count", "0", 1, 10); }),
              "count '0' is out of range: 1 to 10");
}

TEST(Words, AnAddressOfEightBitsIsToldInSeven) {
    EXPECT_EQ(parseAddress("0x7f"), 0x7F);
    EXPECT_EQ(
        refusal([] { return parseAddress("0xA1"); }),
        "address '0xA1' has 8 bits, which count the read/write bit: the 7-bit address is 0x50");
    EXPECT_EQ(refusal([] { return parseAddress("0x100"); }),
              "address '0x100' is out of range: 0 to 127");
}

TEST(Words, ARegisterTakesItsBytesMostSignificantFirst) {
    EXPECT_EQ(parseRegister("0x12", 1), Bytes({0x12}));
    EXPECT_EQ(parseRegister("0x12", 2), Bytes({0x00, 0x12}));
    EXPECT_EQ(parseRegister("0x12345678", 4), Bytes({0x12, 0x34, 0x56, 0x78}));
    EXPECT_EQ(refusal([] { return parseRegister("0x10000", 2); }),
              "register '0x10000' is out of range: 0 to 65535");
    EXPECT_EQ(refusal([] { return parseRegister("0x100000000", 4); }),
              "register '0x100000000' is out of range: 0 to 4294967295");
}

TEST(Words, AClockRateIsInHertzKilohertzOrMegahertz) {
    EXPECT_EQ(parseFrequency("400000"), 400'000U);
    EXPECT_EQ(parseFrequency("400k"), 400'000U);
    EXPECT_EQ(parseFrequency("12.5M"), 12'500'000U);
    EXPECT_EQ(parseFrequency("0.1M"), 100'000U);
    for (const char* const text :
         {"", "k", "0", "0k", "1.2345k", ".5M", "1.M", "4295M", "1e6", "-1k", "1K", "01k", "1.5"}) {
        EXPECT_EQ(refusal([&] { return parseFrequency(text); }),
                  "clock '" + std::string(text) + "' is no clock rate: 100k, 1M and 400000 are");
    }
}

TEST(Words, AVoltageIsInVolts) {
    EXPECT_EQ(parseVolts("3.3"), 3300);
    EXPECT_EQ(parseVolts("1.8"), 1800);
    EXPECT_EQ(parseVolts("0.95"), 950);
    EXPECT_EQ(parseVolts("3"), 3000);
    for (const char* const text : {"", "0", "3,3", "3.3V", "-1.8", "65.536", "1.2345", "nan"}) {
        EXPECT_EQ(refusal([&] { return parseVolts(text); }),
                  "voltage '" + std::string(text) + "' is no voltage: 1.8 and 3.3 are, in volts");
    }
}

TEST(Words, ATimeIsInSeconds) {
    EXPECT_EQ(parseSeconds("2"), 2000);
    EXPECT_EQ(parseSeconds("0.5"), 500);
    EXPECT_EQ(refusal([] { return parseSeconds("2147484"); }),
              "time '2147484' is no number of seconds: 2 and 0.5 are");
}

TEST(Words, BytesAreNumbersHexadecimalTextsAndFiles) {
    const std::string file = testing::TempDir() + "veltra_words_test";
    std::ofstream(file, std::ios::binary) << std::string("\0z", 2);
    EXPECT_EQ(parseBytes({"1", "0xff", "hex:0A0b", "str:a:b", "@" + file}, 100),
              Bytes({1, 0xFF, 0x0A, 0x0B, 'a', ':', 'b', 0, 'z'}));
    EXPECT_EQ(parseBytes({"hex:", "str:"}, 0), Bytes());
    std::remove(file.c_str());
}

TEST(Words, WhatAreNoBytesIsRefused) {
    EXPECT_EQ(refusal([] { return parseBytes({"256"}, 9); }),
              "byte '256' is out of range: 0 to 255");
    EXPECT_EQ(refusal([] { return parseBytes({"hex:1"}, 9); }),
              "bytes '1' are no pairs of hexadecimal digits");
    EXPECT_EQ(refusal([] { return parseBytes({"hex:0x11"}, 9); }),
              "bytes '0x11' are no pairs of hexadecimal digits");
    EXPECT_EQ(refusal([] { return parseBytes({"abc"}, 9); }),
              "byte 'abc' is no number: 31, 0x1f and 0b11111 are");
    EXPECT_EQ(refusal([] { return parseBytes({"@/nonexistent"}, 9); }),
              "cannot read /nonexistent: No such file or directory");
    EXPECT_EQ(refusal([] { return parseBytes({"@/"}, 9); }), "cannot read /: Is a directory");
}

TEST(Words, MoreBytesThanMayBeAreRefused) {
    EXPECT_EQ(refusal([] { return parseBytes({"1", "2", "3"}, 2); }), "more than 2 bytes");
    EXPECT_EQ(refusal([] { return parseBytes({"@/dev/zero"}, 70000); }),
              "/dev/zero holds more than 70000 bytes");
}

TEST(Words, ARangeHoldsBothItsEnds) {
    const Range range = parseRange("0x10-31", 0xFF);
    EXPECT_EQ(range.first, 16U);
    EXPECT_EQ(range.last, 31U);
    EXPECT_EQ(refusal([] { return parseRange("5", 9); }), "range '5' is no range: 0x00-0x1f is");
    EXPECT_EQ(refusal([] { return parseRange("5-4", 9); }), "range's '4' is out of range: 5 to 9");
    EXPECT_EQ(refusal([] { return parseRange("1-10", 9); }),
              "range's '10' is out of range: 1 to 9");
}

TEST(Words, AnAssignmentHasANameAndAValue) {
    const Assignment assignment = parseAssignment("pid=a=b", "NAME=VALUE");
    EXPECT_EQ(assignment.name, "pid");
    EXPECT_EQ(assignment.value, "a=b");
    EXPECT_EQ(refusal([] { return parseAssignment("pid", "NAME=VALUE"); }),
              "'pid' is not of the form NAME=VALUE");
    EXPECT_EQ(refusal([] { return parseAssignment("=1", "NAME=VALUE"); }),
              "'=1' is not of the form NAME=VALUE");
}

TEST(Words, AnUnknownNameIsToldTheKnownOnes) {
    const Named<int> names[] = {{"none", 0}, {"odd", 1}};
    EXPECT_EQ(parseName("parity", "odd", names), 1);
    EXPECT_EQ(refusal([&] { return parseName("parity", "Odd", names); }),
              "parity 'Odd' is unknown: none, odd");
}

TEST(Words, WhatAnAdapterSaysDoesNotReachTheTerminalAsAControl) {
    EXPECT_EQ(printable("VA-\xC3\xA9 1"), "VA-\xC3\xA9 1");
    EXPECT_EQ(printable(std::string("\x1B[2J\0\x7F", 6)), "\\x1b[2J\\x00\\x7f");
}

TEST(Words, AWordIsQuotedOnlyWhereAShellNeedsIt) {
    EXPECT_EQ(quoted("pid:0461000000aa"), "pid:0461000000aa");
    EXPECT_EQ(quoted("0=1"), "0=1");
    EXPECT_EQ(quoted("it's"), "'it'\\''s'");
    EXPECT_EQ(quoted(""), "''");
}

} // namespace
} // namespace veltra
