// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

namespace {

using test_support::Bytes;
using test_support::counting;
using test_support::noResponse;
using test_support::notConnected;
using test_support::OwnedHandle;
using test_support::refused;

using I2cFunctionTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(I2cFunctionTest);
using I2cFunctionWithoutWaitingTest = test_support::ImpatientSdkTest;
INSTANTIATE_IN_BOTH_MODES(I2cFunctionWithoutWaitingTest);

constexpr int16_t shortResponse = -24576;

/// The outputs of a scan, recognisably untouched.
struct Scan {
    explicit Scan(uint8_t capacity) : addresses(capacity, 0xEE) {}

    int16_t of(VeltraSDK_Handle* handle, uint8_t bus, bool tenBit) {
        return VeltraSDK_I2cScanBus(handle, addresses.data(),
                                    static_cast<uint8_t>(addresses.size()), &sevenBitCount,
                                    &tenBitCount, bus, tenBit);
    }

    Bytes addresses;
    uint8_t sevenBitCount = 0xEE;
    uint8_t tenBitCount = 0xEE;
};

TEST_P(I2cFunctionTest, SettingTheBusVoltageReturnsTheStatus) {
    onCommand(0, {0x1F, 0x00, 0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01});
    EXPECT_EQ(VeltraSDK_I2cSetBusVoltage(handle(), 3300, true), 0);
    onCommand(0x1234, {0x1F, 0x00, 0x02, 0x00, 0x05, 0x04, 0xFF, 0xFF, 0x00});
    EXPECT_EQ(VeltraSDK_I2cSetBusVoltage(handle(), 0xFFFF, false), 0x1234);
}

TEST_P(I2cFunctionTest, InitialisingAControllerReturnsTheStatus) {
    onCommand(0, {0x2B, 0x00, 0x01, 0x00, 0x01, 0x09, 0x01, 0x80, 0x1A, 0x06, 0x00, 0x02});
    EXPECT_EQ(VeltraSDK_I2cControllerInit(handle(), 1, 400'000, 2), 0);
    onCommand(0x1234, {0x2B, 0x00, 0x02, 0x00, 0x01, 0x09, 0x00, 0x98, 0xBA, 0xDC, 0xFE, 0x00});
    EXPECT_EQ(VeltraSDK_I2cControllerInit(handle(), 0, 0xFEDC'BA98, 0), 0x1234);
}

TEST_P(I2cFunctionTest, SettingParametersReturnsTheStatus) {
    onCommand(0, {0x2B, 0x00, 0x01, 0x00, 0x02, 0x09, 0x01, 0x80, 0x1A, 0x06, 0x00, 0x02});
    EXPECT_EQ(VeltraSDK_I2cSetParameters(handle(), 1, 400'000, 2), 0);
    onCommand(0x1234, {0x2B, 0x00, 0x02, 0x00, 0x02, 0x09, 0x00, 0x98, 0xBA, 0xDC, 0xFE, 0x00});
    EXPECT_EQ(VeltraSDK_I2cSetParameters(handle(), 0, 0xFEDC'BA98, 0), 0x1234);
}

TEST_P(I2cFunctionTest, SettingPullUpResistorsReturnsTheStatus) {
    onCommand(0, {0x1B, 0x00, 0x01, 0x00, 0x02, 0x08, 0x01, 0x03});
    EXPECT_EQ(VeltraSDK_I2cSetPullUpResistors(handle(), 1, 3), 0);
    onCommand(0xFFFE, {0x1B, 0x00, 0x02, 0x00, 0x02, 0x08, 0x00, 0xFF});
    EXPECT_EQ(VeltraSDK_I2cSetPullUpResistors(handle(), 0, 0xFF), -2);
}

TEST_P(I2cFunctionTest, AWriteReturnsTheStatus) {
    onCommand(0, {0x47, 0x00, 0x01, 0x00, 0x04, 0x09, 0x01, 0x03, 0x00, 0x50, 0x02, 0x34, 0x12,
                  0x00, 0x00, 0x01, 0xAA, 0xBB, 0xCC});
    onCommand(0x1234, {0x3B, 0x00, 0x02, 0x00, 0x04, 0x09, 0x00, 0x00, 0x00, 0x50, 0x04, 0x04, 0x03,
                       0x02, 0x01, 0x00});
    const Bytes data{0xAA, 0xBB, 0xCC};
    const Bytes shortAddress{0x12, 0x34};
    const Bytes longAddress{0x01, 0x02, 0x03, 0x04};
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 1, 0x50, shortAddress.data(), 2, data.data(), 3, true),
              0);
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 0, 0x50, longAddress.data(), 4, data.data(), 0, false),
              0x1234);
}

TEST_P(I2cFunctionTest, AWriteOfLengthsZeroIsSentWhateverThePointers) {
    onCommand(0, {0x3B, 0x00, 0x01, 0x00, 0x04, 0x09, 0x00, 0x00, 0x00, 0x50, 0x00, 0x00, 0x00,
                  0x00, 0x00, 0x00});
    onCommand(0, {0x3B, 0x00, 0x02, 0x00, 0x04, 0x09, 0x00, 0x00, 0x00, 0x50, 0x00, 0x00, 0x00,
                  0x00, 0x00, 0x00});
    const Bytes given{0xEE};
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 0, 0x50, nullptr, 0, nullptr, 0, false), 0);
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 0, 0x50, given.data(), 0, given.data(), 0, false), 0);
}

TEST_P(I2cFunctionTest, AWriteOfFourKibibytesGoesOutInSeveralReports) {
    const Bytes data = counting(4096);
    Bytes request{0x01, 0x00, 0x04, 0x09, 0x00, 0x00, 0x10,
                  0x50, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
    request.insert(request.end(), data.begin(), data.end());
    onWireLong(request, {0x01, 0x00, 0x04, 0x09, 0x00, 0x00});
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 0, 0x50, nullptr, 0, data.data(), 4096, false), 0);
}

