#include "virtual-adapter/I3cFixture.hpp"

using virtual_adapter::Bytes;
using virtual_adapter::companionPid;
using virtual_adapter::Frame;
using virtual_adapter::I3cFixture;
using virtual_adapter::I3cModel;
using virtual_adapter::joined;
using virtual_adapter::memoryPid;
using virtual_adapter::modulePid;
using virtual_adapter::noPid;
using virtual_adapter::sensorPid;

namespace {

constexpr uint8_t legacy = 2;

/// A supplied bus with its controller on, whose targets have not been found.
class I3cBusSetUp : public testing::Test {
protected:
    I3cBusSetUp() { adapter.startController(); }

    I3cFixture adapter;
};

// --- Supply and controller ----------------------------------------------------------------------

TEST(I3cSupply, EveryOtherCommandIsRefusedWithoutIt) {
    I3cFixture adapter;
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
        EXPECT_EQ(adapter.response(request), (Frame{0x01, 0x00, request[2], 0x19, 0x04, 0x00}));
    }
    EXPECT_EQ(adapter.deviceTable(), (Frame{0x01, 0x00, 0x06, 0x19, 0x04, 0x00, 0x00}));
}

TEST(I3cSupply, TheLowestAndTheHighestVoltageAreAccepted) {
    I3cFixture adapter;
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x04, 0x04, 0xE8, 0x03}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x00, 0x00}));
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x00, 0x00}));
}

TEST(I3cSupply, AVoltageOutsideTheRangeIsRefused) {
    I3cFixture adapter;
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x04, 0x04, 0xE7, 0x03}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x03, 0x00}));
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x04, 0x04, 0xE5, 0x0C}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x03, 0x00}));
}

TEST(I3cSupply, ARequestOfAnotherLengthIsMalformed) {
    I3cFixture adapter;
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x04, 0x04, 0xE4}), 0x0002U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C, 0x01}), 0x0002U);
}

TEST_F(I3cModel, TakingTheSupplyAwayTakesTheStateOfControllerAndTargets) {
    adapter.sdrWrite(0x0A, {0x08, 0x77});
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x04, 0x04, 0x00, 0x00}),
              (Frame{0x01, 0x00, 0x04, 0x04, 0x00, 0x00}));
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x06, 0x19}), 0x0004U);

    adapter.supply();
    EXPECT_EQ(adapter.initBus({}), 0x0005U);
    adapter.startBus();
    EXPECT_EQ(adapter.sdrRead(0x0A, 0x08, 1),
              (Frame{0x01, 0x00, 0x08, 0x19, 0, 0, 1, 0, 1, 0, 0x00}));
}

TEST_F(I3cModel, ChangingTheVoltageKeepsTheBusRunning) {
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x04, 0x04, 0x08, 0x07}), 0x0000U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A}));
}

TEST(I3cControllerModel, EverySettingIsAcceptedUpToItsLastEnumerator) {
    I3cFixture adapter;
    adapter.supply();
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x01, 0x19, 6, 3, 2, 3}),
              (Frame{0x01, 0x00, 0x01, 0x19, 0x00, 0x00}));
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x02, 0x19, 6, 3, 2, 3}),
              (Frame{0x01, 0x00, 0x02, 0x19, 0x00, 0x00}));
    for (const Bytes& settings :
         {Bytes{7, 0, 0, 0}, Bytes{0, 4, 0, 0}, Bytes{0, 0, 3, 0}, Bytes{0, 0, 0, 4}}) {
        EXPECT_EQ(adapter.status(joined({{0x01, 0x00, 0x01, 0x19}, settings})), 0x0003U);
        EXPECT_EQ(adapter.status(joined({{0x01, 0x00, 0x02, 0x19}, settings})), 0x0003U);
    }
}

TEST(I3cControllerModel, ARequestOfAnotherLengthIsMalformed) {
    I3cFixture adapter;
    adapter.supply();
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x01, 0x19, 0, 0, 0}), 0x0002U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0, 0}), 0x0002U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x02, 0x19, 0, 0, 0}), 0x0002U);
}

TEST(I3cControllerModel, ParametersAndBusWaitForItsInitialisation) {
    I3cFixture adapter;
    adapter.supply();
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x02, 0x19, 0, 0, 0, 0}), 0x0005U);
    EXPECT_EQ(adapter.initBus({}), 0x0005U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x05, 0x19}), 0x0005U);
}

