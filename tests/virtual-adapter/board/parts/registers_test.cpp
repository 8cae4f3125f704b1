// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/BoardDescription.hpp"

#include "virtual-adapter/model/i2c/I2cModel.hpp"
#include "virtual-adapter/model/i3c/I3cModel.hpp"
#include "virtual-adapter/requests.hpp"

using virtual_adapter::answerOf;
using virtual_adapter::Board;
using virtual_adapter::BoardDescription;
using virtual_adapter::buildBoard;
using virtual_adapter::Bytes;
using virtual_adapter::Frame;
using virtual_adapter::i2cData;
using virtual_adapter::i2cRead;
using virtual_adapter::i2cWrite;
using virtual_adapter::I3cFixture;
using virtual_adapter::Numbers;
using virtual_adapter::Place;
using virtual_adapter::Placement;
using virtual_adapter::RegisterBytes;
using virtual_adapter::RegisterRanges;
using virtual_adapter::SettingValues;
using virtual_adapter::spiData;
using virtual_adapter::spiTransfer;

namespace {

Board boardOf(const std::vector<Placement>& parts) {
    BoardDescription description;
    description.parts = parts;
    return buildBoard(description);
}

// --- On I2C -------------------------------------------------------------------------------------

/// At 0x20 registers of one byte, at 0x21 of two bytes behind two bytes of address, at 0x22 of two
/// bytes that stay at their register.
class I2cRegisters : public virtual_adapter::I2cModel {
protected:
    I2cRegisters()
        : I2cModel(boardOf(
              {at(0x20, {{"registers", uint64_t{16}},
                         {"contents", RegisterBytes{{0x00, {0x60}}, {0x0E, {0xAA, 0xBB}}}},
                         {"read_only", RegisterRanges{{0x00, 0x00}, {0x08, 0x09}}},
                         {"writable_bits", RegisterBytes{{0x02, {0x0F}}}}}),
               at(0x21, {{"register_bytes", uint64_t{2}},
                         {"registers", uint64_t{300}},
                         {"width", uint64_t{2}},
                         {"contents", RegisterBytes{{0x0101, {0x12, 0x34, 0x56, 0x78}}}}}),
               at(0x22, {{"width", uint64_t{2}},
                         {"auto_increment", false},
                         {"contents", RegisterBytes{{0x01, {0x12, 0x34, 0x56, 0x78}}}}})})) {}

private:
    static Placement at(uint64_t address, const SettingValues& settings) {
        return {Place::I2c, "registers", {{"bus", uint64_t{0}}, {"address", address}}, settings};
    }
};

TEST_F(I2cRegisters, ARegisterHoldsItsContentsAndTheOthersHold0) {
    EXPECT_EQ(response(i2cRead(0, 0x20, {0x00}, 2)), i2cData(0, {0x60, 0x00}));
}

TEST_F(I2cRegisters, BehindTheLastRegisterComesTheFirst) {
    EXPECT_EQ(response(i2cRead(0, 0x20, {0x0E}, 4)), i2cData(0, {0xAA, 0xBB, 0x60, 0x00}));
    status(i2cWrite(0, 0x20, {0x0F}, {1, 2, 3}));
    EXPECT_EQ(response(i2cRead(0, 0x20, {0x0F}, 3)), i2cData(0, {1, 0x60, 3}));
}

TEST_F(I2cRegisters, AReadGoesOnWhereTheLastTransferEnded) {
    status(i2cWrite(0, 0x20, {0x0D}, {7}));
    EXPECT_EQ(response(i2cRead(0, 0x20, {}, 2)), i2cData(0, {0xAA, 0xBB}));
}

TEST_F(I2cRegisters, AWriteChangesTheWritableBitsOnly) {
    EXPECT_EQ(status(i2cWrite(0, 0x20, {0x00}, {0xFF, 0xFF, 0xFF})), 0x0000U);
    EXPECT_EQ(status(i2cWrite(0, 0x20, {0x07}, {0xFF, 0xFF, 0xFF, 0xFF})), 0x0000U);
    EXPECT_EQ(response(i2cRead(0, 0x20, {0x00}, 11)),
              i2cData(0, {0x60, 0xFF, 0x0F, 0, 0, 0, 0, 0xFF, 0, 0, 0xFF}));
}

TEST_F(I2cRegisters, AnAddressBehindTheLastRegisterIsNotAcknowledged) {
    EXPECT_EQ(response(i2cWrite(0, 0x20, {0x10}, {1})), answerOf(CommandCode::I2cWrite, 0x07));
    EXPECT_EQ(response(i2cRead(0, 0x20, {0x10}, 1)), answerOf(CommandCode::I2cRead, 0x07));
    EXPECT_EQ(response(i2cWrite(0, 0x21, {0x01, 0x2C}, {})), answerOf(CommandCode::I2cWrite, 0x07));
}

TEST_F(I2cRegisters, WideRegistersFollowOneAnother) {
    EXPECT_EQ(response(i2cRead(0, 0x21, {0x01, 0x01}, 5)),
              i2cData(0, {0x12, 0x34, 0x56, 0x78, 0x00}));
    EXPECT_EQ(response(i2cRead(0, 0x21, {0x01, 0x02}, 2)), i2cData(0, {0x56, 0x78}));
}

TEST_F(I2cRegisters, WithoutAutoIncrementTheSameRegisterComesAgain) {
    EXPECT_EQ(response(i2cRead(0, 0x22, {0x01}, 5)), i2cData(0, {0x12, 0x34, 0x12, 0x34, 0x12}));
    status(i2cWrite(0, 0x22, {0x02}, {1, 2, 3}));
    EXPECT_EQ(response(i2cRead(0, 0x22, {0x02}, 2)), i2cData(0, {3, 2}));
}

TEST(RegisterSettings, ARegisterChangesWhateverAHostCanChange) {
    const Board board = boardOf({{Place::I2c,
                                  "registers",
                                  {{"bus", uint64_t{1}}, {"address", uint64_t{0x20}}},
                                  {{"read_only", RegisterRanges{{0x00, 0xFF}}}}}});
    virtual_adapter::I2cTarget& part = *board.i2c[1].targetAt(0x20);
    EXPECT_EQ(part.set("0xFE", "hex:AABB"), "");
    EXPECT_EQ(part.set("254", "0x11"), "");
    part.writeMessage({0xFE});
    EXPECT_EQ(part.readMessage(2), (Bytes{0x11, 0xBB}));
    EXPECT_EQ(part.set("0x100", "1"),
              "there is no setting '0x100' that changes; there are the registers 0x00 to 0xFF");
    EXPECT_EQ(part.set("0xFE", "hex:010203"),
              "register 0xFE: 'hex:010203' is not allowed; allowed is a byte such as 0x2A, or "
              "hex:0011ff or str:text of from 1 to 2 bytes");
    part.cyclePower();
    part.writeMessage({0xFE});
    EXPECT_EQ(part.readMessage(2), (Bytes{0x00, 0x00}));
}

// --- On SPI -------------------------------------------------------------------------------------

/// Behind chip select 0 registers with one byte of address, behind 1 with two and a dummy byte,
/// and reads marked by the two upper bits.
class SpiRegisters : public virtual_adapter::AdapterFixture {
protected:
    SpiRegisters()
        : AdapterFixture(
              boardOf({at(0, {{"registers", uint64_t{128}},
                              {"contents", RegisterBytes{{0x00, {0x58}}, {0x7F, {0x7F}}}}}),
                       at(1, {{"register_bytes", uint64_t{2}},
                              {"read_bits", uint64_t{0xC0}},
                              {"dummy_bytes", uint64_t{1}},
                              {"modes", Numbers{1}},
                              {"contents", RegisterBytes{{0x05, {0xAA, 0xBB}}}}})})) {
        powerOn();
        choose(0, 0);
    }

