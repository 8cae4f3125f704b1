// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/I3cTargets.hpp"
#include "support/SdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::noResponse;
using test_support::notConnected;
using test_support::recordBytes;
using test_support::refused;
using test_support::sensor;
using test_support::sensors;

using I3cBusFunctionTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(I3cBusFunctionTest);
using I3cBusFunctionWithoutWaitingTest = test_support::ImpatientSdkTest;
INSTANTIATE_IN_BOTH_MODES(I3cBusFunctionWithoutWaitingTest);

/// A response that carries the sensors.
Bytes tableOf(const std::vector<I3cTargetInfo>& records, uint16_t status) {
    Bytes response{0x01,
                   0x00,
                   0x06,
                   0x19,
                   static_cast<uint8_t>(status & 0xFFU),
                   static_cast<uint8_t>(status >> 8U),
                   static_cast<uint8_t>(records.size())};
    const Bytes memory = recordBytes(records);
    response.insert(response.end(), memory.begin(), memory.end());
    return response;
}

TEST_P(I3cBusFunctionTest, SettingTheVoltageReturnsTheStatus) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C});
    EXPECT_EQ(VeltraSDK_I3cSetBusVoltage(handle(), 3300), 0);
    onCommand(0x1234, {0x1B, 0x00, 0x02, 0x00, 0x04, 0x04, 0xFF, 0xFF});
    EXPECT_EQ(VeltraSDK_I3cSetBusVoltage(handle(), 0xFFFF), 0x1234);
}

TEST_P(I3cBusFunctionTest, AStatusAbove0x7FFFReadsAsNegative) {
    onCommand(0xFFFE, {0x13, 0x00, 0x01, 0x00, 0x05, 0x19});
    EXPECT_EQ(VeltraSDK_I3cResetBus(handle()), -2);
}

TEST_P(I3cBusFunctionTest, TheControllerIsInitialisedWithTheLowBytesOfTheFourValues) {
    onCommand(0x1234, {0x23, 0x00, 0x01, 0x00, 0x01, 0x19, 0x06, 0x03, 0x02, 0x44});
    EXPECT_EQ(VeltraSDK_I3cControllerInit(handle(), I3cPushPullRate_1_MHz,
                                          I3cOpenDrainTransferRate_0_4_MHz, I2cTransferRate_0_1_MHz,
                                          static_cast<I3cDriveStrength>(0xFFFFFF44)),
              0x1234);
}

TEST_P(I3cBusFunctionTest, TheParametersAreSetWithTheLowBytesOfTheFourValues) {
    onCommand(0x1234, {0x23, 0x00, 0x01, 0x00, 0x02, 0x19, 0x06, 0x03, 0x02, 0x44});
    EXPECT_EQ(VeltraSDK_I3cSetParameters(handle(), I3cPushPullRate_1_MHz,
                                         I3cOpenDrainTransferRate_0_4_MHz, I2cTransferRate_0_1_MHz,
                                         static_cast<I3cDriveStrength>(0xFFFFFF44)),
              0x1234);
}

TEST_P(I3cBusFunctionTest, ResettingTheBusSendsTheBareCommand) {
    onCommand(0, {0x13, 0x00, 0x01, 0x00, 0x05, 0x19});
    EXPECT_EQ(VeltraSDK_I3cResetBus(handle()), 0);
}

TEST_P(I3cBusFunctionTest, ACountOfZeroSendsAnEmptyListAndDoesNotUseThePointer) {
    onCommand(0, {0x17, 0x00, 0x01, 0x00, 0x04, 0x19, 0x00});
    EXPECT_EQ(VeltraSDK_I3cInitBus(handle(), nullptr, 0), 0);
}

TEST_P(I3cBusFunctionTest, ATargetIsSentAsItLiesInMemory) {
    onCommand(0x1234, {0x57, 0x00, 0x01, 0x00, 0x04, 0x19, 0x01, 0x48, 0x0A, 0x02, 0x46, 0x13,
                       0x57, 0x9B, 0xDF, 0x27, 0x63, 0x00, 0x01, 0x80, 0x02, 0x10, 0x01});
    EXPECT_EQ(VeltraSDK_I3cInitBus(handle(), &sensor, 1), 0x1234);
}

