#include "model/Adapter.hpp"

#include <gtest/gtest.h>

using virtual_adapter::Adapter;
using virtual_adapter::Frame;

namespace {

std::vector<Frame> answers(Adapter& adapter, const Frame& request) {
    return adapter.handle(request);
}

TEST(SystemModel, AStringIsAnsweredWithItsLengthCountingTheLengthByte) {
    Adapter adapter(virtual_adapter::fullSpeedVariant, "VA-0001");
    EXPECT_EQ(answers(adapter, {0x05, 0x00, 0x07, 0x04, 0x03}),
              (std::vector<Frame>{
                  {0x05, 0x00, 0x07, 0x04, 0x00, 0x00, 0x08, 'V', 'A', '-', '0', '0', '0', '1'}}));
}

TEST(SystemModel, AnUnknownStringIndexIsRefusedWithAnEmptyString) {
    Adapter adapter(virtual_adapter::fullSpeedVariant, "VA-0001");
    EXPECT_EQ(answers(adapter, {0x05, 0x00, 0x07, 0x04, 0x06}),
              (std::vector<Frame>{{0x05, 0x00, 0x07, 0x04, 0x03, 0x00, 0x01}}));
}

TEST(SystemModel, AnUnknownCommandIsAnsweredWithItsOwnStatus) {
    Adapter adapter(virtual_adapter::fullSpeedVariant, "VA-0001");
    EXPECT_EQ(answers(adapter, {0x34, 0x12, 0xEE, 0x7F}),
              (std::vector<Frame>{{0x34, 0x12, 0xEE, 0x7F, 0x01, 0x00}}));
}

TEST(SystemModel, ATrailingByteMakesARequestMalformed) {
    Adapter adapter(virtual_adapter::fullSpeedVariant, "VA-0001");
    EXPECT_EQ(answers(adapter, {0x01, 0x00, 0x02, 0x04, 0x00}),
              (std::vector<Frame>{{0x01, 0x00, 0x02, 0x04, 0x02, 0x00}}));
    EXPECT_FALSE(adapter.inBootMode());
}

TEST(SystemModel, EnteringBootModeLeavesTheApplicationFirmware) {
    Adapter adapter(virtual_adapter::fullSpeedVariant, "VA-0001");
    EXPECT_EQ(answers(adapter, {0x01, 0x00, 0x02, 0x04}),
              (std::vector<Frame>{{0x01, 0x00, 0x02, 0x04, 0x00, 0x00}}));
    EXPECT_TRUE(adapter.inBootMode());
}

TEST(SystemModel, ARequestWithoutAWholeHeaderIsNotAnswered) {
    Adapter adapter(virtual_adapter::fullSpeedVariant, "VA-0001");
    EXPECT_TRUE(answers(adapter, {0x01, 0x00, 0x07}).empty());
}

} // namespace