    void choose(uint8_t chipSelect, uint8_t mode) {
        EXPECT_EQ(status({0x01, 0x00, 0x01, 0x0D, 0, mode, 8, chipSelect, 0, 0x40, 0x42, 0x0F, 0}),
                  0x0000U);
    }

private:
    static Placement at(uint64_t chipSelect, const SettingValues& settings) {
        return {Place::Spi, "registers", {{"chip_select", chipSelect}}, settings};
    }
};

TEST_F(SpiRegisters, AReadBringsTheRegistersBehindItsAddress) {
    EXPECT_EQ(response(spiTransfer({0x80}, 2)), spiData({0xFF, 0x58}));
    EXPECT_EQ(response(spiTransfer({0xFF}, 3)), spiData({0xFF, 0x7F, 0x58}));
}

TEST_F(SpiRegisters, AWriteChangesTheRegistersBehindItsAddressAndDrivesNothing) {
    EXPECT_EQ(response(spiTransfer({0x10, 1, 2}, 3)), spiData({0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(response(spiTransfer({0x90}, 4)), spiData({0xFF, 1, 2, 0}));
}

TEST_F(SpiRegisters, ATransferWithoutAWholeAddressDoesNothing) {
    EXPECT_EQ(status(spiTransfer({}, 0)), 0x0000U);
    choose(1, 1);
    EXPECT_EQ(response(spiTransfer({0xC0}, 1)), spiData({0xFF}));
}

TEST_F(SpiRegisters, ADummyByteStandsBetweenAddressAndData) {
    choose(1, 1);
    EXPECT_EQ(response(spiTransfer({0xC0, 0x05, 0x00}, 5)),
              spiData({0xFF, 0xFF, 0xFF, 0xAA, 0xBB}));
}

TEST_F(SpiRegisters, ATransferThatIsNeitherReadNorWriteDoesNothing) {
    choose(1, 1);
    EXPECT_EQ(response(spiTransfer({0x80, 0x05, 0x11, 0x22}, 4)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(response(spiTransfer({0xC0, 0x05, 0x00}, 5)),
              spiData({0xFF, 0xFF, 0xFF, 0xAA, 0xBB}));
}

TEST_F(SpiRegisters, AnAddressBehindTheLastRegisterDrivesNothing) {
    choose(1, 1);
    EXPECT_EQ(response(spiTransfer({0xC1, 0x00, 0x00}, 4)), spiData({0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST_F(SpiRegisters, TheyUnderstandTheirModesOnly) {
    choose(0, 3);
    EXPECT_EQ(response(spiTransfer({0x80}, 2)), spiData({0xFF, 0x58}));
    choose(0, 1);
    EXPECT_EQ(response(spiTransfer({0x80}, 2)), spiData({0xFF, 0xFF}));
}

// --- On I3C -------------------------------------------------------------------------------------

class I3cRegisters : public I3cFixture {
protected:
    I3cRegisters()
        : I3cFixture(boardOf({{Place::I3c,
                               "registers",
                               {},
                               {{"static_address", uint64_t{0x68}},
                                {"pid", std::string("0461000000aa")},
                                {"dcr", uint64_t{0x44}},
                                {"max_read", uint64_t{16}},
                                {"registers", uint64_t{32}},
                                {"contents", RegisterBytes{{0x00, {0xE1, 0xE2}}}},
                                {"read_only", RegisterRanges{{0x00, 0x00}}}}}})) {
        startBus();
    }
};

TEST_F(I3cRegisters, ItIsFoundWithWhatItsUsersSay) {
    EXPECT_EQ(deviceTable(),
              (Frame{0x01, 0x00, 0x06, 0x19, 0,    0,  1, 0x68, 0x08, 0x04, 0x61, 0x00,
                     0x00, 0x00, 0xAA, 0x26, 0x44, 64, 0, 16,   0,    8,    0}));
}

TEST_F(I3cRegisters, AHostChangesTheWritableOnes) {
    EXPECT_EQ(sdrWrite(0x08, {0x00, 0x11, 0x22}), 0x0000U);
    EXPECT_EQ(sdrRead(0x08, 0x00, 2),
              (Frame{0x01, 0x00, 0x08, 0x19, 0, 0, 2, 0, 2, 0, 0xE1, 0x22}));
}

TEST_F(I3cRegisters, AReadEndsAtTheLongestThatItGives) {
    EXPECT_EQ(sdrRead(0x08, 0x00, 32).at(8), 16);
}

TEST_F(I3cRegisters, WithoutSupplyTheyHoldTheirFirstContentsAgain) {
    sdrWrite(0x08, {0x01, 0x33});
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x04, 0, 0}), 0x0000U);
    startBus();
    EXPECT_EQ(sdrRead(0x08, 0x00, 2),
              (Frame{0x01, 0x00, 0x08, 0x19, 0, 0, 2, 0, 2, 0, 0xE1, 0xE2}));
}

} // namespace