TEST_P(I2cFunctionTest, AWriteOf65537BytesIsSentWholeWithALengthOfOne) {
    const Bytes data = counting(65537);
    Bytes request{0x01, 0x00, 0x04, 0x09, 0x00, 0x01, 0x00,
                  0x50, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
    request.insert(request.end(), data.begin(), data.end());
    onWireLong(request, {0x01, 0x00, 0x04, 0x09, 0x00, 0x00});
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 0, 0x50, nullptr, 0, data.data(), 65537, false), 0);
}

TEST_P(I2cFunctionTest, AWriteWithBadArgumentsIsRefused) {
    const Bytes given(5);
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 0, 0x50, given.data(), 5, given.data(), 1, false),
              refused);
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 0, 0x50, nullptr, 1, given.data(), 1, false), refused);
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 0, 0x50, given.data(), 1, nullptr, 1, false), refused);
    EXPECT_EQ(VeltraSDK_I2cWrite(handle(), 0, 0x50, given.data(), 1, nullptr, 0x10000, false),
              refused);
    expectNothingSent();
}

TEST_P(I2cFunctionTest, AReadFillsTheBufferFromResponseByteNine) {
    onWire({0x3B, 0x00, 0x01, 0x00, 0x05, 0x09, 0x01, 0x02, 0x00, 0x50, 0x02, 0x34, 0x12, 0x00,
            0x00, 0x01},
           {0x2F, 0x00, 0x01, 0x00, 0x05, 0x09, 0x00, 0x00, 0xE6, 0xE7, 0xE8, 0xAA, 0xBB});
    const Bytes registerAddress{0x12, 0x34};
    Bytes data(3, 0xEE);
    EXPECT_EQ(VeltraSDK_I2cRead(handle(), 1, 0x50, registerAddress.data(), 2, 2, data.data(), true),
              0);
    EXPECT_EQ(data, (Bytes{0xAA, 0xBB, 0xEE}));
}

TEST_P(I2cFunctionTest, AFailedReadLeavesTheBuffer) {
    onWire({0x3B, 0x00, 0x01, 0x00, 0x05, 0x09, 0x00, 0x02, 0x00, 0x50, 0x00, 0x00, 0x00, 0x00,
            0x00, 0x00},
           {0x2F, 0x00, 0x01, 0x00, 0x05, 0x09, 0x34, 0x12, 0xE6, 0xE7, 0xE8, 0xAA, 0xBB});
    Bytes data(2, 0xEE);
    EXPECT_EQ(VeltraSDK_I2cRead(handle(), 0, 0x50, nullptr, 0, 2, data.data(), false), 0x1234);
    EXPECT_EQ(data, (Bytes{0xEE, 0xEE}));
}

