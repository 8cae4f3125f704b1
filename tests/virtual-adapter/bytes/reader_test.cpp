// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "bytes/ByteReader.hpp"

#include <gtest/gtest.h>

#include <array>

using virtual_adapter::ByteOrder;
using virtual_adapter::ByteReader;
using virtual_adapter::Bytes;

namespace {

constexpr std::array<uint8_t, 7> seven{0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07};

TEST(ByteReader, NumbersAreReadLowByteFirstUnlessToldOtherwise) {
    ByteReader reader(seven);
    EXPECT_EQ(reader.u8(), 0x01);
    EXPECT_EQ(reader.u16(), 0x0302);
    EXPECT_EQ(reader.u32(), 0x07060504U);
    EXPECT_TRUE(reader.consumedExactly());
}

TEST(ByteReader, ABigEndianReaderReadsNumbersHighByteFirst) {
    ByteReader reader(seven, ByteOrder::BigEndian);
    EXPECT_EQ(reader.u8(), 0x01);
    EXPECT_EQ(reader.u16(), 0x0203);
    EXPECT_EQ(reader.u32(), 0x04050607U);
    EXPECT_TRUE(reader.consumedExactly());
}

TEST(ByteReader, ANumberCutOffByTheEndIsFilledUpWithZeros) {
    ByteReader reader(seven.data(), 3);
    EXPECT_EQ(reader.u32(), 0x00030201U);
    EXPECT_TRUE(reader.overran());
    EXPECT_FALSE(reader.consumedExactly());
}

TEST(ByteReader, BytesBehindTheEndAreZeros) {
    ByteReader reader(seven.data(), 2);
    EXPECT_EQ(reader.bytes(4), (Bytes{0x01, 0x02, 0x00, 0x00}));
    EXPECT_TRUE(reader.overran());
    EXPECT_EQ(reader.u8(), 0x00);
}

TEST(ByteReader, TheRestIsWhatHasNotBeenRead) {
    ByteReader reader(seven);
    reader.skip(5);
    EXPECT_EQ(reader.remaining(), 2U);
    EXPECT_FALSE(reader.consumedExactly());
    EXPECT_EQ(reader.rest(), (Bytes{0x06, 0x07}));
    EXPECT_EQ(reader.rest(), Bytes{});
    EXPECT_TRUE(reader.consumedExactly());
}

TEST(ByteReader, SkippingPastTheEndIsRemembered) {
    ByteReader reader(seven);
    reader.skip(8);
    EXPECT_EQ(reader.remaining(), 0U);
    EXPECT_TRUE(reader.overran());
}

TEST(ByteReader, NoBytesAreReadExactly) {
    const Bytes nothing;
    ByteReader reader(nothing);
    EXPECT_TRUE(reader.consumedExactly());
    EXPECT_EQ(reader.bytes(0), Bytes{});
    EXPECT_FALSE(reader.overran());
    EXPECT_EQ(reader.u8(), 0x00);
    EXPECT_TRUE(reader.overran());
}

} // namespace
