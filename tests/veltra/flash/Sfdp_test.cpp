// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "flash/Region.hpp"
#include "flash/Sfdp.hpp"
#include "refusal.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace veltra {
namespace {

/// The tables of a flash of 256 KiB, erased in 4 KiB, that a test changes.
Bytes tables() {
    Bytes bytes{'S', 'F', 'D', 'P', 0, 1, 0, 0xFF, 0x00, 0, 1, 9, 0x10, 0, 0, 0xFF};
    const Bytes basic{0xE5, 0x20, 0x80, 0xFF, 0xFF, 0xFF, 0x1F, 0x00, 0,    0,    0, 0,
                      0,    0,    0,    0,    0xEE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0,
                      0xFF, 0xFF, 0,    0,    0x0C, 0x20, 0,    0,    0,    0,    0, 0};
    bytes.insert(bytes.end(), basic.begin(), basic.end());
    return bytes;
}

constexpr size_t header = 8;
constexpr size_t word1 = 16;
constexpr size_t word2 = word1 + 4;
constexpr size_t word8 = word1 + 28;
constexpr size_t word9 = word1 + 32;

SfdpReader readerOf(const Bytes& bytes) {
    return [bytes](uint32_t address, size_t count) {
        const size_t first = std::min<size_t>(address, bytes.size());
        const size_t last = std::min<size_t>(first + count, bytes.size());
        return Bytes(bytes.begin() + static_cast<ptrdiff_t>(first),
                     bytes.begin() + static_cast<ptrdiff_t>(last));
    };
}

std::string refusalOf(const Bytes& bytes) {
    return refusal([&] { return readSfdp(readerOf(bytes)); });
}

TEST(Sfdp, TheBasicTableTellsSizeBlockAndPage) {
    ASSERT_TRUE(hasSfdp(readerOf(tables())));
    const FlashGeometry geometry = readSfdp(readerOf(tables()));
    EXPECT_EQ(geometry.bytes, 256U * 1024);
    EXPECT_EQ(geometry.eraseBytes, 4096U);
    EXPECT_EQ(geometry.eraseOpcode, 0x20);
    EXPECT_EQ(geometry.pageBytes, 64U);
}

TEST(Sfdp, TheSmallestBlockIsChosen) {
    Bytes bytes = tables();
    const Bytes types{0x10, 0xD8, 0x0F, 0x52, 0x0C, 0x21, 0, 0};
    std::copy(types.begin(), types.end(), bytes.begin() + word8);
    const FlashGeometry geometry = readSfdp(readerOf(bytes));
    EXPECT_EQ(geometry.eraseBytes, 4096U);
    EXPECT_EQ(geometry.eraseOpcode, 0x21);
}

TEST(Sfdp, ALaterRevisionTellsThePage) {
    Bytes bytes = tables();
    bytes[header + 3] = 16;
    bytes.resize(word1 + 64, 0);
    bytes[word1 + 40] = 0x80;
    EXPECT_EQ(readSfdp(readerOf(bytes)).pageBytes, 256U);
}

TEST(Sfdp, WithoutAWriteBufferEveryByteIsWrittenByItself) {
    Bytes bytes = tables();
    bytes[word1] = 0xE1;
    EXPECT_EQ(readSfdp(readerOf(bytes)).pageBytes, 1U);
}

TEST(Sfdp, AFlashWithoutTablesHasNone) {
    EXPECT_FALSE(hasSfdp(readerOf(Bytes(64, 0xFF))));
    EXPECT_FALSE(hasSfdp(readerOf({})));
}

TEST(Sfdp, WhatCannotBeTrueIsRefused) {
    const std::string table = "the flash's parameter table ";
    Bytes bytes = tables();
    bytes[header] = 0x84;
    EXPECT_EQ(refusalOf(bytes), table + "is of a revision that nobody knows");
    bytes = tables();
    bytes[header + 2] = 2;
    EXPECT_EQ(refusalOf(bytes), table + "is of a revision that nobody knows");
    bytes = tables();
    bytes[header + 3] = 4;
    EXPECT_EQ(refusalOf(bytes), table + "is of a revision that nobody knows");
    bytes = tables();
    bytes[header + 6] = 0x01;
    EXPECT_EQ(refusalOf(bytes), table + "cannot be read");
    bytes = tables();
    bytes.resize(10);
    EXPECT_EQ(refusalOf(bytes), table + "cannot be read");
    bytes = tables();
    bytes[word1 + 2] = 0x84;
    EXPECT_EQ(refusalOf(bytes),
              table + "asks for four address bytes, which this program does not send");
    bytes = tables();
    std::fill_n(bytes.begin() + word2, 4, uint8_t{0xFF});
    EXPECT_EQ(refusalOf(bytes), table + "names an absurd size");
    bytes = tables();
    bytes[word2] = 0xFE;
    EXPECT_EQ(refusalOf(bytes), table + "names a size that is no number of bytes");
    bytes = tables();
    bytes[word2 + 2] = 0xFF;
    bytes[word2 + 3] = 0x0F;
    EXPECT_EQ(refusalOf(bytes), table + "names 33554432 bytes; more than 16 MiB need four address "
                                        "bytes, which this program does not send");
    bytes = tables();
    bytes[word8] = 0;
    EXPECT_EQ(refusalOf(bytes), table + "names no block that can be erased");
    bytes = tables();
    bytes[word8] = 20;
    EXPECT_EQ(refusalOf(bytes), table + "names no block that can be erased");
    bytes = tables();
    bytes[word8] = 0;
    bytes[word9] = 31;
    EXPECT_EQ(refusalOf(bytes), table + "names no block that can be erased");
}

TEST(Region, ItEndsWhereItIsToldOrTheFlashDoes) {
    const FlashGeometry geometry{1024, 256, 0x20, 64};
    EXPECT_EQ(regionOf("0", "", geometry).bytes, 1024U);
    EXPECT_EQ(regionOf("0x100", "", geometry).bytes, 768U);
    EXPECT_EQ(regionOf("0x100", "16", geometry).bytes, 16U);
    EXPECT_EQ(regionOf("1", "", geometry, 5).bytes, 5U);
    EXPECT_EQ(regionOf("1024", "", geometry).bytes, 0U);
    EXPECT_EQ(refusal([&] { return regionOf("1025", "", geometry); }),
              "offset '1025' is out of range: 0 to 1024");
    EXPECT_EQ(refusal([&] { return regionOf("1", "1024", geometry); }),
              "length '1024' is out of range: 0 to 1023");
    EXPECT_EQ(refusal([&] { return regionOf("1020", "", geometry, 5); }),
              "the file holds 5 bytes, and there is room for 4");
}

} // namespace
} // namespace veltra
