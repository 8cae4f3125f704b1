// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/model/i3c/I3cModel.hpp"

using virtual_adapter::Bytes;
using virtual_adapter::Frame;
using virtual_adapter::I3cModel;
using virtual_adapter::modulePid;

namespace {

// Common Command Codes that the tests send, from the target address on.
const Bytes enableSensorInterrupts{0x0A, 0x00, 0x01, 0x80, 0x00, 0x01};
const Bytes disableSensorInterrupts{0x0A, 0x00, 0x01, 0x81, 0x00, 0x01};
const Bytes enableAllInterrupts{0x7E, 0x10, 0x01, 0x00, 0x01};
const Bytes disableAllInterrupts{0x7E, 0x10, 0x01, 0x01, 0x01};
const Bytes enableHotJoin{0x7E, 0x10, 0x01, 0x00, 0x08};
const Bytes disableHotJoin{0x7E, 0x10, 0x01, 0x01, 0x08};

/// The response to a request of @p code that succeeded without data.
Frame success(uint8_t code) {
    return {0x01, 0x00, code, 0x19, 0x00, 0x00};
}

/// The interrupt of the sensor at 0x0A with the mandatory data byte 0x42.
const Frame sensorInterrupt{0x00, 0x00, 0x81, 0x19, 0x00, 0x00, 0x0A, 0x03, 0x42, 0x19, 0x80};

const Frame moduleJoined{0x00, 0x00, 0x82, 0x19, 0x00, 0x00, 0xFF, 0xFE,
                         0x00, 0x40, 0x10, 0x00, 0x01, 0x41, 0x0B};

class I3cEvents : public I3cModel {
protected:
    /// Writes the sensor's alert register.
    std::vector<Frame> alert(uint8_t value = 0x42, uint8_t address = 0x0A) {
        return frames(sdrWriteRequest(address, {0x02, value}));
    }
    /// Writes the companion's supply register.
    std::vector<Frame> supplyModule(uint8_t value) {
        return frames(sdrWriteRequest(0x08, {0x00, value}));
    }
    std::vector<Frame> cccFrames(const Bytes& payload) {
        return frames(virtual_adapter::joined({{0x01, 0x00, 0x09, 0x19}, payload}));
    }
};

// --- In-band interrupts -------------------------------------------------------------------------

TEST_F(I3cEvents, AnEnabledInterruptFollowsTheWriteThatProvokesIt) {
    ccc(enableSensorInterrupts);
    EXPECT_EQ(alert(), (std::vector<Frame>{success(0x08), sensorInterrupt}));
    EXPECT_EQ(alert(0x43), (std::vector<Frame>{success(0x08),
                                               {0x00, 0x00, 0x81, 0x19, 0x00, 0x00, 0x0A, 0x03,
                                                0x43, 0x19, 0x80}}));
}

TEST_F(I3cEvents, ATargetWithoutPayloadInterruptsWithAnEmptyOne) {
    ccc(enableAllInterrupts);
    EXPECT_EQ(
        frames(sdrWriteRequest(0x08, {0x01, 0x01})),
        (std::vector<Frame>{success(0x08), {0x00, 0x00, 0x81, 0x19, 0x00, 0x00, 0x08, 0x00}}));
}

TEST_F(I3cEvents, AnInterruptWaitsUntilItIsEnabled) {
    EXPECT_EQ(alert(), (std::vector<Frame>{success(0x08)}));
    EXPECT_EQ(cccFrames(enableSensorInterrupts),
              (std::vector<Frame>{{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x0A, 0x80, 0x00, 0x00},
                                  sensorInterrupt}));
}

TEST_F(I3cEvents, ADisabledInterruptIsNotRaised) {
    ccc(enableAllInterrupts);
    ccc(disableSensorInterrupts);
    EXPECT_EQ(alert(), (std::vector<Frame>{success(0x08)}));
    ccc(enableSensorInterrupts);
    ccc(disableAllInterrupts);
    EXPECT_EQ(alert(), (std::vector<Frame>{success(0x08)}));
}

TEST_F(I3cEvents, OnlyTheLastOfSeveralPendingInterruptsIsRaised) {
    alert(0x41);
    alert(0x42);
    EXPECT_EQ(cccFrames(enableSensorInterrupts).size(), 2U);
    EXPECT_EQ(cccFrames(enableSensorInterrupts).size(), 1U);
}

TEST_F(I3cEvents, InterruptsAreRaisedInTheOrderOfTheirAddresses) {
    alert();
    sdrWrite(0x08, {0x01, 0x01});
    EXPECT_EQ(cccFrames(enableAllInterrupts),
              (std::vector<Frame>{{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x7E, 0x00, 0x01, 0x00},
                                  {0x00, 0x00, 0x81, 0x19, 0x00, 0x00, 0x08, 0x00},
                                  sensorInterrupt}));
}

TEST_F(I3cEvents, ARejectedInterruptWaitsUntilTheControllerAcceptsIt) {
    ccc(enableSensorInterrupts);
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x0A, 0x01}), 0x0000U);
    EXPECT_EQ(alert(), (std::vector<Frame>{success(0x08)}));
    EXPECT_EQ(frames({0x01, 0x00, 0x07, 0x19, 0x0A, 0x00}),
              (std::vector<Frame>{success(0x07), sensorInterrupt}));
}