TEST_P(I3cBusFunctionTest, TheLargestCountSends255Records) {
    const std::vector<I3cTargetInfo> targets = sensors(255);
    Bytes request{0x01, 0x00, 0x04, 0x19, 0xFF};
    const Bytes memory = recordBytes(targets);
    request.insert(request.end(), memory.begin(), memory.end());
    onWireLong(request, {0x01, 0x00, 0x04, 0x19, 0x00, 0x00});
    EXPECT_EQ(VeltraSDK_I3cInitBus(handle(), targets.data(), 255), 0);
}

TEST_P(I3cBusFunctionTest, ADeviceTableThatFitsIsCopiedWhole) {
    onWireLong({0x01, 0x00, 0x06, 0x19}, tableOf(sensors(2), 0));
    std::vector<I3cTargetInfo> table(3);
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), table.data(), 3, &count), 0);
    EXPECT_EQ(count, 2);
    std::vector<I3cTargetInfo> expected = sensors(2);
    expected.resize(3);
    EXPECT_EQ(recordBytes(table), recordBytes(expected));
}

TEST_P(I3cBusFunctionTest, ATableOfFiveRecordsGivesTheFirstTwoToACapacityOfTwo) {
    onWireLong({0x01, 0x00, 0x06, 0x19}, tableOf(sensors(5), 0));
    std::vector<I3cTargetInfo> table(2);
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), table.data(), 2, &count), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(recordBytes(table), recordBytes(sensors(2)));
}

TEST_P(I3cBusFunctionTest, TheLargestTableFitsIntoTheLargestCapacity) {
    onWireLong({0x01, 0x00, 0x06, 0x19}, tableOf(sensors(255), 0));
    std::vector<I3cTargetInfo> table(255);
    uint8_t count = 0;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), table.data(), 255, &count), 0);
    EXPECT_EQ(count, 255);
    EXPECT_EQ(recordBytes(table), recordBytes(sensors(255)));
}

TEST_P(I3cBusFunctionTest, ACapacityOfZeroStoresACountOfZeroAndNoRecord) {
    onWireLong({0x01, 0x00, 0x06, 0x19}, tableOf(sensors(2), 0));
    I3cTargetInfo table = sensor;
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), &table, 0, &count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(recordBytes({table}), recordBytes({sensor}));
}

TEST_P(I3cBusFunctionTest, ATableWithoutRecordsStoresACountOfZero) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x06, 0x19},
           {0x1F, 0x00, 0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0x00});
    I3cTargetInfo table = sensor;
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), &table, 1, &count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(recordBytes({table}), recordBytes({sensor}));
}

TEST_P(I3cBusFunctionTest, ATableWithANonzeroStatusLeavesTheArrayAndTheCount) {
    onWireLong({0x01, 0x00, 0x06, 0x19}, tableOf(sensors(2), 0x1234));
    I3cTargetInfo table = sensor;
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), &table, 1, &count), 0x1234);
    EXPECT_EQ(count, 0xEE);
    EXPECT_EQ(recordBytes({table}), recordBytes({sensor}));
}

TEST_P(I3cBusFunctionWithoutWaitingTest, ATableWithoutAResponseLeavesTheArrayAndTheCount) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x06, 0x19});
    I3cTargetInfo table = sensor;
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), &table, 1, &count), noResponse);
    EXPECT_EQ(count, 0xEE);
    EXPECT_EQ(recordBytes({table}), recordBytes({sensor}));
}