TEST_F(I3cBusSetUp, TransfersWaitForTheInitialisationOfTheBus) {
    for (const Frame& request : {
             Frame{0x01, 0x00, 0x07, 0x19, 0x08, 0x00},
             Frame{0x01, 0x00, 0x08, 0x19, 0x08, 0x01, 0, 0, 0, 0, 0, 0, 1, 0},
             Frame{0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x00, 0x07, 0x00},
             Frame{0x01, 0x00, 0x0A, 0x19, 0x01},
         }) {
        EXPECT_EQ(adapter.response(request), (Frame{0x01, 0x00, request[2], 0x19, 0x05, 0x00}));
    }
    EXPECT_EQ(adapter.deviceTable(), (Frame{0x01, 0x00, 0x06, 0x19, 0x05, 0x00, 0x00}));
}

TEST(I3cControllerModel, LayoutAndValuesAreCheckedBeforeTheStateOfTheBus) {
    I3cFixture adapter;
    adapter.supply();
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x04, 0x19, 0x01}), 0x0002U);
    EXPECT_EQ(adapter.initBus({adapter.record(0x48, 0x3E, noPid)}), 0x0030U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x07, 0x19, 0x08, 0x03}), 0x0003U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x08, 0x19, 0x7E, 0x01, 0, 0, 0, 0, 0, 0, 1, 0}),
              0x0003U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x09, 0x19, 0x7E, 0x00}), 0x0002U);
    EXPECT_EQ(adapter.ccc({0x7E, 0x10, 0x01, 0x00, 0x04}), 0x0003U);
    EXPECT_EQ(adapter.ccc({0x48, 0x00, 0x01, 0x87, 0x00, 0x61}), 0x0003U);
    EXPECT_EQ(adapter.ccc({0x48, 0x00, 0x01, 0x87, 0x00, 0x3E * 2}), 0x0030U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x0A, 0x19, 0x02}), 0x0003U);
}

TEST_F(I3cModel, InitialisingTheControllerAgainForgetsTheBus) {
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0}), 0x0000U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x06, 0x19}), 0x0005U);
}

// --- Address assignment -------------------------------------------------------------------------

TEST_F(I3cBusSetUp, AnEmptyListFindsEveryTargetInTheOrderOfArbitration) {
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x04, 0x19, 0x00}),
              (Frame{0x01, 0x00, 0x04, 0x19, 0x00, 0x00}));
    EXPECT_EQ(
        adapter.response({0x01, 0x00, 0x06, 0x19}),
        (Frame{0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0x03,
               // The companion: PID, BCR, DCR, MWL 64, MRL 64, no payload, AcceptIbi.
               0x00, 0x08, 0xFF, 0xFE, 0x00, 0x10, 0x10, 0x00, 0x62, 0xC6, 64, 0, 64, 0, 0, 0,
               // The memory.
               0x54, 0x09, 0xFF, 0xFE, 0x00, 0x20, 0x10, 0x00, 0x20, 0x00, 0, 4, 0, 4, 0, 0,
               // The temperature sensor.
               0x48, 0x0A, 0xFF, 0xFE, 0x00, 0x30, 0x10, 0x00, 0x26, 0x63, 64, 0, 64, 0, 8, 0}));
}

TEST_F(I3cBusSetUp, ARecordWithAStaticAddressAssignsToThatTargetAlone) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x48, 0x30, noPid)}), 0x0000U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x48, 0x30}));
    EXPECT_EQ(adapter.sdrWrite(0x30, {}), 0x0000U);
}

TEST_F(I3cBusSetUp, ARecordWithAStaticAddressOnlyGetsTheLowestFreeDynamicAddress) {
    EXPECT_EQ(
        adapter.initBus({adapter.record(0x54, 0x00, noPid), adapter.record(0x48, 0x08, noPid)}),
        0x0000U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x54, 0x09, 0x48, 0x08}));
}

TEST_F(I3cBusSetUp, ARecordWithoutAStaticAddressIsMatchedByItsPid) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x00, 0x08, memoryPid)}), 0x0000U);
    // The companion wins the arbitration; 0x08 is kept for the memory.
    EXPECT_EQ(adapter.addresses(), (Bytes{0x00, 0x09, 0x54, 0x08, 0x48, 0x0A}));
}

TEST_F(I3cBusSetUp, ARecordWithNeitherAddressGetsTheLowestFreeOne) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x00, 0x00, companionPid)}), 0x0000U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A}));
}

TEST_F(I3cBusSetUp, StaticAddressesAreServedBeforeTheArbitration) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x00, 0x20, companionPid),
                               adapter.record(0x50, 0x00, noPid, legacy),
                               adapter.record(0x48, 0x48, sensorPid)}),
              0x0000U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x50, 0x00, 0x48, 0x48, 0x00, 0x20, 0x54, 0x08}));
}

