// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/I3cTarget.hpp"

#include "board/parts/I2cTemperatureSensor.hpp"

#include "virtual-adapter/model/i3c/I3cModel.hpp"

#include <memory>

using virtual_adapter::Board;
using virtual_adapter::Bytes;
using virtual_adapter::Frame;
using virtual_adapter::I2cTemperatureSensor;
using virtual_adapter::I3cBus;
using virtual_adapter::I3cCharacteristics;
using virtual_adapter::I3cFixture;
using virtual_adapter::I3cTarget;
using virtual_adapter::noPid;

namespace {

constexpr uint8_t limitedDataSpeed = 0x01;
constexpr uint8_t advancedCapabilities = 0x20;

I3cCharacteristics targetOf(uint8_t bcr, I3cPushPullRate fastestRate = I3cPushPullRate_12_5_MHz) {
    return {0x20, {0x04, 0x00, 0x00, 0x00, 0x00, 0x01}, bcr, 0x00, 64, 64, 0, 0x01, fastestRate};
}

/// A bus with one target, of 256 registers, at 0x08.
class I3cTargetOnABusOfItsOwn : public I3cFixture {
protected:
    explicit I3cTargetOnABusOfItsOwn(Board board = boardWith(targetOf(advancedCapabilities)))
        : I3cFixture(std::move(board)) {
        startBus();
    }

    static Board boardWith(const I3cCharacteristics& kind) {
        Board board;
        board.i3c.attach(std::make_unique<I3cTarget>(kind, Bytes(256)));
        return board;
    }

    unsigned changeAddress(uint8_t from, uint8_t to) {
        return ccc({from, 0x00, 0x01, 0x88, 0x00, static_cast<uint8_t>(2 * to)});
    }
};

// --- Addresses ----------------------------------------------------------------------------------

TEST_F(I3cTargetOnABusOfItsOwn, MayHaveTheAddressesThatOnlyI2cKeepsForItself) {
    uint8_t present = 0x08;
    for (const uint8_t address : Bytes{0x77, 0x78, 0x79, 0x7B, 0x7D}) {
        EXPECT_EQ(changeAddress(present, address), 0x0000U);
        present = address;
    }
    EXPECT_EQ(addresses(), (Bytes{0x20, 0x7D}));
    EXPECT_EQ(sdrWrite(0x7D, {0x00}), 0x0000U);
    for (const uint8_t address : Bytes{0x07, 0x76, 0x7A, 0x7C, 0x7E, 0x7F}) {
        EXPECT_EQ(changeAddress(present, address), 0x0030U);
    }
    EXPECT_EQ(initBus({record(0x20, 0x79, noPid)}), 0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x20, 0x79}));
}

TEST_F(I3cTargetOnABusOfItsOwn, LeavesThemAloneBesideALegacyDeviceThatTheHostExpects) {
    EXPECT_EQ(initBus({record(0x20, 0x78, noPid), record(0x50, 0x00, noPid, 2)}), 0x0030U);
    EXPECT_EQ(initBus({record(0x20, 0x08, noPid), record(0x50, 0x00, noPid, 2)}), 0x0000U);
    EXPECT_EQ(changeAddress(0x08, 0x78), 0x0030U);
    EXPECT_EQ(initBus({record(0x78, 0x00, noPid, 2)}), 0x0030U);
}

class I3cTargetBesideALegacyDevice : public I3cTargetOnABusOfItsOwn {
protected:
    I3cTargetBesideALegacyDevice() : I3cTargetOnABusOfItsOwn(board()) {}

private:
    static Board board() {
        Board board = boardWith(targetOf(advancedCapabilities));
        board.i3c.attachLegacy(0x48, I2cTransferRate_1_MHz,
                               std::make_unique<I2cTemperatureSensor>(0));
        return board;
    }
};

TEST_F(I3cTargetBesideALegacyDevice, MayNotHaveTheAddressesThatI2cKeepsForItself) {
    for (const uint8_t address : Bytes{0x78, 0x79, 0x7B, 0x7D}) {
        EXPECT_EQ(changeAddress(0x08, address), 0x0030U);
        EXPECT_EQ(initBus({record(0x20, address, noPid)}), 0x0030U);
    }
}

// --- The maximum data speed ---------------------------------------------------------------------

class I3cTargetOfALimitedDataSpeed : public I3cTargetOnABusOfItsOwn,
                                     public testing::WithParamInterface<std::pair<int, uint8_t>> {
protected:
    I3cTargetOfALimitedDataSpeed()
        : I3cTargetOnABusOfItsOwn(
              boardWith(targetOf(limitedDataSpeed | advancedCapabilities,
                                 static_cast<I3cPushPullRate>(GetParam().first)))) {}
};

