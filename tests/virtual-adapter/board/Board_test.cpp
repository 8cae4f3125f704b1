// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/Board.hpp"

#include "board/parts/I2cTemperatureSensor.hpp"
#include "board/parts/I3cAccelerometer.hpp"
#include "board/parts/I3cMemory.hpp"

#include "virtual-adapter/model/i2c/I2cModel.hpp"
#include "virtual-adapter/model/i3c/I3cModel.hpp"
#include "virtual-adapter/requests.hpp"

using virtual_adapter::Board;
using virtual_adapter::Frame;
using virtual_adapter::I2cTemperatureSensor;
using virtual_adapter::I3cAccelerometer;
using virtual_adapter::I3cFixture;
using virtual_adapter::I3cMemory;
using virtual_adapter::PowerDomain;
using virtual_adapter::spiData;
using virtual_adapter::spiTransfer;

namespace {

// --- Nothing on it ------------------------------------------------------------------------------

class EmptyBoard : public virtual_adapter::I2cModel {
protected:
    EmptyBoard() : I2cModel(Board()) {}
};

TEST_F(EmptyBoard, NobodyAcknowledgesOnI2c) {
    EXPECT_EQ(response({0x01, 0x00, 0x06, 0x09, 0x01, 0x01}),
              (Frame{0x01, 0x00, 0x06, 0x09, 0x00, 0x00, 0x00, 0x00, 0x00}));
}

TEST_F(EmptyBoard, EverySpiLineFloats) {
    status({0x01, 0x00, 0x01, 0x0D, 0, 0, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00});
    EXPECT_EQ(response(spiTransfer({0x9F}, 2)), spiData({0xFF, 0xFF}));
}

TEST_F(EmptyBoard, NothingComesBackFromTheUart) {
    status({0x01, 0x00, 0x02, 0x10, 7, 0, 0, 8, 1});
    EXPECT_EQ(response({0x01, 0x00, 0x05, 0x10, 1, 0, 'A'}),
              (Frame{0x01, 0x00, 0x05, 0x10, 0x00, 0x00}));
}

TEST_F(EmptyBoard, NoPinHearsAnother) {
    status({0x01, 0x00, 0x01, 0x14, 0, 0});
    status({0x01, 0x00, 0x01, 0x14, 1, 1, 1});
    EXPECT_EQ(response({0x01, 0x00, 0x03, 0x14, 0}),
              (Frame{0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x00}));
}

TEST_F(EmptyBoard, TheI3cBusHasNoTargets) {
    status({0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C});
    status({0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0});
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x19, 0}), 0x0000U);
    EXPECT_EQ(response({0x01, 0x00, 0x06, 0x19}),
              (Frame{0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0x00}));
}

// --- Wired pins ---------------------------------------------------------------------------------

class ThreePinsJoined : public virtual_adapter::AdapterFixture {
protected:
    ThreePinsJoined() : AdapterFixture(joinedPins()) { powerOn(); }

private:
    static Board joinedPins() {
        Board board;
        board.gpio.join(GpioPinNumber_6, GpioPinNumber_7);
        board.gpio.join(GpioPinNumber_1, GpioPinNumber_6);
        return board;
    }
};

TEST_F(ThreePinsJoined, EachReadsWhatAnyOfThemDrives) {
    status({0x01, 0x00, 0x01, 0x14, 1, 0});
    status({0x01, 0x00, 0x01, 0x14, 6, 0});
    status({0x01, 0x00, 0x01, 0x14, 7, 1, 1});
    for (const uint8_t pin : {uint8_t{1}, uint8_t{6}}) {
        EXPECT_EQ(response({0x01, 0x00, 0x03, 0x14, pin}),
                  (Frame{0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01}));
    }
}

// --- The I3C bus --------------------------------------------------------------------------------

class LegacyDevices : public I3cFixture {
protected:
    LegacyDevices() : I3cFixture(devices()) { startBus(); }

    /// Reads a byte of the device at @p address.
    unsigned legacyRead(uint8_t address) {
        return status({0x01, 0x00, 0x08, 0x19, address, 0x05, 0, 1, 0, 0, 0, 0, 1, 0});
    }
    void setLegacyRate(uint8_t rate) {
        EXPECT_EQ(status({0x01, 0x00, 0x02, 0x19, 0, 0, rate, 0}), 0x0000U);
    }

private:
    static Board devices() {
        Board board;
        board.i3c.attach(std::make_unique<I3cMemory>());
        board.i3c.attachLegacy(0x20, I2cTransferRate_0_1_MHz,
                               std::make_unique<I2cTemperatureSensor>(0));
        board.i3c.attachLegacy(0x21, I2cTransferRate_1_MHz,
                               std::make_unique<I2cTemperatureSensor>(0));
        return board;
    }
};

TEST_F(LegacyDevices, EachAnswersUpToItsFastestRate) {
    EXPECT_EQ(legacyRead(0x20), 0x0006U);
    EXPECT_EQ(legacyRead(0x21), 0x0000U);
    setLegacyRate(1);
    EXPECT_EQ(legacyRead(0x20), 0x0006U);
    setLegacyRate(2);
    EXPECT_EQ(legacyRead(0x20), 0x0000U);
    EXPECT_EQ(legacyRead(0x21), 0x0000U);
}

TEST_F(LegacyDevices, TheirAddressesAreTaken) {
    EXPECT_EQ(ccc({0x08, 0x00, 0x01, 0x88, 0x00, 0x20 * 2}), 0x0031U);
    EXPECT_EQ(ccc({0x08, 0x00, 0x01, 0x88, 0x00, 0x4F * 2}), 0x0000U);
}

TEST_F(LegacyDevices, ASensorThatLosesItsPowerPointsAtItsTemperatureAgain) {
    setLegacyRate(2);
    // The hysteresis register: a pointer alone, then a read that goes on there.
    const Frame read{0x01, 0x00, 0x08, 0x19, 0x20, 0x05, 0, 0, 0, 0, 0, 0, 1, 0};
    status({0x01, 0x00, 0x08, 0x19, 0x20, 0x04, 0, 1, 2, 0, 0, 0, 0, 0});
    EXPECT_EQ(response(read), (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 1, 0, 1, 0, 75}));

    status({0x01, 0x00, 0x04, 0x04, 0x00, 0x00});
    startBus();
    setLegacyRate(2);
    EXPECT_EQ(response(read), (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 1, 0, 1, 0, 0}));
}

TEST(PowerDomain, ItsConsumersStartWithoutPower) {
    PowerDomain domain;
    I3cAccelerometer target;
    domain.feed([&](bool supplied) { target.setSupply(supplied); });
    EXPECT_FALSE(target.isPowered());
    domain.supply(true);
    EXPECT_TRUE(target.isPowered());
    EXPECT_TRUE(target.requestsHotJoin());
    domain.supply(false);
    EXPECT_FALSE(target.isPowered());
    EXPECT_FALSE(target.requestsHotJoin());
}

TEST(PowerDomain, ItKeepsItsConsumersWhenTheBoardMoves) {
    bool lit = true;
    Board board;
    PowerDomain& domain = board.powerDomains["lamp"];
    domain.feed([&](bool supplied) { lit = supplied; });
    EXPECT_FALSE(lit);
    const Board moved = std::move(board);
    domain.supply(true);
    EXPECT_TRUE(lit);
    moved.powerDomains.at("lamp").supply(false);
    EXPECT_FALSE(lit);
}

} // namespace
