// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/I3cTargets.hpp"
#include "support/SdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::recordBytes;
using test_support::sensor;
using test_support::sensors;

using I3cBusTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(I3cBusTest);

TEST_P(I3cBusTest, SettingTheVoltageReturnsTheStatus) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C});
    EXPECT_EQ(sdk().i3cSetBusVoltage(3300), 0);
    onCommand(0x1234, {0x1B, 0x00, 0x02, 0x00, 0x04, 0x04, 0xFF, 0xFF});
    EXPECT_EQ(sdk().i3cSetBusVoltage(0xFFFF), 0x1234);
}

TEST_P(I3cBusTest, InitialisingTheControllerSendsTheFourEnumerations) {
    onCommand(0x1234, {0x23, 0x00, 0x01, 0x00, 0x01, 0x19, 0x06, 0x03, 0x02, 0x01});
    EXPECT_EQ(sdk().i3cControllerInit(I3cPushPullRate_1_MHz, I3cOpenDrainTransferRate_0_4_MHz,
                                      I2cTransferRate_0_1_MHz, I3cDriveStrength_4_mA),
              0x1234);
}

TEST_P(I3cBusTest, SettingParametersSendsTheFourEnumerations) {
    onCommand(0x1234, {0x23, 0x00, 0x01, 0x00, 0x02, 0x19, 0x06, 0x03, 0x02, 0x01});
    EXPECT_EQ(sdk().i3cSetParameters(I3cPushPullRate_1_MHz, I3cOpenDrainTransferRate_0_4_MHz,
                                     I2cTransferRate_0_1_MHz, I3cDriveStrength_4_mA),
              0x1234);
}

TEST_P(I3cBusTest, OnlyTheLowByteOfAnEnumerationIsSent) {
    const auto pushPull = static_cast<I3cPushPullRate>(0xFFFFFF11);
    const auto openDrain = static_cast<I3cOpenDrainTransferRate>(0x12345622);
    const auto i2c = static_cast<I2cTransferRate>(0x00000133);
    const auto strength = static_cast<I3cDriveStrength>(0x80000044);
    onCommand(0, {0x23, 0x00, 0x01, 0x00, 0x01, 0x19, 0x11, 0x22, 0x33, 0x44});
    EXPECT_EQ(sdk().i3cControllerInit(pushPull, openDrain, i2c, strength), 0);
    onCommand(0, {0x23, 0x00, 0x02, 0x00, 0x02, 0x19, 0x11, 0x22, 0x33, 0x44});
    EXPECT_EQ(sdk().i3cSetParameters(pushPull, openDrain, i2c, strength), 0);
}

TEST_P(I3cBusTest, ResettingTheBusReturnsTheStatus) {
    onCommand(0x1234, {0x13, 0x00, 0x01, 0x00, 0x05, 0x19});
    EXPECT_EQ(sdk().i3cResetBus(), 0x1234);
}

TEST_P(I3cBusTest, AnEmptyListOfTargetsIsSent) {
    onCommand(0, {0x17, 0x00, 0x01, 0x00, 0x04, 0x19, 0x00});
    EXPECT_EQ(sdk().i3cInitBus({}), 0);
}

TEST_P(I3cBusTest, TheLast16BytesOfAListOfOneTargetAreItsRecord) {
    Bytes packet{0x57, 0x00, 0x01, 0x00, 0x04, 0x19, 0x01};
    const Bytes memory = recordBytes({sensor});
    packet.insert(packet.end(), memory.begin(), memory.end());
    onWire(packet, {0x1B, 0x00, 0x01, 0x00, 0x04, 0x19, 0x34, 0x12});
    EXPECT_EQ(sdk().i3cInitBus({sensor}), 0x1234);
}

