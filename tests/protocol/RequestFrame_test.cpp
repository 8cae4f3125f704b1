// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/RequestFrame.hpp"

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes contentOf(const RequestFrame& frame) {
    const Message& message = frame.message();
    Bytes bytes(message.head.begin(),
                message.head.begin() + static_cast<std::ptrdiff_t>(message.headSize));
    bytes.insert(bytes.end(), message.data, message.data + message.dataSize);
    EXPECT_EQ(message.size(), bytes.size());
    return bytes;
}

TEST(RequestFrame, TheIdentifierAndTheCommandCodeComeFirstInLittleEndianOrder) {
    EXPECT_EQ(contentOf(RequestFrame(0x1234, CommandCode::SpiTransfer)),
              (Bytes{0x34, 0x12, 0x04, 0x0D}));
}

TEST(RequestFrame, FieldsFollowInTheOrderOfTheCallsInLittleEndianOrder) {
    const Bytes data{0xAA, 0xBB};
    EXPECT_EQ(contentOf(RequestFrame(1, CommandCode::EnterBootMode)
                            .u8(0x01)
                            .u16(0x0203)
                            .u32(0x04050607)
                            .flag(true)
                            .flag(false)
                            .bytes(data)),
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

TEST(RequestFrame, TheHeaderIsTheFirstFourBytesInLittleEndianOrder) {
    EXPECT_EQ(RequestFrame(0x1234, CommandCode::SpiTransfer).u8(0xFF).header(), 0x0D041234U);
}

TEST(RequestFrame, DataFollowsTheFieldsAndIsNotCopied) {
    const Bytes data(65'535, 0x5A);
    RequestFrame frame(1, CommandCode::I2cWrite);
    frame.u8(0x01).bytes(data);
    Bytes expected{0x01, 0x00, 0x04, 0x09, 0x01};
    expected.insert(expected.end(), data.begin(), data.end());
    EXPECT_TRUE(contentOf(frame) == expected);
    EXPECT_EQ(frame.message().data, data.data());
}

} // namespace
