// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "refusal.hpp"
#include "text/ScriptLine.hpp"

#include <gtest/gtest.h>

namespace veltra {
namespace {

using Words = std::vector<std::string>;

TEST(ScriptLine, BlanksStandBetweenWords) {
    EXPECT_EQ(splitLine(" i2c\tread  0x50 1 \r", {}), Words({"i2c", "read", "0x50", "1"}));
    EXPECT_EQ(splitLine("", {}), Words());
    EXPECT_EQ(splitLine("  # all of it", {}), Words());
    EXPECT_EQ(splitLine("a#b #c", {}), Words({"a#b"}));
}

TEST(ScriptLine, QuotesKeepBlanks) {
    EXPECT_EQ(splitLine(R"(echo 'a "b" $c' "d 'e' \"f\"" g\ h '' "")", {}),
              Words({"echo", "a \"b\" $c", "d 'e' \"f\"", "g h", "", ""}));
    EXPECT_EQ(splitLine(R"(str:'a b'"c")", {}), Words({"str:a bc"}));
}

TEST(ScriptLine, AVariableStandsForItsValue) {
    const Variables variables{{"A", "0x50"}, {"TWO_1", "x y"}};
    EXPECT_EQ(splitLine("$A ${A}b \"$TWO_1\" $TWO_1 $A/1", variables),
              Words({"0x50", "0x50b", "x y", "x y", "0x50/1"}));
}

TEST(ScriptLine, WhatIsLeftOpenIsRefused) {
    const auto refused = [](const std::string& line) {
        return refusal([&] { return splitLine(line, {}); });
    };
    EXPECT_EQ(refused("'a"), "a ' is missing at the end");
    EXPECT_EQ(refused("\"a"), "a \" is missing at the end");
    EXPECT_EQ(refused("\""), "a \" is missing at the end");
    EXPECT_EQ(refused("\"a\\"), "nothing is behind the \\ at the end");
    EXPECT_EQ(refused("a\\"), "nothing is behind the \\ at the end");
    EXPECT_EQ(refused("${A"), "a } is missing at the end");
    EXPECT_EQ(refused("$B"), "'B' has not been set: set B=VALUE");
    EXPECT_EQ(refused("$"), "'' has not been set: set NAME=VALUE");
}

TEST(Expectation, EqualBytesHaveNoDifference) {
    EXPECT_EQ(differenceOf("00 fF", {0x00, 0xFF}), "");
    EXPECT_EQ(differenceOf("00?? 02", {0x00, 0x77, 0x02}), "");
    EXPECT_EQ(differenceOf("", {}), "");
}

TEST(Expectation, ADifferenceIsNamedAndShown) {
    EXPECT_EQ(differenceOf("0001", {0x00, 0xFF}),
              "byte 1 is ff and should be 01\n  expected: 00 01\n  read:     00 ff");
    EXPECT_EQ(differenceOf("00", {}),
              "the lengths differ: 1 expected, 0 read\n  expected: 00\n  read:     ");
    EXPECT_EQ(differenceOf("", {1}),
              "the lengths differ: 0 expected, 1 read\n  expected: \n  read:     01");
}

TEST(Expectation, WhatAreNoPairsOfDigitsIsRefused) {
    for (const char* const pattern : {"0", "0g", "?0", "00?"}) {
        EXPECT_NE(refusal([&] { return differenceOf(pattern, {}); }), "") << pattern;
    }
}

} // namespace
} // namespace veltra