TEST_P(I3cBusTest, AListOf255TargetsIsSentWhole) {
    const std::vector<I3cTargetInfo> targets = sensors(255);
    Bytes request{0x01, 0x00, 0x04, 0x19, 0xFF};
    const Bytes memory = recordBytes(targets);
    request.insert(request.end(), memory.begin(), memory.end());
    onWireLong(request, {0x01, 0x00, 0x04, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cInitBus(targets), 0);
}

TEST_P(I3cBusTest, AListOf256TargetsIsSentAsAnEmptyOne) {
    onCommand(0, {0x17, 0x00, 0x01, 0x00, 0x04, 0x19, 0x00});
    EXPECT_EQ(sdk().i3cInitBus(sensors(256)), 0);
}

TEST_P(I3cBusTest, TheDeviceTableHoldsTheRecordsOfTheResponse) {
    onWireLong({0x01, 0x00, 0x06, 0x19},
               {0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0x02,                   //
                0x48, 0x0A, 0x02, 0x46, 0x13, 0x57, 0x9B, 0xDF, 0x27, 0x63, //
                0x00, 0x01, 0x80, 0x02, 0x10, 0x01,                         //
                0x00, 0x0B, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0x06, 0xC6, //
                0x34, 0x12, 0x78, 0x56, 0xFF, 0x01});
    std::vector<I3cTargetInfo> table;
    EXPECT_EQ(sdk().i3cGetDeviceTable(table), 0);
    ASSERT_EQ(table.size(), 2U);
    EXPECT_EQ(recordBytes({table[0]}), recordBytes({sensor}));
    EXPECT_EQ(table[1].staticAddress, 0x00);
    EXPECT_EQ(table[1].dynamicAddress, 0x0B);
    EXPECT_EQ(Bytes(table[1].pid, table[1].pid + 6), (Bytes{0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6}));
    EXPECT_EQ(table[1].bcr, 0x06);
    EXPECT_EQ(table[1].dcr, 0xC6);
    EXPECT_EQ(table[1].maxWriteLength, 0x1234);
    EXPECT_EQ(table[1].maxReadLength, 0x5678);
    EXPECT_EQ(table[1].maxIbiPayloadSize, 0xFF);
    EXPECT_EQ(table[1].configuration, 0x01);
}

TEST_P(I3cBusTest, ADeviceTableOf255RecordsArrivesWhole) {
    const std::vector<I3cTargetInfo> targets = sensors(255);
    Bytes response{0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0xFF};
    const Bytes memory = recordBytes(targets);
    response.insert(response.end(), memory.begin(), memory.end());
    onWireLong({0x01, 0x00, 0x06, 0x19}, response);
    std::vector<I3cTargetInfo> table;
    EXPECT_EQ(sdk().i3cGetDeviceTable(table), 0);
    EXPECT_EQ(recordBytes(table), memory);
}

TEST_P(I3cBusTest, ADeviceTableWithoutRecordsEmptiesTheVector) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x06, 0x19},
           {0x1F, 0x00, 0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0x00});
    std::vector<I3cTargetInfo> table(3, sensor);
    EXPECT_EQ(sdk().i3cGetDeviceTable(table), 0);
    EXPECT_TRUE(table.empty());
}

TEST_P(I3cBusTest, ADeviceTableReplacesTheVectorWhateverTheStatus) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x06, 0x19},
           {0x5F, 0x00, 0x01, 0x00, 0x06, 0x19, 0x34, 0x12, 0x01,       //
            0x48, 0x0A, 0x02, 0x46, 0x13, 0x57, 0x9B, 0xDF, 0x27, 0x63, //
            0x00, 0x01, 0x80, 0x02, 0x10, 0x01});
    std::vector<I3cTargetInfo> table(3);
    EXPECT_EQ(sdk().i3cGetDeviceTable(table), 0x1234);
    ASSERT_EQ(table.size(), 1U);
    EXPECT_EQ(recordBytes(table), recordBytes({sensor}));
}

