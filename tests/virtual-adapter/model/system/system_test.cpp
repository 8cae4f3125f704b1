// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/AdapterFixture.hpp"

using virtual_adapter::Frame;

namespace {

using SystemModel = virtual_adapter::AdapterFixture;

TEST_F(SystemModel, AStringIsAnsweredWithItsLengthCountingTheLengthByte) {
    EXPECT_EQ(frames({0x05, 0x00, 0x07, 0x04, 0x03}),
              (std::vector<Frame>{
                  {0x05, 0x00, 0x07, 0x04, 0x00, 0x00, 0x08, 'V', 'A', '-', '0', '0', '0', '1'}}));
}

TEST_F(SystemModel, AnUnknownStringIndexIsRefusedWithAnEmptyString) {
    EXPECT_EQ(frames({0x05, 0x00, 0x07, 0x04, 0x06}),
              (std::vector<Frame>{{0x05, 0x00, 0x07, 0x04, 0x03, 0x00, 0x01}}));
}

TEST_F(SystemModel, AnUnknownCommandIsAnsweredWithItsOwnStatus) {
    EXPECT_EQ(frames({0x34, 0x12, 0xEE, 0x7F}),
              (std::vector<Frame>{{0x34, 0x12, 0xEE, 0x7F, 0x01, 0x00}}));
}

TEST_F(SystemModel, ATrailingByteMakesARequestMalformed) {
    EXPECT_EQ(frames({0x01, 0x00, 0x02, 0x04, 0x00}),
              (std::vector<Frame>{{0x01, 0x00, 0x02, 0x04, 0x02, 0x00}}));
    EXPECT_FALSE(adapter.inBootMode());
}

TEST_F(SystemModel, EnteringBootModeLeavesTheApplicationFirmware) {
    EXPECT_EQ(frames({0x01, 0x00, 0x02, 0x04}),
              (std::vector<Frame>{{0x01, 0x00, 0x02, 0x04, 0x00, 0x00}}));
    EXPECT_TRUE(adapter.inBootMode());
}

TEST_F(SystemModel, ARequestWithoutAWholeHeaderIsNotAnswered) {
    EXPECT_TRUE(frames({0x01, 0x00, 0x07}).empty());
}

} // namespace
