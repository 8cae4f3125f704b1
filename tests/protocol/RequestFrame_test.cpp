// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/RequestFrame.hpp"

#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes contentOf(const RequestFrame& frame) {
    return Bytes(frame.data(), frame.data() + frame.size());
}

TEST(RequestFrame, TheIdentifierAndTheCommandCodeComeFirstInLittleEndianOrder) {
    EXPECT_EQ(contentOf(RequestFrame(0x1234, CommandCode::SpiTransfer)),
              (Bytes{0x34, 0x12, 0x04, 0x0D}));
}

TEST(RequestFrame, FieldsFollowInTheOrderOfTheCallsInLittleEndianOrder) {
    EXPECT_EQ(contentOf(RequestFrame(1, CommandCode::EnterBootMode)
                            .u8(0x01)
                            .u16(0x0203)
                            .u32(0x04050607)
                            .flag(true)
                            .flag(false)
                            .bytes({0xAA, 0xBB})),
              (Bytes{0x01, 0x00, 0x02, 0x04, 0x01, 0x03, 0x02, 0x07, 0x06, 0x05, 0x04, 0x01, 0x00,
                     0xAA, 0xBB}));
}

TEST(RequestFrame, ACountBeyond16BitsWraps) {
    const auto fieldOf = [](size_t count) {
        const Bytes frame = contentOf(RequestFrame(1, CommandCode::UartSendMessage).count16(count));
        return Bytes(frame.begin() + 4, frame.end());
    };
    EXPECT_EQ(fieldOf(0), (Bytes{0x00, 0x00}));
    EXPECT_EQ(fieldOf(65'535), (Bytes{0xFF, 0xFF}));
    EXPECT_EQ(fieldOf(65'536), (Bytes{0x00, 0x00}));
    EXPECT_EQ(fieldOf(65'537), (Bytes{0x01, 0x00}));
}

TEST(RequestFrame, ASubAddressIsFilledUpToFourBytes) {
    const auto fieldOf = [](const Bytes& subAddress) {
        const Bytes frame =
            contentOf(RequestFrame(1, CommandCode::I3cPrivateTransfer).subAddress(subAddress));
        return Bytes(frame.begin() + 4, frame.end());
    };
    EXPECT_EQ(fieldOf({}), (Bytes{0x00, 0x00, 0x00, 0x00}));
    EXPECT_EQ(fieldOf({0xA1}), (Bytes{0xA1, 0x00, 0x00, 0x00}));
    EXPECT_EQ(fieldOf({0xA1, 0xA2, 0xA3, 0xA4}), (Bytes{0xA1, 0xA2, 0xA3, 0xA4}));
}

/// A frame of @p size bytes, in which four of them stand before the data.
Bytes expectedFrame(size_t size) {
    Bytes bytes{0x01, 0x00, 0x04, 0x09};
    bytes.insert(bytes.end(), size - 4, 0x5A);
    return bytes;
}

TEST(RequestFrame, AFrameOfUpTo64BytesLiesInTheObject) {
    for (const size_t size : {4U, 63U, 64U}) {
        RequestFrame frame(1, CommandCode::I2cWrite);
        frame.bytes(Bytes(size - 4, 0x5A));
        EXPECT_EQ(contentOf(frame), expectedFrame(size));
        const auto* const object = reinterpret_cast<const uint8_t*>(&frame);
        EXPECT_GE(frame.data(), object);
        EXPECT_LE(frame.data() + size, object + sizeof(frame));
    }
}

TEST(RequestFrame, ALongerFrameIsWhole) {
    for (const size_t size : {65U, 1000U, 65'549U}) {
        RequestFrame frame(1, CommandCode::I2cWrite);
        frame.bytes(Bytes(size - 4, 0x5A));
        EXPECT_TRUE(contentOf(frame) == expectedFrame(size)) << size;
    }
}

TEST(RequestFrame, AFrameGrowsFieldByField) {
    RequestFrame frame(1, CommandCode::I2cWrite);
    for (size_t size = 4; size < 200; ++size) {
        EXPECT_EQ(contentOf(frame), expectedFrame(size));
        frame.u8(0x5A);
    }
}

TEST(RequestFrame, AFrameOfAnnouncedSizeIsAllocatedOnce) {
    RequestFrame frame(1, CommandCode::I2cWrite, 1000);
    frame.bytes(Bytes(61, 0x5A));
    const uint8_t* const before = frame.data();
    for (size_t size = 65; size < 1004; ++size) {
        frame.u8(0x5A);
    }
    EXPECT_EQ(frame.data(), before);
    EXPECT_EQ(contentOf(frame), expectedFrame(1004));
}

TEST(RequestFrame, AFrameIsMovedAndNeverCopied) {
    EXPECT_FALSE(std::is_copy_constructible_v<RequestFrame>);
    EXPECT_FALSE(std::is_copy_assignable_v<RequestFrame>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<RequestFrame>);
}

} // namespace