TEST_P(I3cBusTest, ADeviceTableHasAsManyRecordsAsAnnouncedWhereverItsResponseEnds) {
    withEveryTruncation({0x01, 0x00, 0x06, 0x19},
                        {0x01, 0x00, 0x06, 0x19, 0x34, 0x12, 0x02, //
                         0x48, 0x0A, 0x02, 0x46, 0x13, 0x57, 0x9B, 0xDF,
                         0x27, 0x63, 0x00, 0x01, 0x80, 0x02, 0x10, 0x01, //
                         0x48, 0x0A, 0x02, 0x46, 0x13, 0x57, 0x9B, 0xDF,
                         0x27, 0x63, 0x00, 0x01, 0x80, 0x02, 0x10, 0x01},
                        [&](const Bytes& received) {
                            std::vector<I3cTargetInfo> table(3, sensor);
                            EXPECT_EQ(sdk().i3cGetDeviceTable(table), 0x1234);
                            Bytes expected(received.begin() + 7, received.end());
                            expected.resize(received[6] * sizeof(I3cTargetInfo));
                            EXPECT_EQ(recordBytes(table), expected);
                        });
}

TEST_P(I3cBusTest, AnOverlongCountOfRecordsReadsAsZeroBeyondTheResponse) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x06, 0x19},
           {0x27, 0x00, 0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0xFF, 0x48, 0x0A});
    std::vector<I3cTargetInfo> table(255, sensor);
    EXPECT_EQ(sdk().i3cGetDeviceTable(table), 0);
    std::vector<I3cTargetInfo> expected(255, I3cTargetInfo{});
    expected[0].staticAddress = 0x48;
    expected[0].dynamicAddress = 0x0A;
    EXPECT_EQ(recordBytes(table), recordBytes(expected));
}

TEST_P(I3cBusTest, ConfiguringATargetReturnsTheStatus) {
    onCommand(0x1234, {0x1B, 0x00, 0x01, 0x00, 0x07, 0x19, 0x0A, 0x01});
    EXPECT_EQ(sdk().i3cSetTargetDeviceConfiguration(0x0A, I3cTargetConfiguration_RejectIbi),
              0x1234);
}

TEST_P(I3cBusTest, ConfiguringATargetSendsTheAddressAndTheConfigurationUnchecked) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x07, 0x19, 0xFF, 0xFE});
    EXPECT_EQ(sdk().i3cSetTargetDeviceConfiguration(0xFF, I3cTargetConfiguration{0xFE}), 0);
}

TEST_P(I3cBusTest, NothingIsSentAndTheTableIsKeptWithoutALink) {
    VeltraSDK unconnected(test_support::patientMs);
    std::vector<I3cTargetInfo> table(3, sensor);
    EXPECT_EQ(unconnected.i3cSetBusVoltage(3300), 0x4000);
    EXPECT_EQ(unconnected.i3cControllerInit(I3cPushPullRate_1_MHz, I3cOpenDrainTransferRate_1_MHz,
                                            I2cTransferRate_1_MHz, I3cDriveStrength_2_mA),
              0x4000);
    EXPECT_EQ(unconnected.i3cSetParameters(I3cPushPullRate_1_MHz, I3cOpenDrainTransferRate_1_MHz,
                                           I2cTransferRate_1_MHz, I3cDriveStrength_2_mA),
              0x4000);
    EXPECT_EQ(unconnected.i3cResetBus(), 0x4000);
    EXPECT_EQ(unconnected.i3cInitBus(table), 0x4000);
    EXPECT_EQ(unconnected.i3cGetDeviceTable(table), 0x4000);
    EXPECT_EQ(unconnected.i3cSetTargetDeviceConfiguration(0, I3cTargetConfiguration_AcceptIbi),
              0x4000);
    EXPECT_EQ(table.size(), 3U);
    expectNothingSent();
}

TEST_P(I3cBusTest, TheTableIsKeptWhenNoResponseComes) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x06, 0x19});
    VeltraSDK impatient(0);
    EXPECT_TRUE(impatient.connect(""));
    std::vector<I3cTargetInfo> table(3, sensor);
    EXPECT_EQ(impatient.i3cGetDeviceTable(table), 0x2000);
    EXPECT_EQ(recordBytes(table), recordBytes({sensor, sensor, sensor}));
}

} // namespace
