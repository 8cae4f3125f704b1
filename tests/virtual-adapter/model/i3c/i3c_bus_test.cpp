// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/model/i3c/I3cModel.hpp"

using virtual_adapter::Bytes;
using virtual_adapter::companionPid;
using virtual_adapter::Frame;
using virtual_adapter::I3cModel;
using virtual_adapter::joined;
using virtual_adapter::memoryPid;
using virtual_adapter::modulePid;
using virtual_adapter::noPid;
using virtual_adapter::sensorPid;

namespace {

using I3cControllerModel = virtual_adapter::I3cFixture;

using I3cSupply = virtual_adapter::I3cFixture;

constexpr uint8_t legacy = 2;

/// A supplied bus with its controller on, whose targets have not been found.
class I3cBusSetUp : public virtual_adapter::I3cFixture {
protected:
    I3cBusSetUp() { startController(); }
};

// --- Supply and controller ----------------------------------------------------------------------

TEST_F(I3cSupply, EveryOtherCommandIsRefusedWithoutIt) {
    for (const Frame& request : {
             Frame{0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0},
             Frame{0x01, 0x00, 0x02, 0x19, 0, 0, 0, 0},
             Frame{0x01, 0x00, 0x04, 0x19, 0},
             Frame{0x01, 0x00, 0x05, 0x19},
             Frame{0x01, 0x00, 0x07, 0x19, 0x08, 0x00},
             Frame{0x01, 0x00, 0x08, 0x19, 0x08, 0x01, 0, 0, 0, 0, 0, 0, 1, 0},
             Frame{0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x00, 0x07, 0x00},
             Frame{0x01, 0x00, 0x0A, 0x19, 0x01},
         }) {
        EXPECT_EQ(response(request), (Frame{0x01, 0x00, request[2], 0x19, 0x04, 0x00}));
    }
    EXPECT_EQ(deviceTable(), (Frame{0x01, 0x00, 0x06, 0x19, 0x04, 0x00, 0x00}));
}

TEST_F(I3cSupply, TheLowestAndTheHighestVoltageAreAccepted) {
    EXPECT_EQ(response({0x01, 0x00, 0x04, 0x04, 0xE8, 0x03}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x00, 0x00}));
    EXPECT_EQ(response({0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x00, 0x00}));
}

TEST_F(I3cSupply, AVoltageOutsideTheRangeIsRefused) {
    EXPECT_EQ(response({0x01, 0x00, 0x04, 0x04, 0xE7, 0x03}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x03, 0x00}));
    EXPECT_EQ(response({0x01, 0x00, 0x04, 0x04, 0xE5, 0x0C}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x03, 0x00}));
}

TEST_F(I3cSupply, ARequestOfAnotherLengthIsMalformed) {
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x04, 0xE4}), 0x0002U);
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C, 0x01}), 0x0002U);
}

TEST_F(I3cModel, TakingTheSupplyAwayTakesTheStateOfControllerAndTargets) {
    sdrWrite(0x0A, {0x08, 0x77});
    EXPECT_EQ(response({0x01, 0x00, 0x04, 0x04, 0x00, 0x00}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x00, 0x00}));
    EXPECT_EQ(status({0x01, 0x00, 0x06, 0x19}), 0x0004U);

    supply();
    EXPECT_EQ(initBus({}), 0x0005U);
    startBus();
    EXPECT_EQ(sdrRead(0x0A, 0x08, 1), (Frame{0x01, 0x00, 0x08, 0x19, 0, 0, 1, 0, 1, 0, 0x00}));
}

TEST_F(I3cModel, ChangingTheVoltageKeepsTheBusRunning) {
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x04, 0x08, 0x07}), 0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A}));
}

TEST_F(I3cControllerModel, EverySettingIsAcceptedUpToItsLastEnumerator) {
    supply();
    EXPECT_EQ(response({0x01, 0x00, 0x01, 0x19, 6, 3, 2, 3}),
              (Frame{0x01, 0x00, 0x01, 0x19, 0x00, 0x00}));
    EXPECT_EQ(response({0x01, 0x00, 0x02, 0x19, 6, 3, 2, 3}),
              (Frame{0x01, 0x00, 0x02, 0x19, 0x00, 0x00}));
    for (const Bytes& settings :
         {Bytes{7, 0, 0, 0}, Bytes{0, 4, 0, 0}, Bytes{0, 0, 3, 0}, Bytes{0, 0, 0, 4}}) {
        EXPECT_EQ(status(joined({{0x01, 0x00, 0x01, 0x19}, settings})), 0x0003U);
        EXPECT_EQ(status(joined({{0x01, 0x00, 0x02, 0x19}, settings})), 0x0003U);
    }
}

