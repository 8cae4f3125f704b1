// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/ResponseFrame.hpp"

#include <array>
#include <memory>

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uint8_t>;

TEST(ResponseFrame, IdentifierCommandCodeAndStatusAreLittleEndian) {
    const Bytes bytes{0x34, 0x12, 0x07, 0x04, 0xCD, 0xAB};
    const ResponseFrame frame(bytes);
    EXPECT_EQ(frame.transactionId(), 0x1234);
    EXPECT_EQ(frame.commandCode(), CommandCode::GetUsbString);
    EXPECT_EQ(frame.status(), 0xABCD);
}

TEST(ResponseFrame, TheHeaderIsTheFirstFourBytesInLittleEndianOrder) {
    const Bytes bytes{0x34, 0x12, 0x07, 0x04, 0xCD, 0xAB};
    EXPECT_EQ(ResponseFrame(bytes).header(), 0x04071234U);
    EXPECT_EQ(ResponseFrame(bytes.data(), 4).header(), 0x04071234U);
    EXPECT_EQ(ResponseFrame(bytes.data(), 3).header(), 0U);
}

TEST(ResponseFrame, ValuesAreReadInEitherByteOrder) {
    const Bytes bytes{0x01, 0x02, 0xFF};
    const ResponseFrame frame(bytes);
    EXPECT_EQ(frame.u8(1), 0x02);
    EXPECT_EQ(frame.u16(0), 0x0201);
    EXPECT_EQ(frame.u16BigEndian(0), 0x0102);
    EXPECT_EQ(frame.u16(1), 0xFF02);
    EXPECT_EQ(frame.u16BigEndian(1), 0x02FF);
}

TEST(ResponseFrame, BytesPastTheEndReadAsZero) {
    const Bytes bytes{0x01, 0x02};
    const ResponseFrame frame(bytes);
    EXPECT_EQ(frame.u8(2), 0x00);
    EXPECT_EQ(frame.u8(SIZE_MAX), 0x00);
    EXPECT_EQ(frame.u16(1), 0x0002);
    EXPECT_EQ(frame.u16BigEndian(1), 0x0200);
    EXPECT_EQ(frame.u16(2), 0x0000);
    EXPECT_EQ(frame.status(), 0x0000);
}

TEST(ResponseFrame, AnEmptyFrameReadsAsZeros) {
    const ResponseFrame frame(nullptr, 0);
    EXPECT_EQ(frame.transactionId(), 0);
    EXPECT_EQ(frame.status(), 0);
    Bytes copy{0xEE};
    frame.copyTo(copy, 0, 3);
    EXPECT_EQ(copy, (Bytes{0x00, 0x00, 0x00}));
}

TEST(ResponseFrame, ItHoldsAsManyBytesAsItHas) {
    const Bytes bytes(6);
    EXPECT_TRUE(ResponseFrame(bytes).holds(6));
    EXPECT_FALSE(ResponseFrame(bytes).holds(7));
}

TEST(ResponseFrame, ACopyReplacesWhatWasThere) {
    const Bytes bytes{0x01, 0x02, 0x03, 0x04};
    Bytes copy{0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
    ResponseFrame(bytes).copyTo(copy, 1, 2);
    EXPECT_EQ(copy, (Bytes{0x02, 0x03}));
    ResponseFrame(bytes).copyTo(copy, 1, 0);
    EXPECT_TRUE(copy.empty());
}

TEST(ResponseFrame, AWholeCopyIsTheFrameWhateverWasThere) {
    const Bytes bytes{0x01, 0x02, 0x03};
    for (const size_t before : {0U, 3U, 5U}) {
        Bytes copy(before, 0xEE);
        ResponseFrame(bytes).copyTo(copy);
        EXPECT_EQ(copy, bytes);
    }
}

TEST(ResponseFrame, ACopyPastTheEndIsFilledWithZeros) {
    const Bytes bytes{0x01, 0x02, 0x03, 0x04};
    Bytes copy{0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
    ResponseFrame(bytes).copyTo(copy, 2, 4);
    EXPECT_EQ(copy, (Bytes{0x03, 0x04, 0x00, 0x00}));
    ResponseFrame(bytes).copyTo(copy, 4, 2);
    EXPECT_EQ(copy, (Bytes{0x00, 0x00}));
    ResponseFrame(bytes).copyTo(copy, SIZE_MAX, 2);
    EXPECT_EQ(copy, (Bytes{0x00, 0x00}));
}

TEST(ResponseFrame, ACopyToMemoryWritesExactlyTheCount) {
    const Bytes bytes{0x01, 0x02, 0x03};
    std::array<uint8_t, 5> copy{0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
    ResponseFrame(bytes).copyTo(copy.data(), 1, 4);
    EXPECT_EQ(copy, (std::array<uint8_t, 5>{0x02, 0x03, 0x00, 0x00, 0xEE}));
}

} // namespace