TEST_P(I3cTargetOfALimitedDataSpeed, TellsItInBothDirections) {
    const uint8_t rate = GetParam().second;
    EXPECT_EQ(cccData({0x08, 0x01, 0x02, 0x94, 0x00}), (Bytes{2, rate, rate}));
    EXPECT_EQ(cccData({0x08, 0x11, 0x02, 0x94, 0x00}), (Bytes{2, rate, rate}));
    EXPECT_EQ(ccc({0x08, 0x11, 0x01, 0x94, 0x91}), 0x0006U);
}

INSTANTIATE_TEST_SUITE_P(
    Rates, I3cTargetOfALimitedDataSpeed,
    testing::Values(std::pair(I3cPushPullRate_12_5_MHz, 0), std::pair(I3cPushPullRate_10_MHz, 1),
                    std::pair(I3cPushPullRate_8_MHz, 1), std::pair(I3cPushPullRate_6_MHz, 2),
                    std::pair(I3cPushPullRate_4_MHz, 3), std::pair(I3cPushPullRate_2_MHz, 4),
                    std::pair(I3cPushPullRate_1_MHz, 4)));

TEST_F(I3cTargetOnABusOfItsOwn, HasNoMaximumDataSpeedUnlessItsBcrPromisesOne) {
    EXPECT_EQ(ccc({0x08, 0x01, 0x02, 0x94, 0x00}), 0x0006U);
}

// --- A bus without targets ----------------------------------------------------------------------

class I3cBusWithoutTargets : public I3cTargetOnABusOfItsOwn {
protected:
    I3cBusWithoutTargets() : I3cTargetOnABusOfItsOwn(Board()) {}
};

TEST_F(I3cBusWithoutTargets, AcknowledgesNoBroadcast) {
    for (const Bytes& broadcast : {
             Bytes{0x7E, 0x00, 0x00, 0x06, 0x00},
             Bytes{0x7E, 0x00, 0x00, 0x07, 0x00},
             Bytes{0x7E, 0x10, 0x01, 0x00, 0x01},
             Bytes{0x7E, 0x00, 0x00, 0x1F, 0x00},
         }) {
        EXPECT_EQ(ccc(broadcast), 0x0006U);
    }
}

// --- START and power ----------------------------------------------------------------------------

/// A target at 0x30, on a bus without a controller.
class I3cTargetAlone : public testing::Test {
protected:
    I3cTargetAlone() {
        auto attached = std::make_unique<I3cTarget>(targetOf(advancedCapabilities), Bytes(16));
        target = attached.get();
        bus.attach(std::move(attached));
        target->setDynamicAddress(0x30);
    }

    I3cBus bus;
    I3cTarget* target = nullptr;
};

TEST_F(I3cTargetAlone, KeepsThePreparedActionBehindARepeatedStart) {
    EXPECT_TRUE(target->armReset(I3cTargetResetDefByte_NoReset));
    bus.start(true);
    EXPECT_EQ(target->resetAction(I3cTargetResetDefByte_NoReset), (Bytes{0x00}));
    target->receiveTargetResetPattern();
    EXPECT_EQ(target->dynamicAddress(), 0x30);
}

TEST_F(I3cTargetAlone, ForgetsThePreparedActionAtAStart) {
    EXPECT_TRUE(target->armReset(I3cTargetResetDefByte_NoReset));
    bus.start(false);
    EXPECT_EQ(target->resetAction(I3cTargetResetDefByte_NoReset), (Bytes{0x01}));
    target->receiveTargetResetPattern();
    EXPECT_EQ(target->dynamicAddress(), 0x00);
}

TEST_F(I3cTargetAlone, StartsWithItsEventsEnabled) {
    class Interrupting : public I3cTarget {
    public:
        using I3cTarget::I3cTarget;
        using I3cTarget::requestInterrupt;
    };
    Interrupting interrupting(targetOf(advancedCapabilities), Bytes(16));
    const auto raises = [&] {
        interrupting.setDynamicAddress(0x31);
        interrupting.requestInterrupt({});
        return interrupting.requestsInterrupt();
    };
    EXPECT_TRUE(raises());
    interrupting.disableEvents(virtual_adapter::i3c_event::all);
    EXPECT_FALSE(raises());
    interrupting.setSupply(false);
    interrupting.setSupply(true);
    EXPECT_TRUE(raises());
}

} // namespace
