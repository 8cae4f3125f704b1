// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Json.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace veltra {
namespace {

TEST(Json, AMemberIsWhatItIsWrittenAs) {
    const Json object = {{"null", nullptr},
                         {"yes", true},
                         {"text", "a\"b\n"},
                         {"negative", -1},
                         {"byte", uint8_t{0xFF}},
                         {"all", std::numeric_limits<uint64_t>::max()},
                         {"time", 0.25},
                         {"list", std::vector<uint16_t>{1, 0x3FF}},
                         {"words", std::vector<std::string>{"a", ""}},
                         {"object", {{"inner", "x"}}}};
    EXPECT_EQ(object.text(), R"({"null":null,"yes":true,"text":"a\"b\n","negative":-1,"byte":255,)"
                             R"("all":18446744073709551615,"time":0.25,"list":[1,1023],)"
                             R"("words":["a",""],"object":{"inner":"x"}})");
}

TEST(Json, MembersStayInTheOrderInWhichTheyCame) {
    Json object;
    object["z"] = 1;
    object["a"] = 2;
    object["z"] = 3;
    object.add({{"m", 4}, {"a", 5}});
    EXPECT_EQ(object.text(), R"({"z":3,"a":5,"m":4})");
}

TEST(Json, WhatIsNoUtf8IsReplaced) {
    EXPECT_EQ(Json(std::string("a\xFF")).text(), "\"a\xEF\xBF\xBD\"");
}

TEST(Json, AnEmptyListIsAList) {
    EXPECT_EQ(Json(std::vector<int>()).text(), "[]");
}

} // namespace
} // namespace veltra