TEST_F(I3cEvents, ARecordOfTheHostCanRejectInterrupts) {
    initBus({record(0x48, 0x0A, virtual_adapter::noPid, 1)});
    ccc(enableSensorInterrupts);
    EXPECT_EQ(alert(), (std::vector<Frame>{success(0x08)}));
}

TEST_F(I3cEvents, ThePayloadIsCutToItsMaximumSize) {
    ccc(enableSensorInterrupts);
    EXPECT_EQ(ccc({0x0A, 0x00, 0x03, 0x8A, 0x00, 0x00, 0x40, 0x01}), 0x0000U);
    EXPECT_EQ(alert(), (std::vector<Frame>{
                           success(0x08), {0x00, 0x00, 0x81, 0x19, 0x00, 0x00, 0x0A, 0x01, 0x42}}));
    // A maximum of zero sets no limit.
    EXPECT_EQ(ccc({0x0A, 0x00, 0x03, 0x8A, 0x00, 0x00, 0x40, 0x00}), 0x0000U);
    EXPECT_EQ(alert(), (std::vector<Frame>{success(0x08), sensorInterrupt}));
}

TEST_F(I3cEvents, InitialisingTheBusDisablesEveryEvent) {
    ccc(enableAllInterrupts);
    ccc(enableHotJoin);
    initBus({});
    EXPECT_EQ(alert(), (std::vector<Frame>{success(0x08)}));
    EXPECT_EQ(supplyModule(1), (std::vector<Frame>{success(0x08)}));
}

TEST_F(I3cEvents, ATargetWithoutADynamicAddressDoesNotInterrupt) {
    ccc(enableAllInterrupts);
    ccc({0x7E, 0x00, 0x00, 0x06, 0x00}); // RSTDAA
    // As an I2C device, at its static address.
    EXPECT_EQ(frames({0x01, 0x00, 0x08, 0x19, 0x48, 0x0C, 0, 1, 0x02, 0, 0, 0, 1, 0, 0x42}),
              (std::vector<Frame>{success(0x08)}));
    EXPECT_EQ(cccFrames({0x48, 0x00, 0x01, 0x87, 0x00, 0x0A * 2}),
              (std::vector<Frame>{{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x48, 0x87, 0x00, 0x00},
                                  sensorInterrupt}));
}

TEST_F(I3cEvents, TheEnabledEventsOfTheCompanionCanBeRead) {
    EXPECT_EQ(ccc({0x08, 0x00, 0x01, 0x80, 0x00, 0x03}), 0x0000U);
    EXPECT_EQ(sdrRead(0x08, 0x02, 1).at(10), 0x03);
    EXPECT_EQ(ccc({0x08, 0x00, 0x01, 0x81, 0x00, 0x01}), 0x0000U);
    EXPECT_EQ(sdrRead(0x08, 0x02, 1).at(10), 0x02);
    EXPECT_EQ(sdrWrite(0x08, {0x02, 0x0B}), 0x0000U);
    EXPECT_EQ(sdrRead(0x08, 0x02, 1).at(10), 0x02);
}

