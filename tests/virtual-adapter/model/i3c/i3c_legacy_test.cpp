// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/model/i3c/I3cModel.hpp"

using virtual_adapter::Bytes;
using virtual_adapter::Frame;
using virtual_adapter::I3cModel;
using virtual_adapter::noPid;

namespace {

// Transfer-control bytes: mode, direction and flags.
constexpr uint8_t legacyWrite = 0x04;
constexpr uint8_t legacyRead = 0x05;
constexpr uint8_t skipBroadcast = 0x08;
constexpr uint8_t noStop = 0x10;

TEST_F(I3cModel, TheLegacyEepromIsReadAtItsStaticAddress) {
    EXPECT_EQ(response({0x01, 0x00, 0x08, 0x19, 0x50, legacyRead, 0, 1, 0x00, 0, 0, 0, 5, 0}),
              (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 5, 0, 5, 0, 'H', 'e', 'l', 'l', 'o'}));
}

TEST_F(I3cModel, TheLegacyEepromStoresAndIsBusyAfterwards) {
    EXPECT_EQ(
        status({0x01, 0x00, 0x08, 0x19, 0x50, legacyWrite, 0, 1, 0x40, 0, 0, 0, 2, 0, 0xAA, 0xBB}),
        0x0000U);
    const Frame read{0x01, 0x00, 0x08, 0x19, 0x50, legacyRead, 0, 1, 0x40, 0, 0, 0, 2, 0};
    EXPECT_EQ(response(read), (Frame{0x01, 0x00, 0x08, 0x19, 0x06, 0x00, 2, 0, 0, 0}));
    response(read);
    response(read);
    EXPECT_EQ(response(read), (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 2, 0, 2, 0, 0xAA, 0xBB}));
}

TEST_F(I3cModel, TheLegacySensorFollowsFastModeButNotFastModePlus) {
    const Frame read{0x01, 0x00, 0x08, 0x19, 0x4F, legacyRead, 0, 1, 0x00, 0, 0, 0, 2, 0};
    EXPECT_EQ(status(read), 0x0006U);
    EXPECT_EQ(status({0x01, 0x00, 0x02, 0x19, 0, 0, 1, 0}), 0x0000U);
    EXPECT_EQ(response(read), (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 2, 0, 2, 0, 0x14, 0x00}));
}

TEST_F(I3cModel, OfALegacySensorsRegisterTheTwoLowestBitsCountAlone) {
    const Frame read{0x01, 0x00, 0x08, 0x19, 0x4F, legacyRead, 0, 1, 0x04, 0, 0, 0, 2, 0};
    status({0x01, 0x00, 0x02, 0x19, 0, 0, 1, 0});
    EXPECT_EQ(response(read), (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 2, 0, 2, 0, 0x14, 0x00}));
}

TEST_F(I3cModel, WithoutTheSupplyTheLegacyEepromKeepsItsBytesAndTheLegacySensorLosesThem) {
    const Frame readEeprom{0x01, 0x00, 0x08, 0x19, 0x50, legacyRead, 0, 1, 0x40, 0, 0, 0, 1, 0};
    const Frame readSensor{0x01, 0x00, 0x08, 0x19, 0x4F, legacyRead, 0, 1, 0x01, 0, 0, 0, 1, 0};
    const Bytes slower{0x01, 0x00, 0x02, 0x19, 0, 0, 1, 0};
    status(slower);
    status({0x01, 0x00, 0x08, 0x19, 0x50, legacyWrite, 0, 1, 0x40, 0, 0, 0, 1, 0, 0xAA});
    status({0x01, 0x00, 0x08, 0x19, 0x4F, legacyWrite, 0, 1, 0x01, 0, 0, 0, 1, 0, 0x1F});
    EXPECT_EQ(response(readSensor).at(10), 0x1F);

    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x04, 0x00, 0x00}), 0x0000U);
    startBus();
    status(slower);
    EXPECT_EQ(response(readSensor).at(10), 0x00);
    EXPECT_EQ(response(readEeprom), (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 1, 0, 1, 0, 0xAA}));
}

TEST_F(I3cModel, ALegacyTransferIsNotForADynamicAddress) {
    EXPECT_EQ(status({0x01, 0x00, 0x08, 0x19, 0x0A, legacyRead, 0, 0, 0, 0, 0, 0, 1, 0}), 0x0006U);
    EXPECT_EQ(status({0x01, 0x00, 0x08, 0x19, 0x30, legacyWrite, 0, 0, 0, 0, 0, 0, 0, 0}), 0x0006U);
}