TEST_F(I3cBusSetUp, ALegacyDeviceIsListedWithItsStaticAddressAlone) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x50, 0x33, sensorPid, legacy)}), 0x0000U);
    EXPECT_EQ(adapter.deviceTable(),
              (Frame{0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0x01, 0x50, 0, 0, 0,   0,
                     0,    0,    0,    0,    0,    0,    0,    0,    0, 0, 0x02}));
}

TEST_F(I3cBusSetUp, AnAbsentStaticAddressIsReportedAndTheOthersAreAssigned) {
    EXPECT_EQ(
        adapter.initBus({adapter.record(0x49, 0x31, noPid), adapter.record(0x48, 0x30, noPid)}),
        0x0006U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x48, 0x30}));
    EXPECT_EQ(adapter.sdrWrite(0x30, {}), 0x0000U);
}

TEST_F(I3cBusSetUp, TheAddressOfAnAbsentPidIsKeptForIt) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x00, 0x08, modulePid)}), 0x0000U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x00, 0x09, 0x54, 0x0A, 0x48, 0x0B}));
    // SETNEWDA to the kept address.
    EXPECT_EQ(adapter.ccc({0x09, 0x00, 0x01, 0x88, 0x00, 0x10}), 0x0031U);
}

TEST_F(I3cBusSetUp, RecordsThatKeepEveryAddressLeaveATargetWithoutOne) {
    adapter.initBusWithoutFreeAddresses();
    adapter.sdrWrite(0x08, {0x00, 0x01}); // supplies the module
    EXPECT_EQ(adapter.ccc({0x7E, 0x00, 0x00, 0x07, 0x00}), 0x0000U);
    // The memory and the sensor have their static addresses left, the module has none.
    EXPECT_EQ(adapter.addresses(), (Bytes{0x00, 0x08, 0x54, 0x54, 0x48, 0x48}));
}

TEST_F(I3cBusSetUp, TheLimitsOfARecordAreSetInTheTarget) {
    Bytes sensor = adapter.record(0x48, 0x30, noPid);
    sensor[10] = 32; // MWL
    sensor[12] = 24; // MRL
    sensor[14] = 2;  // the payload of an interrupt
    EXPECT_EQ(adapter.initBus({sensor}), 0x0000U);
    EXPECT_EQ(adapter.cccData({0x30, 0x01, 0x02, 0x8B, 0x00}), (Bytes{2, 0x00, 32}));
    EXPECT_EQ(adapter.cccData({0x30, 0x01, 0x03, 0x8C, 0x00}), (Bytes{3, 0x00, 24, 2}));
}

TEST_F(I3cBusSetUp, TheDeviceTableGivenBackRestoresTheBus) {
    adapter.initBus({adapter.record(0x00, 0x20, companionPid),
                     adapter.record(0x50, 0, noPid, legacy), adapter.record(0x48, 0x30, noPid, 1),
                     adapter.record(0x54, 0x31, noPid)});
    const Frame table = adapter.deviceTable();
    EXPECT_EQ(
        adapter.status(joined({{0x01, 0x00, 0x04, 0x19}, Bytes(table.begin() + 6, table.end())})),
        0x0000U);
    EXPECT_EQ(adapter.deviceTable(), table);
}

TEST_F(I3cModel, InitialisingTheBusAgainAssignsAnew) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x48, 0x30, noPid)}), 0x0000U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x48, 0x30}));
    EXPECT_EQ(adapter.sdrWrite(0x0A, {}), 0x0006U);
}

// --- Refused lists ------------------------------------------------------------------------------

TEST_F(I3cBusSetUp, ARecordThatNamesNoDeviceIsRefused) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x00, 0x30, noPid)}), 0x0003U);
    EXPECT_EQ(adapter.initBus({adapter.record(0x00, 0x30, sensorPid, legacy)}), 0x0003U);
}

TEST_F(I3cBusSetUp, AnUnknownConfigurationIsRefused) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x48, 0x30, noPid, 3)}), 0x0003U);
}