TEST_F(I3cEvents, AfterATargetResetEveryEventIsEnabled) {
    EXPECT_EQ(status({0x01, 0x00, 0x0A, 0x19, 0x00}), 0x0000U);
    EXPECT_EQ(ccc({0x7E, 0x00, 0x00, 0x07, 0x00}), 0x0000U); // ENTDAA
    EXPECT_EQ(sdrRead(0x08, 0x02, 1).at(10), 0x0B);
    EXPECT_EQ(alert(), (std::vector<Frame>{success(0x08), sensorInterrupt}));
}

// --- A held bus ---------------------------------------------------------------------------------

class I3cHeldBus : public I3cEvents {
protected:
    I3cHeldBus() {
        ccc(enableAllInterrupts);
        // The alert, without a STOP.
        EXPECT_EQ(frames({0x01, 0x00, 0x08, 0x19, 0x0A, 0x10, 0, 1, 0x02, 0, 0, 0, 1, 0, 0x42}),
                  (std::vector<Frame>{success(0x08)}));
    }
};

TEST_F(I3cHeldBus, InterruptsWaitForTheStop) {
    EXPECT_EQ(status({0x01, 0x00, 0x08, 0x19, 0x0A, 0x11, 0, 1, 0x00, 0, 0, 0, 1, 0}), 0x0000U);
    EXPECT_EQ(frames({0x01, 0x00, 0x08, 0x19, 0x0A, 0x01, 0, 1, 0x00, 0, 0, 0, 1, 0}),
              (std::vector<Frame>{{0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 1, 0, 1, 0, 0x19},
                                  sensorInterrupt}));
}

TEST_F(I3cHeldBus, ChangingAConfigurationDoesNotFreeIt) {
    EXPECT_EQ(frames({0x01, 0x00, 0x07, 0x19, 0x0A, 0x00}), (std::vector<Frame>{success(0x07)}));
}

TEST_F(I3cHeldBus, AFailedTransferFreesIt) {
    EXPECT_EQ(frames({0x01, 0x00, 0x08, 0x19, 0x30, 0x10, 0, 0, 0, 0, 0, 0, 0, 0}),
              (std::vector<Frame>{{0x01, 0x00, 0x08, 0x19, 0x06, 0x00}, sensorInterrupt}));
}

TEST_F(I3cHeldBus, ARefusedRequestDoesNotTouchIt) {
    EXPECT_EQ(frames({0x01, 0x00, 0x08, 0x19, 0x30, 0x16, 0, 0, 0, 0, 0, 0, 0, 0}),
              (std::vector<Frame>{{0x01, 0x00, 0x08, 0x19, 0x03, 0x00}}));
    EXPECT_EQ(cccFrames({0x0A, 0x00, 0x01, 0x88, 0x00, 0x63}),
              (std::vector<Frame>{{0x01, 0x00, 0x09, 0x19, 0x03, 0x00}}));
    EXPECT_EQ(cccFrames({0x0A, 0x00, 0x01, 0x88, 0x00, 0x3E * 2}),
              (std::vector<Frame>{{0x01, 0x00, 0x09, 0x19, 0x30, 0x00}}));
}

TEST_F(I3cHeldBus, ACommonCommandCodeFreesIt) {
    EXPECT_EQ(
        cccFrames({0x0A, 0x01, 0x01, 0x8F, 0x00}),
        (std::vector<Frame>{{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x0A, 0x8F, 0x00, 0x01, 0x63},
                            sensorInterrupt}));
}

TEST_F(I3cHeldBus, TheHdrExitPatternFreesIt) {
    EXPECT_EQ(frames({0x01, 0x00, 0x0A, 0x19, 0x01}),
              (std::vector<Frame>{success(0x0A), sensorInterrupt}));
}

// --- Hot-join -----------------------------------------------------------------------------------

TEST_F(I3cEvents, AModuleJoinsWhenItsSocketIsSupplied) {
    ccc(enableHotJoin);
    EXPECT_EQ(supplyModule(0x01), (std::vector<Frame>{success(0x08), moduleJoined}));
    EXPECT_EQ(cccData({0x0B, 0x01, 0x06, 0x8D, 0x00}),
              (Bytes{6, 0xFF, 0xFE, 0x00, 0x40, 0x10, 0x00}));
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A, 0x00, 0x0B}));
}