TEST_F(I3cControllerModel, ARequestOfAnotherLengthIsMalformed) {
    supply();
    EXPECT_EQ(status({0x01, 0x00, 0x01, 0x19, 0, 0, 0}), 0x0002U);
    EXPECT_EQ(status({0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0, 0}), 0x0002U);
    EXPECT_EQ(status({0x01, 0x00, 0x02, 0x19, 0, 0, 0}), 0x0002U);
}

TEST_F(I3cControllerModel, ParametersAndBusWaitForItsInitialisation) {
    supply();
    EXPECT_EQ(status({0x01, 0x00, 0x02, 0x19, 0, 0, 0, 0}), 0x0005U);
    EXPECT_EQ(initBus({}), 0x0005U);
    EXPECT_EQ(status({0x01, 0x00, 0x05, 0x19}), 0x0005U);
}

TEST_F(I3cBusSetUp, TransfersWaitForTheInitialisationOfTheBus) {
    for (const Frame& request : {
             Frame{0x01, 0x00, 0x07, 0x19, 0x08, 0x00},
             Frame{0x01, 0x00, 0x08, 0x19, 0x08, 0x01, 0, 0, 0, 0, 0, 0, 1, 0},
             Frame{0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x00, 0x07, 0x00},
             Frame{0x01, 0x00, 0x0A, 0x19, 0x01},
         }) {
        EXPECT_EQ(response(request), (Frame{0x01, 0x00, request[2], 0x19, 0x05, 0x00}));
    }
    EXPECT_EQ(deviceTable(), (Frame{0x01, 0x00, 0x06, 0x19, 0x05, 0x00, 0x00}));
}

TEST_F(I3cControllerModel, LayoutAndValuesAreCheckedBeforeTheStateOfTheBus) {
    supply();
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x19, 0x01}), 0x0002U);
    EXPECT_EQ(initBus({record(0x48, 0x3E, noPid)}), 0x0030U);
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x08, 0x03}), 0x0003U);
    EXPECT_EQ(status({0x01, 0x00, 0x08, 0x19, 0x7E, 0x01, 0, 0, 0, 0, 0, 0, 1, 0}), 0x0003U);
    EXPECT_EQ(status({0x01, 0x00, 0x09, 0x19, 0x7E, 0x00}), 0x0002U);
    EXPECT_EQ(ccc({0x7E, 0x10, 0x01, 0x00, 0x04}), 0x0003U);
    EXPECT_EQ(ccc({0x48, 0x00, 0x01, 0x87, 0x00, 0x61}), 0x0003U);
    EXPECT_EQ(ccc({0x48, 0x00, 0x01, 0x87, 0x00, 0x3E * 2}), 0x0030U);
    EXPECT_EQ(status({0x01, 0x00, 0x0A, 0x19, 0x02}), 0x0003U);
}

TEST_F(I3cModel, InitialisingTheControllerAgainForgetsTheBus) {
    EXPECT_EQ(status({0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0}), 0x0000U);
    EXPECT_EQ(status({0x01, 0x00, 0x06, 0x19}), 0x0005U);
}

// --- Address assignment -------------------------------------------------------------------------

TEST_F(I3cBusSetUp, AnEmptyListFindsEveryTargetInTheOrderOfArbitration) {
    EXPECT_EQ(response({0x01, 0x00, 0x04, 0x19, 0x00}),
              (Frame{0x01, 0x00, 0x04, 0x19, 0x00, 0x00}));
    EXPECT_EQ(
        response({0x01, 0x00, 0x06, 0x19}),
        (Frame{0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0x03,
               // The companion: PID, BCR, DCR, MWL 64, MRL 64, no payload, AcceptIbi.
               0x00, 0x08, 0xFF, 0xFE, 0x00, 0x10, 0x10, 0x00, 0x62, 0xC6, 64, 0, 64, 0, 0, 0,
               // The memory.
               0x54, 0x09, 0xFF, 0xFE, 0x00, 0x20, 0x10, 0x00, 0x20, 0x00, 0, 4, 0, 4, 0, 0,
               // The temperature sensor.
               0x48, 0x0A, 0xFF, 0xFE, 0x00, 0x30, 0x10, 0x00, 0x26, 0x63, 64, 0, 64, 0, 8, 0}));
}

TEST_F(I3cBusSetUp, ARecordWithAStaticAddressAssignsToThatTargetAlone) {
    EXPECT_EQ(initBus({record(0x48, 0x30, noPid)}), 0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x48, 0x30}));
    EXPECT_EQ(sdrWrite(0x30, {}), 0x0000U);
}

TEST_F(I3cBusSetUp, ARecordWithAStaticAddressOnlyGetsTheLowestFreeDynamicAddress) {
    EXPECT_EQ(initBus({record(0x54, 0x00, noPid), record(0x48, 0x08, noPid)}), 0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x54, 0x09, 0x48, 0x08}));
}

