// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/model/i3c/I3cModel.hpp"

using virtual_adapter::Bytes;
using virtual_adapter::Frame;
using virtual_adapter::I3cModel;

namespace {

const Bytes assignAddresses{0x7E, 0x00, 0x00, 0x07, 0x00};

class I3cTargetReset : public I3cModel {
protected:
    I3cTargetReset() {
        sdrWrite(0x0A, {0x08, 0x77});
        ccc({0x0A, 0x00, 0x02, 0x89, 0x00, 0x00, 0x20}); // SETMWL
    }

    void pattern() { EXPECT_EQ(status({0x01, 0x00, 0x0A, 0x19, 0x00}), 0x0000U); }

    /// A scratch register of the sensor, found again at 0x0A.
    uint8_t scratch() { return sdrRead(0x0A, 0x08, 1).at(10); }
};

TEST_F(I3cTargetReset, WithoutAPreparedActionThePatternResetsTheI3cPeripherals) {
    pattern();
    EXPECT_EQ(addresses(), (Bytes{}));
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x77);
    EXPECT_EQ(cccData({0x0A, 0x01, 0x02, 0x8B, 0x00}), (Bytes{2, 0x00, 0x40}));
}

TEST_F(I3cTargetReset, ASecondUnpreparedPatternResetsTheWholeTarget) {
    pattern();
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x00);
}

TEST_F(I3cTargetReset, GetStatusKeepsASecondPatternFromResettingTheWholeTarget) {
    pattern();
    ccc(assignAddresses);
    ccc({0x0A, 0x01, 0x02, 0x90, 0x00});
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x77);
}

TEST_F(I3cTargetReset, AfterAResetOfTheWholeTargetTheNextUnpreparedPatternIsAFirstOneAgain) {
    pattern();
    pattern();
    ccc(assignAddresses);
    sdrWrite(0x0A, {0x08, 0x66});
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x66);
}

TEST_F(I3cTargetReset,
       AFormatOfGetStatusThatIsNotAcknowledgedLetsTheSecondPatternResetTheWholeTarget) {
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(ccc({0x0A, 0x11, 0x02, 0x90, 0x91}), 0x0006U);
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x00);
}

TEST_F(I3cTargetReset, GetStatusOfAnotherTargetLetsTheSecondPatternResetTheWholeTarget) {
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(ccc({0x08, 0x01, 0x02, 0x90, 0x00}), 0x0000U);
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x00);
}

TEST_F(I3cTargetReset, ReadingTheActionKeepsASecondPatternFromResettingTheWholeTarget) {
    for (const uint8_t definingByte : Bytes{0x00, 0x01, 0x02, 0x81, 0x82}) {
        pattern();
        ccc(assignAddresses);
        EXPECT_EQ(ccc({0x0A, 0x11, 0x01, 0x9A, definingByte}), 0x0000U);
        pattern();
        ccc(assignAddresses);
        EXPECT_EQ(scratch(), 0x77);
        ccc({0x0A, 0x11, 0x01, 0x9A, 0x00});
    }
}

TEST_F(I3cTargetReset, AnActionReadThatIsNotAcknowledgedLetsTheSecondPatternResetTheWholeTarget) {
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(ccc({0x0A, 0x11, 0x01, 0x9A, 0x83}), 0x0006U);
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x00);
}

TEST_F(I3cTargetReset, PreparingAnActionByABroadcastEndsTheEscalation) {
    pattern();
    ccc(assignAddresses);
    ccc({0x7E, 0x10, 0x01, 0x2A, 0x00});
    EXPECT_EQ(sdrWrite(0x0A, {0x08}), 0x0000U); // its START takes the action away
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x77);
}

TEST_F(I3cTargetReset, TheNextFrameTakesThePreparedActionAway) {
    for (const Bytes& frame : {
             Bytes{0x01, 0x00, 0x08, 0x19, 0x08, 0x01, 0, 0, 0, 0, 0, 0, 1, 0},
             Bytes{0x01, 0x00, 0x08, 0x19, 0x30, 0x01, 0, 0, 0, 0, 0, 0, 1, 0},
             Bytes{0x01, 0x00, 0x08, 0x19, 0x50, 0x05, 0, 0, 0, 0, 0, 0, 1, 0},
             Bytes{0x01, 0x00, 0x09, 0x19, 0x08, 0x01, 0x01, 0x8F, 0x00},
         }) {
        EXPECT_EQ(ccc({0x0A, 0x10, 0x00, 0x9A, 0x02}), 0x0000U);
        frames(frame);
        pattern();
        ccc(assignAddresses);
        EXPECT_EQ(scratch(), 0x77);
        EXPECT_EQ(ccc({0x0A, 0x01, 0x02, 0x90, 0x00}), 0x0000U); // ends the escalation
    }
}

TEST_F(I3cTargetReset, AnInterruptTakesThePreparedActionAway) {
    ccc({0x08, 0x00, 0x01, 0x80, 0x00, 0x01}); // ENEC
    ccc({0x7E, 0x10, 0x01, 0x2A, 0x00});
    EXPECT_EQ(status({0x01, 0x00, 0x07, 0x19, 0x08, 0x01}), 0x0000U); // rejected for now
    sdrWrite(0x08, {0x01, 0x01});
    ccc({0x7E, 0x10, 0x01, 0x2A, 0x00});
    EXPECT_EQ(frames({0x01, 0x00, 0x07, 0x19, 0x08, 0x00}).size(), 2U);
    pattern();
    EXPECT_EQ(addresses(), (Bytes{}));
}

