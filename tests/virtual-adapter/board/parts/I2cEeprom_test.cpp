// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I2cEeprom.hpp"

#include "virtual-adapter/model/i2c/I2cModel.hpp"
#include "virtual-adapter/requests.hpp"

using virtual_adapter::answerOf;
using virtual_adapter::Board;
using virtual_adapter::bytesOfText;
using virtual_adapter::Frame;
using virtual_adapter::i2cData;
using virtual_adapter::I2cEeprom;
using virtual_adapter::i2cRead;
using virtual_adapter::i2cWrite;

namespace {

/// A small EEPROM and a large one on each bus.
Board eeproms() {
    const auto eeprom = [](const I2cEeprom::Geometry& geometry, const char* contents) {
        return std::make_unique<I2cEeprom>(geometry, bytesOfText(contents));
    };
    Board board;
    board.i2c[0].attach(0x50, eeprom(I2cEeprom::geometry24C02, "Hello from the virtual adapter!"));
    board.i2c[0].attach(0x51, eeprom(I2cEeprom::geometry24C256, ""));
    board.i2c[1].attach(0x50, eeprom(I2cEeprom::geometry24C02, "Hello from bus 1!"));
    board.i2c[1].attach(0x51, eeprom(I2cEeprom::geometry24C256, "32 KiB on bus 1"));
    return board;
}

class I2cEepromPart : public virtual_adapter::I2cModel {
protected:
    I2cEepromPart() : I2cModel(eeproms()) {}
};

// --- The small EEPROM at 0x50 -------------------------------------------------------------------

TEST_F(I2cEepromPart, TheSmallEepromGreetsItsReaderAndIsErasedBehind) {
    EXPECT_EQ(response(i2cRead(0, 0x50, {0}, 33)),
              i2cData(0, {'H', 'e', 'l', 'l', 'o', ' ', 'f', 'r', 'o', 'm',  ' ',
                          't', 'h', 'e', ' ', 'v', 'i', 'r', 't', 'u', 'a',  'l',
                          ' ', 'a', 'd', 'a', 'p', 't', 'e', 'r', '!', 0xFF, 0xFF}));
}

TEST_F(I2cEepromPart, ReadsGoOnFromTheAddressCounter) {
    status(i2cRead(1, 0x50, {10}, 1));
    EXPECT_EQ(response(i2cRead(1, 0x50, {}, 6)), i2cData(1, {'b', 'u', 's', ' ', '1', '!'}));
}

TEST_F(I2cEepromPart, ReadsRollOverAtTheEndOfTheMemory) {
    EXPECT_EQ(response(i2cRead(0, 0x50, {0xFE}, 4)), i2cData(0, {0xFF, 0xFF, 'H', 'e'}));
}

TEST_F(I2cEepromPart, WrittenBytesReadBackOnceTheWriteCycleIsOver) {
    EXPECT_EQ(response(i2cWrite(0, 0x50, {0x40}, {0xCA, 0xFE})),
              answerOf(CommandCode::I2cWrite, 0x00));
    EXPECT_EQ(pollUntilAcknowledged(i2cRead(0, 0x50, {0x40}, 3)), i2cData(0, {0xCA, 0xFE, 0xFF}));
}

TEST_F(I2cEepromPart, TheWriteCycleLastsThreeUnacknowledgedAttempts) {
    status(i2cWrite(0, 0x50, {0x40}, {0xCA}));
    const Frame poll = i2cWrite(0, 0x50, {}, {});
    EXPECT_EQ(status(poll), 0x0006U);
    EXPECT_EQ(status(poll), 0x0006U);
    EXPECT_EQ(status(poll), 0x0006U);
    EXPECT_EQ(status(poll), 0x0000U);
}

TEST_F(I2cEepromPart, TheWriteCycleHidesOnlyTheWrittenEepromFromAScan) {
    status(i2cWrite(0, 0x50, {0x40}, {0xCA}));
    EXPECT_EQ(response({0x01, 0x00, 0x06, 0x09, 0x00, 0x00}),
              (Frame{0x01, 0x00, 0x06, 0x09, 0x00, 0x00, 0x00, 0x01, 0x00, 0x51}));
}

TEST_F(I2cEepromPart, AWriteOfTheRegisterAddressAloneStartsNoWriteCycle) {
    EXPECT_EQ(status(i2cWrite(0, 0x50, {0x06}, {})), 0x0000U);
    EXPECT_EQ(response(i2cRead(0, 0x50, {}, 4)), i2cData(0, {'f', 'r', 'o', 'm'}));
}

TEST_F(I2cEepromPart, TheOptionByteMakesTheControllerWaitTheWriteCycleOut) {
    EXPECT_EQ(status({0x01, 0x00, 0x02, 0x09, 0x00, 0xA0, 0x86, 0x01, 0x00, 0x01}), 0x0000U);
    EXPECT_EQ(status(i2cWrite(0, 0x50, {0x40}, {0xCA})), 0x0000U);
    EXPECT_EQ(response(i2cRead(0, 0x50, {0x40}, 1)), i2cData(0, {0xCA}));
    EXPECT_EQ(status(i2cWrite(0, 0x52, {}, {})), 0x0006U);

    status(i2cWrite(0, 0x50, {0x41}, {0xFE}));
    EXPECT_EQ(status({0x01, 0x00, 0x01, 0x09, 0x00, 0xA0, 0x86, 0x01, 0x00, 0x00}), 0x0000U);
    EXPECT_EQ(status(i2cRead(0, 0x50, {0x41}, 1)), 0x0006U);
}

TEST_F(I2cEepromPart, AWriteWrapsInsideItsPageOfEightBytes) {
    status(i2cWrite(0, 0x50, {0x46}, {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'}));
    EXPECT_EQ(pollUntilAcknowledged(i2cRead(0, 0x50, {0x3F}, 10)),
              i2cData(0, {0xFF, '2', '3', '4', '5', '6', '7', '8', '9', 0xFF}));
}

TEST_F(I2cEepromPart, SurplusRegisterAddressBytesAreDataToTheTarget) {
    status(i2cWrite(0, 0x50, {0x40, 0xAB}, {}));
    EXPECT_EQ(pollUntilAcknowledged(i2cRead(0, 0x50, {0x40}, 1)), i2cData(0, {0xAB}));
}

TEST_F(I2cEepromPart, AReadOfNoBytesOnlyAsksForTheAcknowledge) {
    EXPECT_EQ(response(i2cRead(0, 0x50, {}, 0)), i2cData(0, {}));
}

TEST_F(I2cEepromPart, TheBusesHoldTargetsOfTheirOwn) {
    status(i2cWrite(0, 0x50, {0x00}, {'h'}));
    EXPECT_EQ(response(i2cRead(1, 0x50, {0}, 1)), i2cData(1, {'H'}));
}

TEST_F(I2cEepromPart, AWriteProtectedOneAcknowledgesNoDataAndKeepsWhatItHolds) {
    virtual_adapter::I2cEeprom eeprom(I2cEeprom::geometry24C02, {'H'}, true);
    eeprom.start(virtual_adapter::I2cDirection::Write);
    EXPECT_EQ(eeprom.writeMessage({0x00, 'j'}), 1U);
    eeprom.stop();
    EXPECT_TRUE(eeprom.start(virtual_adapter::I2cDirection::Write)) << "no write cycle";
    eeprom.writeMessage({0x00});
    EXPECT_EQ(eeprom.readMessage(1), virtual_adapter::Bytes{'H'});

    EXPECT_EQ(eeprom.set("write_protected", "false"), "");
    eeprom.start(virtual_adapter::I2cDirection::Write);
    EXPECT_EQ(eeprom.writeMessage({0x00, 'j'}), 2U);
}

TEST(I2cEepromAddresses, TheAddressSelectsTheBlockThatAWriteReachesAndReadsGoOnAcross) {
    Board board;
    uint8_t address = 0x50;
    for (auto& block : I2cEeprom::atItsAddresses(
             std::make_unique<I2cEeprom>(I2cEeprom::Geometry{512, 16, 1}, bytesOfText("first")))) {
        board.i2c[0].attach(address++, std::move(block));
    }
    virtual_adapter::I2cBus& bus = board.i2c[0];
    ASSERT_TRUE(bus.start(0x51, virtual_adapter::I2cDirection::Write));
    bus.write({0x00, 'B'});
    bus.stop();
    EXPECT_FALSE(bus.start(0x50, virtual_adapter::I2cDirection::Write))
        << "one write cycle for all";
    while (!bus.start(0x50, virtual_adapter::I2cDirection::Write)) {
    }
    bus.write({0xFF});
    bus.start(0x50, virtual_adapter::I2cDirection::Read);
    EXPECT_EQ(bus.read(3), (virtual_adapter::Bytes{0xFF, 'B', 0xFF}));
    bus.start(0x51, virtual_adapter::I2cDirection::Write);
    bus.write({0xFF});
    bus.start(0x51, virtual_adapter::I2cDirection::Read);
    EXPECT_EQ(bus.read(2), (virtual_adapter::Bytes{0xFF, 'f'}));
}

// --- The large EEPROM at 0x51 -------------------------------------------------------------------

TEST_F(I2cEepromPart, TheLargeEepromTakesTwoRegisterAddressBytes) {
    EXPECT_EQ(response(i2cRead(1, 0x51, {0x00, 0x0C}, 3)), i2cData(1, {'s', ' ', '1'}));
    EXPECT_EQ(response(i2cRead(0, 0x51, {0x00, 0x00}, 2)), i2cData(0, {0xFF, 0xFF}));
}

TEST_F(I2cEepromPart, TheLargeEepromIgnoresTheTopBitOfTheRegisterAddress) {
    EXPECT_EQ(response(i2cRead(1, 0x51, {0x80, 0x00}, 2)), i2cData(1, {'3', '2'}));
}

TEST_F(I2cEepromPart, AnIncompleteRegisterAddressLeavesTheAddressCounterAlone) {
    status(i2cRead(1, 0x51, {0x00, 0x00}, 3));
    EXPECT_EQ(response(i2cRead(1, 0x51, {0x0C}, 3)), i2cData(1, {'K', 'i', 'B'}));
}

TEST_F(I2cEepromPart, TheLargeEepromWrapsWritesInsidePagesOf64BytesAndReadsAtItsEnd) {
    status(i2cWrite(0, 0x51, {0x7F, 0xFE}, {1, 2, 3}));
    EXPECT_EQ(pollUntilAcknowledged(i2cRead(0, 0x51, {0x7F, 0xFE}, 3)),
              i2cData(0, {0x01, 0x02, 0xFF}));
    EXPECT_EQ(response(i2cRead(0, 0x51, {0x7F, 0xC0}, 2)), i2cData(0, {0x03, 0xFF}));
}

TEST_F(I2cEepromPart, AReadMayTakeAsManyBytesAsItsLengthCanSay) {
    const Frame answer = response(i2cRead(1, 0x51, {0x00, 0x00}, 65535));
    ASSERT_EQ(answer.size(), 9U + 65535U);
    EXPECT_EQ(Frame(answer.begin(), answer.begin() + 10),
              (Frame{0x01, 0x00, 0x05, 0x09, 0x00, 0x00, 0x01, 0xFF, 0xFF, '3'}));
    EXPECT_EQ(answer[9 + 32768], '3');
}

} // namespace