TEST_F(I3cBusSetUp, ARecordWithoutAStaticAddressIsMatchedByItsPid) {
    EXPECT_EQ(initBus({record(0x00, 0x08, memoryPid)}), 0x0000U);
    // The companion wins the arbitration; 0x08 is kept for the memory.
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x09, 0x54, 0x08, 0x48, 0x0A}));
}

TEST_F(I3cBusSetUp, ARecordWithNeitherAddressGetsTheLowestFreeOne) {
    EXPECT_EQ(initBus({record(0x00, 0x00, companionPid)}), 0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A}));
}

TEST_F(I3cBusSetUp, StaticAddressesAreServedBeforeTheArbitration) {
    EXPECT_EQ(initBus({record(0x00, 0x20, companionPid), record(0x50, 0x00, noPid, legacy),
                       record(0x48, 0x48, sensorPid)}),
              0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x50, 0x00, 0x48, 0x48, 0x00, 0x20, 0x54, 0x08}));
}

TEST_F(I3cBusSetUp, ALegacyDeviceIsListedWithItsStaticAddressAlone) {
    EXPECT_EQ(initBus({record(0x50, 0x33, sensorPid, legacy)}), 0x0000U);
    EXPECT_EQ(deviceTable(), (Frame{0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0x01, 0x50, 0, 0, 0,   0,
                                    0,    0,    0,    0,    0,    0,    0,    0,    0, 0, 0x02}));
}

TEST_F(I3cBusSetUp, AnAbsentStaticAddressIsReportedAndTheOthersAreAssigned) {
    EXPECT_EQ(initBus({record(0x49, 0x31, noPid), record(0x48, 0x30, noPid)}), 0x0006U);
    EXPECT_EQ(addresses(), (Bytes{0x48, 0x30}));
    EXPECT_EQ(sdrWrite(0x30, {}), 0x0000U);
}

TEST_F(I3cBusSetUp, TheAddressOfAnAbsentPidIsKeptForIt) {
    EXPECT_EQ(initBus({record(0x00, 0x08, modulePid)}), 0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x09, 0x54, 0x0A, 0x48, 0x0B}));
    // SETNEWDA to the kept address.
    EXPECT_EQ(ccc({0x09, 0x00, 0x01, 0x88, 0x00, 0x10}), 0x0031U);
}

TEST_F(I3cBusSetUp, RecordsThatKeepEveryAddressLeaveATargetWithoutOne) {
    initBusWithoutFreeAddresses();
    sdrWrite(0x08, {0x00, 0x01}); // supplies the module
    EXPECT_EQ(ccc({0x7E, 0x00, 0x00, 0x07, 0x00}), 0x0000U);
    // The memory and the sensor have their static addresses left, the module has none.
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x08, 0x54, 0x54, 0x48, 0x48}));
}

TEST_F(I3cBusSetUp, TheLimitsOfARecordAreSetInTheTarget) {
    Bytes sensor = record(0x48, 0x30, noPid);
    sensor[10] = 32; // MWL
    sensor[12] = 24; // MRL
    sensor[14] = 2;  // the payload of an interrupt
    EXPECT_EQ(initBus({sensor}), 0x0000U);
    EXPECT_EQ(cccData({0x30, 0x01, 0x02, 0x8B, 0x00}), (Bytes{2, 0x00, 32}));
    EXPECT_EQ(cccData({0x30, 0x01, 0x03, 0x8C, 0x00}), (Bytes{3, 0x00, 24, 2}));
}

TEST_F(I3cBusSetUp, TheDeviceTableGivenBackRestoresTheBus) {
    initBus({record(0x00, 0x20, companionPid), record(0x50, 0, noPid, legacy),
             record(0x48, 0x30, noPid, 1), record(0x54, 0x31, noPid)});
    const Frame table = deviceTable();
    EXPECT_EQ(status(joined({{0x01, 0x00, 0x04, 0x19}, Bytes(table.begin() + 6, table.end())})),
              0x0000U);
    EXPECT_EQ(deviceTable(), table);
}

TEST_F(I3cModel, InitialisingTheBusAgainAssignsAnew) {
    EXPECT_EQ(initBus({record(0x48, 0x30, noPid)}), 0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x48, 0x30}));
    EXPECT_EQ(sdrWrite(0x0A, {}), 0x0006U);
}

// --- Refused lists ------------------------------------------------------------------------------

TEST_F(I3cBusSetUp, ARecordThatNamesNoDeviceIsRefused) {
    EXPECT_EQ(initBus({record(0x00, 0x30, noPid)}), 0x0003U);
    EXPECT_EQ(initBus({record(0x00, 0x30, sensorPid, legacy)}), 0x0003U);
}