TEST_P(I2cFunctionWithoutWaitingTest, AReadWithoutAResponseLeavesTheBuffer) {
    onWire({0x3B, 0x00, 0x01, 0x00, 0x05, 0x09, 0x00, 0x02, 0x00, 0x50, 0x00, 0x00, 0x00, 0x00,
            0x00, 0x00});
    Bytes data(2, 0xEE);
    EXPECT_EQ(VeltraSDK_I2cRead(handle(), 0, 0x50, nullptr, 0, 2, data.data(), false), noResponse);
    EXPECT_EQ(data, (Bytes{0xEE, 0xEE}));
}

TEST_P(I2cFunctionTest, AReadOfNothingIsSent) {
    onWire({0x3B, 0x00, 0x01, 0x00, 0x05, 0x09, 0x00, 0x00, 0x00, 0x50, 0x00, 0x00, 0x00, 0x00,
            0x00, 0x00},
           {0x27, 0x00, 0x01, 0x00, 0x05, 0x09, 0x00, 0x00, 0xE6, 0xE7, 0xE8});
    Bytes data(1, 0xEE);
    EXPECT_EQ(VeltraSDK_I2cRead(handle(), 0, 0x50, nullptr, 0, 0, data.data(), false), 0);
    EXPECT_EQ(data, (Bytes{0xEE}));
}

TEST_P(I2cFunctionTest, AReadOfFourKibibytesComesInSeveralReports) {
    const Bytes stored = counting(4096);
    Bytes response{0x01, 0x00, 0x05, 0x09, 0x00, 0x00, 0xE6, 0xE7, 0xE8};
    response.insert(response.end(), stored.begin(), stored.end());
    onWireLong({0x01, 0x00, 0x05, 0x09, 0x00, 0x00, 0x10, 0x50, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00},
               response);
    Bytes data(4096);
    EXPECT_EQ(VeltraSDK_I2cRead(handle(), 0, 0x50, nullptr, 0, 4096, data.data(), false), 0);
    EXPECT_EQ(data, stored);
}

TEST_P(I2cFunctionTest, AReadFillsTheBufferWhereverTheResponseEnds) {
    withEveryTruncation(
        {0x01, 0x00, 0x05, 0x09, 0x00, 0x03, 0x00, 0x50, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00},
        {0x01, 0x00, 0x05, 0x09, 0x00, 0x00, 0xE6, 0xE7, 0xE8, 0xAA, 0xBB, 0xCC},
        [&](const Bytes& received) {
            Bytes data(3, 0xEE);
            EXPECT_EQ(VeltraSDK_I2cRead(handle(), 0, 0x50, nullptr, 0, 3, data.data(), false), 0);
            EXPECT_EQ(data, Bytes(received.begin() + 9, received.end()));
        });
}

TEST_P(I2cFunctionTest, AReadWithBadArgumentsIsRefused) {
    const Bytes registerAddress(5);
    Bytes data(1, 0xEE);
    EXPECT_EQ(
        VeltraSDK_I2cRead(handle(), 0, 0x50, registerAddress.data(), 5, 1, data.data(), false),
        refused);
    EXPECT_EQ(VeltraSDK_I2cRead(handle(), 0, 0x50, nullptr, 1, 1, data.data(), false), refused);
    EXPECT_EQ(VeltraSDK_I2cRead(handle(), 0, 0x50, nullptr, 0, 1, nullptr, false), refused);
    EXPECT_EQ(VeltraSDK_I2cRead(handle(), 0, 0x50, nullptr, 0, 0, nullptr, false), refused);
    EXPECT_EQ(data, (Bytes{0xEE}));
    expectNothingSent();
}

TEST_P(I2cFunctionTest, AScanFillsTheBufferAndTheCounts) {
    onWire({0x1B, 0x00, 0x01, 0x00, 0x06, 0x09, 0x01, 0x01},
           {0x43, 0x00, 0x01, 0x00, 0x06, 0x09, 0x00, 0x00, 0xE6, 0x03, 0x02, 0x08, 0x48, 0x50,
            0x01, 0x23, 0x02, 0x45});
    Scan scan(8);
    EXPECT_EQ(scan.of(handle(), 1, true), 0);
    EXPECT_EQ(scan.sevenBitCount, 3);
    EXPECT_EQ(scan.tenBitCount, 2);
    EXPECT_EQ(scan.addresses, (Bytes{0x08, 0x48, 0x50, 0x01, 0x23, 0x02, 0x45, 0xEE}));
}