TEST_P(I3cBusFunctionTest, ATableThatAnnouncesMoreThanItCarriesIsFilledWithZeros) {
    onWire({0x13, 0x00, 0x01, 0x00, 0x06, 0x19},
           {0x23, 0x00, 0x01, 0x00, 0x06, 0x19, 0x00, 0x00, 0x02, 0x48});
    std::vector<I3cTargetInfo> table(2, sensor);
    uint8_t count = 0;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), table.data(), 2, &count), 0);
    EXPECT_EQ(count, 2);
    std::vector<I3cTargetInfo> expected(2, I3cTargetInfo{});
    expected[0].staticAddress = 0x48;
    EXPECT_EQ(recordBytes(table), recordBytes(expected));
}

TEST_P(I3cBusFunctionTest, ADeviceTableWithoutACountPointerIsRefused) {
    I3cTargetInfo table{};
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), &table, 1, nullptr), refused);
    expectNothingSent();
}

TEST_P(I3cBusFunctionTest, ADeviceTableWithoutAnArrayIsRefusedWhateverTheCapacity) {
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), nullptr, 1, &count), refused);
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), nullptr, 0, &count), refused);
    EXPECT_EQ(count, 0xEE);
    expectNothingSent();
}

TEST_P(I3cBusFunctionTest, ConfiguringATargetSendsItsAddressAndTheConfiguration) {
    onCommand(0x1234, {0x1B, 0x00, 0x01, 0x00, 0x07, 0x19, 0x0A, 0x01});
    EXPECT_EQ(
        VeltraSDK_I3cSetTargetDeviceConfiguration(handle(), 0x0A, I3cTargetConfiguration_RejectIbi),
        0x1234);
}

TEST_P(I3cBusFunctionTest, ConfiguringATargetSendsTheAddressAndTheConfigurationUnchecked) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x07, 0x19, 0xFF, 0xFE});
    EXPECT_EQ(
        VeltraSDK_I3cSetTargetDeviceConfiguration(handle(), 0xFF, I3cTargetConfiguration{0xFE}), 0);
}

/// Calls every function with good arguments and expects none of them to send anything.
void expectNotConnected(VeltraSDK_Handle* handle) {
    EXPECT_EQ(VeltraSDK_I3cSetBusVoltage(handle, 3300), notConnected);
    EXPECT_EQ(VeltraSDK_I3cControllerInit(handle, I3cPushPullRate_1_MHz,
                                          I3cOpenDrainTransferRate_1_MHz, I2cTransferRate_1_MHz,
                                          I3cDriveStrength_2_mA),
              notConnected);
    EXPECT_EQ(VeltraSDK_I3cSetParameters(handle, I3cPushPullRate_1_MHz,
                                         I3cOpenDrainTransferRate_1_MHz, I2cTransferRate_1_MHz,
                                         I3cDriveStrength_2_mA),
              notConnected);
    EXPECT_EQ(VeltraSDK_I3cResetBus(handle), notConnected);
    EXPECT_EQ(VeltraSDK_I3cInitBus(handle, &sensor, 1), notConnected);
    I3cTargetInfo table = sensor;
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle, &table, 1, &count), notConnected);
    EXPECT_EQ(count, 0xEE);
    EXPECT_EQ(recordBytes({table}), recordBytes({sensor}));
    EXPECT_EQ(
        VeltraSDK_I3cSetTargetDeviceConfiguration(handle, 0, I3cTargetConfiguration_AcceptIbi),
        notConnected);
}

TEST_P(I3cBusFunctionTest, NothingIsSentWithoutALink) {
    VeltraSDK_Disconnect(handle());
    expectNotConnected(handle());
    expectNothingSent();
}

TEST_P(I3cBusFunctionTest, ANullHandleIsNotConnected) {
    expectNotConnected(nullptr);
    expectNothingSent();
}

TEST_P(I3cBusFunctionTest, ANullHandleWinsOverARefusedArgument) {
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(nullptr, nullptr, 0, nullptr), notConnected);
}

TEST_P(I3cBusFunctionTest, ARefusedArgumentWinsOverAMissingLink) {
    VeltraSDK_Disconnect(handle());
    EXPECT_EQ(VeltraSDK_I3cGetDeviceTable(handle(), nullptr, 0, nullptr), refused);
}

} // namespace
