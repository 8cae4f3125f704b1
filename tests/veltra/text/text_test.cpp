// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "refusal.hpp"
#include "text/AddressGrid.hpp"
#include "text/Descriptors.hpp"
#include "text/HexDump.hpp"

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(HexDump, TheLastLineKeepsItsColumns) {
    EXPECT_EQ(hexDump({'a', 0x7F, 0x80, ' '}, 0x1E),
              "1e: 61 7f 80 20                                      a.. ");
    EXPECT_EQ(hexDump({}, 0), "");
}

TEST(HexDump, EveryLineOfOneDumpHasAddressesOfTheSameWidth) {
    const std::string dump = hexDump(Bytes(17, 0), 0xF8);
    EXPECT_EQ(dump.substr(0, 6), "00f8: ");
    EXPECT_EQ(dump.substr(dump.find('\n') + 1, 6), "0108: ");
    EXPECT_EQ(hexDump({0}, 0x10000).substr(0, 10), "00010000: ");
}

TEST(AddressGrid, AnAddressThatScansDoNotAskIsShownWhenItIsFound) {
    EXPECT_NE(addressGrid({0x03, 0x7C}).find("00:          03             -- "), std::string::npos);
    EXPECT_NE(addressGrid({0x7C}).find("-- -- --             7c"), std::string::npos);
}

TEST(Descriptors, AnAddressHoldsUntilTheNextOne) {
    const auto messages = parseDescriptors({"w1@0x50", "0x10", "r2", "r3@0x51"});
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_FALSE(messages[0].isRead);
    EXPECT_EQ(messages[0].data, Bytes({0x10}));
    EXPECT_TRUE(messages[1].isRead);
    EXPECT_EQ(messages[1].address, 0x50);
    EXPECT_EQ(messages[1].length, 2);
    EXPECT_EQ(messages[2].address, 0x51);
}

TEST(Descriptors, TheLastByteFillsAMessage) {
    EXPECT_EQ(parseDescriptors({"w4@0x50", "7", "0xff+"})[0].data, Bytes({7, 0xFF, 0, 1}));
    EXPECT_EQ(parseDescriptors({"w4@0x50", "7", "8="})[0].data, Bytes({7, 8, 8, 8}));
    EXPECT_EQ(parseDescriptors({"w5@0x50", "str:ab+", "hex:0102"})[0].data,
              Bytes({'a', 'b', '+', 1, 2}));
    EXPECT_EQ(parseDescriptors({"w0@0x50"})[0].data, Bytes());
}

TEST(Descriptors, WhatFitsNoMessageIsRefused) {
    const auto refused = [](const std::vector<std::string>& words) {
        return refusal([&] { return parseDescriptors(words); });
    };
    EXPECT_EQ(refused({"r1"}), "'r1' needs an address: r1@0x50");
    EXPECT_EQ(refused({"x1@0x50"}), "'x1@0x50' is no descriptor: w1@0x50 and r5 are");
    EXPECT_EQ(refused({"w2@0x50", "1"}), "w2@0x50 has 1 bytes behind it");
    EXPECT_EQ(refused({"w1@0x50", "hex:0102"}), "w1@0x50 has 2 bytes behind it");
    EXPECT_EQ(refused({"w1@0x50", "1", "2"}), "'2' is no descriptor: w1@0x50 and r5 are");
    EXPECT_EQ(refused({"r65536@0x50"}), "length '65536' is out of range: 0 to 65535");
    EXPECT_EQ(
        refused({"r1@0xa0"}),
        "address '0xa0' has 8 bits, which count the read/write bit: the 7-bit address is 0x50");
}

} // namespace
} // namespace veltra