TEST_F(I3cTargetReset, TheHdrExitPatternLeavesThePreparedAction) {
    ccc({0x7E, 0x10, 0x01, 0x2A, 0x00});
    EXPECT_EQ(status({0x01, 0x00, 0x0A, 0x19, 0x01}), 0x0000U);
    pattern();
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x08, 0x54, 0x09, 0x48, 0x0A}));
}

TEST_F(I3cTargetReset, TheActionInForceIsRead) {
    for (const uint8_t definingByte : Bytes{0x00, 0x01, 0x02}) {
        EXPECT_EQ(
            response({0x01, 0x00, 0x09, 0x19, 0x0A, 0x11, 0x01, 0x9A, definingByte}),
            (Frame{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x0A, 0x9A, definingByte, 0x01, 0x01}));
    }
}

TEST_F(I3cTargetReset, TheActionOfOneTargetLeavesTheOthersTheirs) {
    EXPECT_EQ(response({0x01, 0x00, 0x09, 0x19, 0x0A, 0x10, 0x00, 0x9A, 0x00}),
              (Frame{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x0A, 0x9A, 0x00, 0x00}));
    pattern();
    EXPECT_EQ(addresses(), (Bytes{0x48, 0x0A}));
    EXPECT_EQ(scratch(), 0x77);
    EXPECT_EQ(cccData({0x0A, 0x01, 0x02, 0x8B, 0x00}), (Bytes{2, 0x00, 0x20}));
}

TEST_F(I3cTargetReset, ThePeripheralResetKeepsTheRegisters) {
    EXPECT_EQ(ccc({0x0A, 0x10, 0x00, 0x9A, 0x01}), 0x0000U);
    pattern();
    EXPECT_EQ(addresses(), (Bytes{}));
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x77);
}

TEST_F(I3cTargetReset, TheWholeTargetResetClearsTheRegisters) {
    EXPECT_EQ(ccc({0x0A, 0x10, 0x00, 0x9A, 0x02}), 0x0000U);
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x00);
}

TEST_F(I3cTargetReset, ABroadcastPreparesEveryTarget) {
    EXPECT_EQ(response({0x01, 0x00, 0x09, 0x19, 0x7E, 0x10, 0x01, 0x2A, 0x02}),
              (Frame{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x7E, 0x2A, 0x02, 0x00}));
    pattern();
    EXPECT_EQ(addresses(), (Bytes{}));
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x00);
}

TEST_F(I3cTargetReset, AnActionIsCarriedOutOnce) {
    ccc({0x7E, 0x10, 0x01, 0x2A, 0x00});
    pattern();
    pattern();
    EXPECT_EQ(addresses(), (Bytes{}));
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x77);
}

TEST_F(I3cTargetReset, TheLastActionCounts) {
    ccc({0x7E, 0x10, 0x01, 0x2A, 0x02});
    ccc({0x7E, 0x10, 0x01, 0x2A, 0x00});
    pattern();
    EXPECT_EQ(scratch(), 0x77);
}

TEST_F(I3cTargetReset, TheWholeResetOfTheCompanionTakesTheModulesSupplyAway) {
    sdrWrite(0x08, {0x00, 0x01});
    ccc(assignAddresses);
    EXPECT_EQ(ccc({0x0B, 0x01, 0x01, 0x8F, 0x00}), 0x0000U);
    ccc({0x08, 0x10, 0x00, 0x9A, 0x02});
    pattern();
    EXPECT_EQ(ccc({0x0B, 0x01, 0x01, 0x8F, 0x00}), 0x0006U);
}

TEST_F(I3cTargetReset, ATargetOfVersion1_0IgnoresThePattern) {
    sdrWrite(0x08, {0x00, 0x01});
    ccc(assignAddresses);
    pattern();
    EXPECT_EQ(addresses(), (Bytes{0x00, 0x0B}));
}

TEST_F(I3cTargetReset, TheTimeOfAResetIsReadInMilliseconds) {
    EXPECT_EQ(response({0x01, 0x00, 0x09, 0x19, 0x0A, 0x11, 0x01, 0x9A, 0x81}),
              (Frame{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x0A, 0x9A, 0x81, 0x01, 0x01}));
    EXPECT_EQ(response({0x01, 0x00, 0x09, 0x19, 0x0A, 0x11, 0x01, 0x9A, 0x82}),
              (Frame{0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x0A, 0x9A, 0x82, 0x01, 0x0A}));
}

TEST_F(I3cTargetReset, ReadingPreparesNoAction) {
    for (const uint8_t definingByte : Bytes{0x00, 0x02, 0x82}) {
        ccc({0x0A, 0x11, 0x01, 0x9A, definingByte});
        pattern();
        EXPECT_EQ(addresses(), (Bytes{}));
        ccc(assignAddresses);
        EXPECT_EQ(scratch(), 0x77);
    }
}

TEST_F(I3cTargetReset, AnActionThatATargetDoesNotKnowIsNotAcknowledged) {
    for (const uint8_t definingByte : Bytes{0x03, 0x04, 0x05, 0x81, 0xFF}) {
        EXPECT_EQ(ccc({0x0A, 0x10, 0x00, 0x9A, definingByte}), 0x0006U);
    }
    for (const uint8_t definingByte : Bytes{0x03, 0x80, 0x83, 0x84}) {
        EXPECT_EQ(ccc({0x0A, 0x11, 0x01, 0x9A, definingByte}), 0x0006U);
    }
}

TEST_F(I3cTargetReset, ABroadcastActionThatNoTargetKnowsPreparesNothing) {
    EXPECT_EQ(ccc({0x7E, 0x10, 0x01, 0x2A, 0x03}), 0x0000U);
    pattern();
    EXPECT_EQ(addresses(), (Bytes{}));
    pattern();
    ccc(assignAddresses);
    EXPECT_EQ(scratch(), 0x00);
}

} // namespace