TEST_P(I2cFunctionTest, AScanThatFillsTheBufferExactlyIsCopied) {
    onWire({0x1B, 0x00, 0x01, 0x00, 0x06, 0x09, 0x00, 0x00},
           {0x2F, 0x00, 0x01, 0x00, 0x06, 0x09, 0x00, 0x00, 0xE6, 0x02, 0x00, 0x48, 0x50});
    Scan scan(2);
    EXPECT_EQ(scan.of(handle(), 0, false), 0);
    EXPECT_EQ(scan.addresses, (Bytes{0x48, 0x50}));
}

TEST_P(I2cFunctionTest, AScanThatDoesNotFitIsRefusedAndLeavesTheBuffer) {
    onWire({0x1B, 0x00, 0x01, 0x00, 0x06, 0x09, 0x00, 0x01},
           {0x3B, 0x00, 0x01, 0x00, 0x06, 0x09, 0x00, 0x00, 0xE6, 0x03, 0x01, 0x08, 0x48, 0x50,
            0x01, 0x23});
    Scan scan(4);
    EXPECT_EQ(scan.of(handle(), 0, true), refused);
    EXPECT_EQ(scan.sevenBitCount, 3);
    EXPECT_EQ(scan.tenBitCount, 1);
    EXPECT_EQ(scan.addresses, Bytes(4, 0xEE));
}

TEST_P(I2cFunctionTest, AScanOfTheMostAddressesNeverFits) {
    Bytes response{0x01, 0x00, 0x06, 0x09, 0x00, 0x00, 0xE6, 0xFF, 0xFF};
    response.resize(9 + 255 + 2 * 255, 0x50);
    onWireLong({0x01, 0x00, 0x06, 0x09, 0x00, 0x01}, response);
    Scan scan(255);
    EXPECT_EQ(scan.of(handle(), 0, true), refused);
    EXPECT_EQ(scan.sevenBitCount, 255);
    EXPECT_EQ(scan.tenBitCount, 255);
    EXPECT_EQ(scan.addresses, Bytes(255, 0xEE));
}

TEST_P(I2cFunctionTest, AFailedScanLeavesTheBuffer) {
    onWire({0x1B, 0x00, 0x01, 0x00, 0x06, 0x09, 0x00, 0x00},
           {0x2B, 0x00, 0x01, 0x00, 0x06, 0x09, 0x34, 0x12, 0xE6, 0x01, 0x00, 0x50});
    Scan scan(1);
    EXPECT_EQ(scan.of(handle(), 0, false), 0x1234);
    EXPECT_EQ(scan.sevenBitCount, 1);
    EXPECT_EQ(scan.tenBitCount, 0);
    EXPECT_EQ(scan.addresses, (Bytes{0xEE}));
}

TEST_P(I2cFunctionWithoutWaitingTest, AScanWithoutAResponseLeavesTheBufferAndTheCounts) {
    onWire({0x1B, 0x00, 0x01, 0x00, 0x06, 0x09, 0x00, 0x00});
    Scan scan(1);
    EXPECT_EQ(scan.of(handle(), 0, false), noResponse);
    EXPECT_EQ(scan.sevenBitCount, 0xEE);
    EXPECT_EQ(scan.tenBitCount, 0xEE);
    EXPECT_EQ(scan.addresses, (Bytes{0xEE}));
}

TEST_P(I2cFunctionTest, AScanIsShortWhereverTheResponseEndsTooEarly) {
    withEveryTruncation(
        {0x01, 0x00, 0x06, 0x09, 0x00, 0x01},
        {0x01, 0x00, 0x06, 0x09, 0x00, 0x00, 0xE6, 0x01, 0x01, 0x50, 0x01, 0x23},
        [&](const Bytes& received) {
            const bool whole = received.back() == 0x23;
            Scan scan(3);
            EXPECT_EQ(scan.of(handle(), 0, true), whole ? 0 : shortResponse);
            EXPECT_EQ(scan.sevenBitCount, received[7]);
            EXPECT_EQ(scan.tenBitCount, received[8]);
            EXPECT_EQ(scan.addresses, whole ? Bytes({0x50, 0x01, 0x23}) : Bytes(3, 0xEE));
        });
}