TEST_F(I3cModel, ATargetWithoutDynamicAddressIsAnI2cDeviceWhereNoBroadcastAddressIsSent) {
    initBus({record(0x54, 0x30, noPid)});
    EXPECT_EQ(status({0x01, 0x00, 0x08, 0x19, 0x48, legacyRead, 0, 1, 0, 0, 0, 0, 2, 0}), 0x0006U);
    EXPECT_EQ(response({0x01, 0x00, 0x08, 0x19, 0x48, legacyRead | skipBroadcast, 0, 1, 0x00, 0, 0,
                        0, 2, 0}),
              (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 2, 0, 2, 0, 0x19, 0x80}));
    EXPECT_EQ(
        status({0x01, 0x00, 0x08, 0x19, 0x54, legacyRead | skipBroadcast, 0, 0, 0, 0, 0, 0, 1, 0}),
        0x0006U);
}

TEST_F(I3cModel, AHeldBusReadsOnWithARepeatedStart) {
    EXPECT_EQ(
        status({0x01, 0x00, 0x08, 0x19, 0x50, legacyWrite | noStop, 0, 1, 0x00, 0, 0, 0, 0, 0}),
        0x0000U);
    EXPECT_EQ(response({0x01, 0x00, 0x08, 0x19, 0x50, legacyRead, 0, 0, 0, 0, 0, 0, 2, 0}),
              (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 2, 0, 2, 0, 'H', 'e'}));
}

// --- A legacy write without its STOP ------------------------------------------------------------

class I3cOpenLegacyWrite : public I3cModel {
protected:
    /// Writes 0xAA to byte 0x40 of the legacy EEPROM and leaves the STOP out.
    void leaveWriteOpen() {
        EXPECT_EQ(status({0x01, 0x00, 0x08, 0x19, 0x50, legacyWrite | noStop, 0, 1, 0x40, 0, 0, 0,
                          1, 0, 0xAA}),
                  0x0000U);
    }

    Frame readByte() {
        return response({0x01, 0x00, 0x08, 0x19, 0x50, legacyRead, 0, 1, 0x40, 0, 0, 0, 1, 0});
    }

    /// Checks that the EEPROM is ready and holds what it held before.
    void expectGivenUp() {
        EXPECT_EQ(readByte(), (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 1, 0, 1, 0, 0xFF}));
    }
};

TEST_F(I3cOpenLegacyWrite, TheRepeatedStartOfItsOwnNextTransferGivesItUp) {
    leaveWriteOpen();
    expectGivenUp();
}

TEST_F(I3cOpenLegacyWrite, AnSdrTransferGivesItUp) {
    leaveWriteOpen();
    EXPECT_EQ(sdrWrite(0x0A, {0x08, 0x77}), 0x0000U);
    expectGivenUp();
}

TEST_F(I3cOpenLegacyWrite, AnHdrDdrTransferGivesItUp) {
    leaveWriteOpen();
    EXPECT_EQ(status({0x01, 0x00, 0x08, 0x19, 0x09, 0x03, 0x80, 0, 0, 0, 0, 0, 2, 0}), 0x0000U);
    expectGivenUp();
}

TEST_F(I3cOpenLegacyWrite, ATransferThatNobodyAcknowledgesGivesItUp) {
    leaveWriteOpen();
    EXPECT_EQ(sdrWrite(0x30, {}), 0x0006U);
    expectGivenUp();
}

TEST_F(I3cOpenLegacyWrite, ACommonCommandCodeGivesItUp) {
    leaveWriteOpen();
    EXPECT_EQ(cccData({0x0A, 0x01, 0x01, 0x8E, 0x00}), (Bytes{1, 0x26}));
    expectGivenUp();
}

TEST_F(I3cOpenLegacyWrite, ATransferTooFastForTheLegacySensorGivesItUp) {
    leaveWriteOpen();
    EXPECT_EQ(status({0x01, 0x00, 0x08, 0x19, 0x4F, legacyRead, 0, 1, 0x00, 0, 0, 0, 2, 0}),
              0x0006U);
    expectGivenUp();
}

TEST_F(I3cOpenLegacyWrite, ATransferToATargetWithoutADynamicAddressGivesItUp) {
    ccc({0x7E, 0x00, 0x00, 0x06, 0x00}); // RSTDAA
    leaveWriteOpen();
    EXPECT_EQ(status({0x01, 0x00, 0x08, 0x19, 0x48, legacyRead | skipBroadcast, 0, 1, 0x00, 0, 0, 0,
                      2, 0}),
              0x0000U);
    expectGivenUp();
}

TEST_F(I3cOpenLegacyWrite, LosesItsBytesWithTheSupply) {
    leaveWriteOpen();
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x04, 0x00, 0x00}), 0x0000U);
    startBus();
    expectGivenUp();
}

TEST_F(I3cOpenLegacyWrite, TheStopOfABusPatternStoresIt) {
    leaveWriteOpen();
    EXPECT_EQ(status({0x01, 0x00, 0x0A, 0x19, 0x01}), 0x0000U);
    for (int attempt = 0; attempt < 3; ++attempt) {
        EXPECT_EQ(readByte(), (Frame{0x01, 0x00, 0x08, 0x19, 0x06, 0x00, 1, 0, 0, 0}));
    }
    EXPECT_EQ(readByte(), (Frame{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 1, 0, 1, 0, 0xAA}));
}

} // namespace
