// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "bytes/ByteWriter.hpp"

#include <gtest/gtest.h>

using virtual_adapter::ByteOrder;
using virtual_adapter::Bytes;
using virtual_adapter::ByteWriter;

namespace {

TEST(ByteWriter, NumbersAreWrittenLowByteFirstUnlessToldOtherwise) {
    EXPECT_EQ(ByteWriter().u8(0x01).u16(0x0203).u32(0x04050607).take(),
              (Bytes{0x01, 0x03, 0x02, 0x07, 0x06, 0x05, 0x04}));
}

TEST(ByteWriter, ABigEndianWriterWritesNumbersHighByteFirst) {
    EXPECT_EQ(ByteWriter(ByteOrder::BigEndian).u8(0x01).u16(0x0203).u32(0x04050607).take(),
              (Bytes{0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07}));
}

TEST(ByteWriter, BytesAndZerosFollowEachOther) {
    const Bytes both{0xAA, 0xBB};
    EXPECT_EQ(ByteWriter().bytes(both).zeros(2).range(both.rbegin(), both.rend()).take(),
              (Bytes{0xAA, 0xBB, 0x00, 0x00, 0xBB, 0xAA}));
}

TEST(ByteWriter, ATextIsFilledUpOrCutToItsSize) {
    EXPECT_EQ(ByteWriter().text("abc", 5).take(), (Bytes{'a', 'b', 'c', 0, 0}));
    EXPECT_EQ(ByteWriter().text("abc", 2).take(), (Bytes{'a', 'b'}));
}

TEST(ByteWriter, TheCountsAreFoundAgain) {
    ByteWriter writer;
    writer.u8(0xAA).countU8(1).countU16(0x0203).u8(0xBB);
    ASSERT_EQ(writer.counts().size(), 2U);
    EXPECT_EQ(writer.counts()[0].offset, 1U);
    EXPECT_EQ(writer.counts()[0].size, 1U);
    EXPECT_EQ(writer.counts()[1].offset, 2U);
    EXPECT_EQ(writer.counts()[1].size, 2U);
    EXPECT_EQ(writer.take(), (Bytes{0xAA, 0x01, 0x03, 0x02, 0xBB}));
}

TEST(ByteWriter, AnAppendedMessageBringsItsCountsAlong) {
    ByteWriter tail;
    tail.u8(0xCC).countU8(2);
    ByteWriter whole;
    whole.countU8(1).u16(0).append(tail);
    ASSERT_EQ(whole.counts().size(), 2U);
    EXPECT_EQ(whole.counts()[0].offset, 0U);
    EXPECT_EQ(whole.counts()[1].offset, 4U);
    EXPECT_EQ(whole.take(), (Bytes{0x01, 0x00, 0x00, 0xCC, 0x02}));
}

} // namespace