TEST_F(I3cBusSetUp, AnUnknownConfigurationIsRefused) {
    EXPECT_EQ(initBus({record(0x48, 0x30, noPid, 3)}), 0x0003U);
}

TEST_F(I3cBusSetUp, AnAddressThatI3cReservesIsRefused) {
    Bytes refused;
    for (uint8_t address = 1; address < 0x80; ++address) {
        if (initBus({record(0x00, address, modulePid)}) == 0x0030) {
            refused.push_back(address);
        }
    }
    EXPECT_EQ(refused, (Bytes{0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x3E, 0x5E, 0x6E, 0x76,
                              0x78, 0x79, 0x7A, 0x7B, 0x7C, 0x7D, 0x7E, 0x7F}));
    EXPECT_EQ(initBus({record(0x7E, 0x30, noPid)}), 0x0030U);
    EXPECT_EQ(initBus({record(0x00, 0x88, modulePid)}), 0x0030U);
    EXPECT_EQ(initBus({record(0x03, 0x00, noPid, legacy)}), 0x0030U);
}

TEST_F(I3cBusSetUp, TwoRecordsOfOneAddressAreRefused) {
    EXPECT_EQ(initBus({record(0x48, 0x30, noPid), record(0x54, 0x30, noPid)}), 0x0031U);
    EXPECT_EQ(initBus({record(0x48, 0x30, noPid), record(0x48, 0x31, noPid)}), 0x0031U);
    EXPECT_EQ(initBus({record(0x00, 0x20, modulePid), record(0x20, 0x00, noPid, legacy)}), 0x0031U);
    EXPECT_EQ(initBus({record(0x48, 0x54, noPid), record(0x54, 0x30, noPid)}), 0x0031U);
}

TEST_F(I3cBusSetUp, TwoRecordsOfOnePidAreRefused) {
    EXPECT_EQ(initBus({record(0, 0x30, modulePid), record(0, 0x31, modulePid)}), 0x0003U);
}

TEST_F(I3cBusSetUp, TheAddressOfAnUnlistedDeviceIsRefused) {
    EXPECT_EQ(initBus({record(0x48, 0x50, noPid)}), 0x0031U);
    EXPECT_EQ(initBus({record(0x48, 0x54, noPid)}), 0x0031U);
}

TEST_F(I3cModel, ARefusedListLeavesTheBusAsItWas) {
    EXPECT_EQ(initBus({record(0x48, 0x3E, noPid)}), 0x0030U);
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A}));
}

TEST_F(I3cBusSetUp, AListOfAnotherLengthThanItsCountIsMalformed) {
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x19}), 0x0002U);
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x19, 0x01}), 0x0002U);
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x19, 0x00, 0x00}), 0x0002U);
}

// --- Device table, configuration and reset ------------------------------------------------------

TEST_F(I3cModel, ATableRequestWithAPayloadIsMalformed) {
    EXPECT_EQ(response({0x01, 0x00, 0x06, 0x19, 0x00}),
              (Frame{0x01, 0x00, 0x06, 0x19, 0x02, 0x00, 0x00}));
}

TEST_F(I3cModel, TheConfigurationOfATargetCanBeChanged) {
    EXPECT_EQ(response({0x01, 0x00, 0x07, 0x19, 0x0A, 0x01}),
              (Frame{0x01, 0x00, 0x07, 0x19, 0x00, 0x00}));
    EXPECT_EQ(deviceTable().at(7 + 2 * 16 + 15), 0x01);
}

TEST_F(I3cModel, AConfigurationThatDoesNotFitTheDeviceIsRefused) {
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x0A, 0x02}), 0x0003U);
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x0A, 0x03}), 0x0003U);
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x0B, 0x00}), 0x0003U);
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x00, 0x00}), 0x0003U);
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x0A}), 0x0002U);

    initBus({record(0x50, 0x00, noPid, legacy)});
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x50, 0x00}), 0x0003U);
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x50, 0x02}), 0x0000U);
}

TEST_F(I3cModel, ResettingTheBusTakesEveryAddressAway) {
    EXPECT_EQ(response({0x01, 0x00, 0x05, 0x19}), (Frame{0x01, 0x00, 0x05, 0x19, 0x00, 0x00}));
    EXPECT_EQ(status({0x01, 0x00, 0x06, 0x19}), 0x0005U);
    EXPECT_EQ(sdrWrite(0x0A, {}), 0x0005U);
    EXPECT_EQ(initBus({record(0x48, 0x30, noPid)}), 0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x48, 0x30}));
}

TEST_F(I3cModel, AResetWithAPayloadIsMalformed) {
    EXPECT_EQ(status({0x01, 0x00, 0x05, 0x19, 0x00}), 0x0002U);
}

} // namespace
