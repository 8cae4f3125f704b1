#include "protocol/RequestFrame.hpp"

#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uint8_t>;

TEST(RequestFrame, TheIdentifierAndTheCommandCodeComeFirstInLittleEndianOrder) {
    EXPECT_EQ(RequestFrame(0x1234, CommandCode::SpiTransfer).content(),
              (Bytes{0x34, 0x12, 0x04, 0x0D}));
}

TEST(RequestFrame, FieldsFollowInTheOrderOfTheCallsInLittleEndianOrder) {
    EXPECT_EQ(RequestFrame(1, CommandCode::EnterBootMode)
                  .u8(0x01)
                  .u16(0x0203)
                  .u32(0x04050607)
                  .flag(true)
                  .flag(false)
                  .zeros(2)
                  .bytes({0xAA, 0xBB})
                  .content(),
              (Bytes{0x01, 0x00, 0x02, 0x04, 0x01, 0x03, 0x02, 0x07, 0x06, 0x05, 0x04, 0x01, 0x00,
                     0x00, 0x00, 0xAA, 0xBB}));
}

TEST(RequestFrame, ACountBeyond16BitsWraps) {
    const auto fieldOf = [](size_t count) {
        const Bytes frame = RequestFrame(1, CommandCode::UartSendMessage).count16(count).content();
        return Bytes(frame.begin() + 4, frame.end());
    };
    EXPECT_EQ(fieldOf(0), (Bytes{0x00, 0x00}));
    EXPECT_EQ(fieldOf(65'535), (Bytes{0xFF, 0xFF}));
    EXPECT_EQ(fieldOf(65'536), (Bytes{0x00, 0x00}));
    EXPECT_EQ(fieldOf(65'537), (Bytes{0x01, 0x00}));
}

TEST(RequestFrame, AFrameOfAnnouncedSizeIsAllocatedOnce) {
    RequestFrame frame(1, CommandCode::I2cWrite, 1000);
    const uint8_t* const before = frame.content().data();
    // The longest fixed fields are ten bytes behind the command code.
    frame.zeros(10).bytes(Bytes(1000));
    EXPECT_EQ(frame.content().data(), before);
}

TEST(RequestFrame, AFrameIsMovedAndNeverCopied) {
    EXPECT_FALSE(std::is_copy_constructible_v<RequestFrame>);
    EXPECT_FALSE(std::is_copy_assignable_v<RequestFrame>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<RequestFrame>);
}

} // namespace