TEST_P(I2cFunctionTest, AScanWithBadArgumentsIsRefused) {
    Bytes addresses(1, 0xEE);
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I2cScanBus(handle(), addresses.data(), 1, &count, &count, 2, false),
              refused);
    EXPECT_EQ(VeltraSDK_I2cScanBus(handle(), nullptr, 1, &count, &count, 0, false), refused);
    EXPECT_EQ(VeltraSDK_I2cScanBus(handle(), addresses.data(), 1, nullptr, &count, 0, false),
              refused);
    EXPECT_EQ(VeltraSDK_I2cScanBus(handle(), addresses.data(), 1, &count, nullptr, 0, false),
              refused);
    EXPECT_EQ(count, 0xEE);
    EXPECT_EQ(addresses, (Bytes{0xEE}));
    expectNothingSent();
}

TEST_P(I2cFunctionTest, ANullHandleIsNotConnectedWhateverTheArguments) {
    const Bytes given(5);
    Bytes data(1, 0xEE);
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I2cSetBusVoltage(nullptr, 3300, true), notConnected);
    EXPECT_EQ(VeltraSDK_I2cControllerInit(nullptr, 0, 400'000, 0), notConnected);
    EXPECT_EQ(VeltraSDK_I2cSetParameters(nullptr, 0, 400'000, 0), notConnected);
    EXPECT_EQ(VeltraSDK_I2cSetPullUpResistors(nullptr, 0, 0), notConnected);
    EXPECT_EQ(VeltraSDK_I2cWrite(nullptr, 0, 0x50, nullptr, 0, given.data(), 1, false),
              notConnected);
    EXPECT_EQ(VeltraSDK_I2cWrite(nullptr, 0, 0x50, given.data(), 5, nullptr, 1, false),
              notConnected);
    EXPECT_EQ(VeltraSDK_I2cRead(nullptr, 0, 0x50, nullptr, 0, 1, data.data(), false), notConnected);
    EXPECT_EQ(VeltraSDK_I2cRead(nullptr, 0, 0x50, given.data(), 5, 1, nullptr, false),
              notConnected);
    EXPECT_EQ(VeltraSDK_I2cScanBus(nullptr, data.data(), 1, &count, &count, 0, false),
              notConnected);
    EXPECT_EQ(VeltraSDK_I2cScanBus(nullptr, nullptr, 0, nullptr, nullptr, 2, false), notConnected);
    EXPECT_EQ(data, (Bytes{0xEE}));
    EXPECT_EQ(count, 0xEE);
}

TEST_P(I2cFunctionTest, BadArgumentsAreRefusedBeforeConnecting) {
    const OwnedHandle unconnected(VeltraSDK_Create(0));
    const Bytes given(5);
    Bytes data(1, 0xEE);
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I2cWrite(unconnected.get(), 0, 0x50, given.data(), 5, nullptr, 0, false),
              refused);
    EXPECT_EQ(VeltraSDK_I2cRead(unconnected.get(), 0, 0x50, given.data(), 5, 1, data.data(), false),
              refused);
    EXPECT_EQ(VeltraSDK_I2cScanBus(unconnected.get(), data.data(), 1, &count, &count, 2, false),
              refused);
    expectNothingSent();
}

TEST_P(I2cFunctionTest, NothingIsSentBeforeConnecting) {
    const OwnedHandle unconnected(VeltraSDK_Create(0));
    Bytes data(1, 0xEE);
    uint8_t count = 0xEE;
    EXPECT_EQ(VeltraSDK_I2cWrite(unconnected.get(), 0, 0x50, nullptr, 0, data.data(), 1, false),
              notConnected);
    EXPECT_EQ(VeltraSDK_I2cRead(unconnected.get(), 0, 0x50, nullptr, 0, 1, data.data(), false),
              notConnected);
    EXPECT_EQ(VeltraSDK_I2cScanBus(unconnected.get(), data.data(), 1, &count, &count, 0, false),
              notConnected);
    EXPECT_EQ(data, (Bytes{0xEE}));
    EXPECT_EQ(count, 0xEE);
    expectNothingSent();
}

} // namespace