TEST_F(I3cEvents, AModuleWaitsUntilHotJoinIsEnabled) {
    EXPECT_EQ(supplyModule(0x01), (std::vector<Frame>{success(0x08)}));
    EXPECT_EQ(cccFrames(enableHotJoin),
              (std::vector<Frame>{{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x7E, 0x00, 0x08, 0x00},
                                  moduleJoined}));
}

TEST_F(I3cEvents, AModuleDoesNotJoinAfterHotJoinWasDisabled) {
    ccc(enableHotJoin);
    ccc(disableHotJoin);
    EXPECT_EQ(supplyModule(0x01), (std::vector<Frame>{success(0x08)}));
}

TEST_F(I3cEvents, EnablingOtherEventsDoesNotEnableHotJoin) {
    ccc(enableAllInterrupts);
    EXPECT_EQ(supplyModule(0x01), (std::vector<Frame>{success(0x08)}));
}

TEST_F(I3cEvents, AModuleJoinsAtTheAddressOfItsRecord) {
    initBus({record(0x00, 0x20, modulePid)});
    ccc(enableHotJoin);
    EXPECT_EQ(supplyModule(0x01),
              (std::vector<Frame>{success(0x08),
                                  {0x00, 0x00, 0x82, 0x19, 0x00, 0x00, 0xFF, 0xFE, 0x00, 0x40, 0x10,
                                   0x00, 0x01, 0x41, 0x20}}));
}

TEST_F(I3cEvents, AModuleLeavesWithItsSupplyAndJoinsAgain) {
    ccc(enableHotJoin);
    supplyModule(0x01);
    EXPECT_EQ(supplyModule(0x01), (std::vector<Frame>{success(0x08)}));
    EXPECT_EQ(supplyModule(0x00), (std::vector<Frame>{success(0x08)}));
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A}));
    EXPECT_EQ(ccc({0x0B, 0x01, 0x06, 0x8D, 0x00}), 0x0006U);
    EXPECT_EQ(supplyModule(0x01), (std::vector<Frame>{success(0x08), moduleJoined}));
}

TEST_F(I3cEvents, AModuleWithAnAddressDoesNotJoinASecondTime) {
    supplyModule(0x01);
    ccc({0x7E, 0x00, 0x00, 0x07, 0x00}); // ENTDAA
    EXPECT_EQ(cccFrames(enableHotJoin).size(), 1U);
    ccc({0x7E, 0x00, 0x00, 0x06, 0x00}); // RSTDAA
    EXPECT_EQ(cccFrames(enableHotJoin).size(), 1U);
}

TEST_F(I3cEvents, AHotJoinGivesEveryOtherTargetAnAddressToo) {
    initBus({record(0x00, 0x08, virtual_adapter::companionPid)});
    ccc(enableHotJoin);
    ccc({0x7E, 0x00, 0x00, 0x06, 0x00}); // RSTDAA
    ccc({0x7E, 0x00, 0x00, 0x07, 0x00}); // ENTDAA
    ccc({0x08, 0x10, 0x00, 0x9A, 0x00}); // RSTACT, all but the companion reset
    EXPECT_EQ(status({0x01, 0x00, 0x0A, 0x19, 0x00}), 0x0000U);
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x08}));
    EXPECT_EQ(supplyModule(0x01), (std::vector<Frame>{success(0x08), moduleJoined}));
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A, 0x00, 0x0B}));
}

TEST_F(I3cEvents, AModuleWithoutAFreeAddressDoesNotJoin) {
    initBusWithoutFreeAddresses();
    ccc(enableHotJoin);
    EXPECT_EQ(supplyModule(0x01), (std::vector<Frame>{success(0x08)}));
}

TEST_F(I3cEvents, AHotJoinComesBeforeTheInterrupts) {
    alert();
    supplyModule(0x01);
    EXPECT_EQ(cccFrames({0x7E, 0x10, 0x01, 0x00, 0x09}),
              (std::vector<Frame>{{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x7E, 0x00, 0x09, 0x00},
                                  moduleJoined,
                                  sensorInterrupt}));
}

} // namespace