TEST_F(I3cBusSetUp, AnAddressThatI3cReservesIsRefused) {
    Bytes refused;
    for (uint8_t address = 1; address < 0x80; ++address) {
        if (adapter.initBus({adapter.record(0x00, address, modulePid)}) == 0x0030) {
            refused.push_back(address);
        }
    }
    EXPECT_EQ(refused, (Bytes{0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x3E, 0x5E, 0x6E, 0x76,
                              0x78, 0x79, 0x7A, 0x7B, 0x7C, 0x7D, 0x7E, 0x7F}));
    EXPECT_EQ(adapter.initBus({adapter.record(0x7E, 0x30, noPid)}), 0x0030U);
    EXPECT_EQ(adapter.initBus({adapter.record(0x00, 0x88, modulePid)}), 0x0030U);
    EXPECT_EQ(adapter.initBus({adapter.record(0x03, 0x00, noPid, legacy)}), 0x0030U);
}

TEST_F(I3cBusSetUp, TwoRecordsOfOneAddressAreRefused) {
    EXPECT_EQ(
        adapter.initBus({adapter.record(0x48, 0x30, noPid), adapter.record(0x54, 0x30, noPid)}),
        0x0031U);
    EXPECT_EQ(
        adapter.initBus({adapter.record(0x48, 0x30, noPid), adapter.record(0x48, 0x31, noPid)}),
        0x0031U);
    EXPECT_EQ(adapter.initBus({adapter.record(0x00, 0x20, modulePid),
                               adapter.record(0x20, 0x00, noPid, legacy)}),
              0x0031U);
    EXPECT_EQ(
        adapter.initBus({adapter.record(0x48, 0x54, noPid), adapter.record(0x54, 0x30, noPid)}),
        0x0031U);
}

TEST_F(I3cBusSetUp, TwoRecordsOfOnePidAreRefused) {
    EXPECT_EQ(
        adapter.initBus({adapter.record(0, 0x30, modulePid), adapter.record(0, 0x31, modulePid)}),
        0x0003U);
}

TEST_F(I3cBusSetUp, TheAddressOfAnUnlistedDeviceIsRefused) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x48, 0x50, noPid)}), 0x0031U);
    EXPECT_EQ(adapter.initBus({adapter.record(0x48, 0x54, noPid)}), 0x0031U);
}

TEST_F(I3cModel, ARefusedListLeavesTheBusAsItWas) {
    EXPECT_EQ(adapter.initBus({adapter.record(0x48, 0x3E, noPid)}), 0x0030U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A}));
}

TEST_F(I3cBusSetUp, AListOfAnotherLengthThanItsCountIsMalformed) {
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x04, 0x19}), 0x0002U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x04, 0x19, 0x01}), 0x0002U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x04, 0x19, 0x00, 0x00}), 0x0002U);
}

// --- Device table, configuration and reset ------------------------------------------------------

TEST_F(I3cModel, ATableRequestWithAPayloadIsMalformed) {
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x06, 0x19, 0x00}),
              (Frame{0x01, 0x00, 0x06, 0x19, 0x02, 0x00, 0x00}));
}

TEST_F(I3cModel, TheConfigurationOfATargetCanBeChanged) {
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x07, 0x19, 0x0A, 0x01}),
              (Frame{0x01, 0x00, 0x07, 0x19, 0x00, 0x00}));
    EXPECT_EQ(adapter.deviceTable().at(7 + 2 * 16 + 15), 0x01);
}

TEST_F(I3cModel, AConfigurationThatDoesNotFitTheDeviceIsRefused) {
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x07, 0x19, 0x0A, 0x02}), 0x0003U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x07, 0x19, 0x0A, 0x03}), 0x0003U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x07, 0x19, 0x0B, 0x00}), 0x0003U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x07, 0x19, 0x00, 0x00}), 0x0003U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x07, 0x19, 0x0A}), 0x0002U);

    adapter.initBus({adapter.record(0x50, 0x00, noPid, legacy)});
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x07, 0x19, 0x50, 0x00}), 0x0003U);
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x07, 0x19, 0x50, 0x02}), 0x0000U);
}

TEST_F(I3cModel, ResettingTheBusTakesEveryAddressAway) {
    EXPECT_EQ(adapter.response({0x01, 0x00, 0x05, 0x19}),
              (Frame{0x01, 0x00, 0x05, 0x19, 0x00, 0x00}));
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x06, 0x19}), 0x0005U);
    EXPECT_EQ(adapter.sdrWrite(0x0A, {}), 0x0005U);
    EXPECT_EQ(adapter.initBus({adapter.record(0x48, 0x30, noPid)}), 0x0000U);
    EXPECT_EQ(adapter.addresses(), (Bytes{0x48, 0x30}));
}

TEST_F(I3cModel, AResetWithAPayloadIsMalformed) {
    EXPECT_EQ(adapter.status({0x01, 0x00, 0x05, 0x19, 0x00}), 0x0002U);
}

} // namespace
