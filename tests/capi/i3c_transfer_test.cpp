// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SdkTest.hpp"

#include <type_traits>

namespace {

using test_support::Bytes;
using test_support::noResponse;
using test_support::notConnected;
using test_support::refused;

using I3cTransferFunctionTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(I3cTransferFunctionTest);
using I3cTransferFunctionWithoutWaitingTest = test_support::ImpatientSdkTest;
INSTANTIATE_IN_BOTH_MODES(I3cTransferFunctionWithoutWaitingTest);

constexpr auto none = I3cTransferFlags_None;
constexpr auto one = static_cast<I3cTransferFlags>(1);

constexpr uint8_t bytes[] = {0xAA, 0xBB, 0xCC, 0xDD, 0xEE};

// The C functions for SDR and for legacy I2C have the same arguments: what holds for one is tested
// on both.
using WriteFunction = decltype(&VeltraSDK_I3cSdrWrite);
using ReadFunction = decltype(&VeltraSDK_I3cSdrRead);
constexpr WriteFunction writes[] = {&VeltraSDK_I3cSdrWrite, &VeltraSDK_I3cLegacyI2CWrite};
constexpr ReadFunction reads[] = {&VeltraSDK_I3cSdrRead, &VeltraSDK_I3cLegacyI2CRead};

// The HDR-DDR read takes the count before the buffer, the others after it.
static_assert(
    std::is_same_v<decltype(VeltraSDK_I3cHdrDdrRead),
                   int16_t(VeltraSDK_Handle*, uint8_t, uint8_t, uint16_t, uint16_t*, uint8_t*)>);
static_assert(std::is_same_v<decltype(VeltraSDK_I3cSdrRead),
                             int16_t(VeltraSDK_Handle*, uint8_t, const uint8_t*, uint8_t, uint16_t,
                                     uint8_t*, uint16_t*, I3cTransferFlags)>);

/// What a read stores, recognisably untouched, with room for four bytes.
struct Stored {
    void expect(Bytes read) const {
        EXPECT_EQ(count, read.size());
        read.resize(data.size(), 0xFF);
        EXPECT_EQ(data, read);
    }
    void expectUntouched() const {
        EXPECT_EQ(count, 0xEEEE);
        EXPECT_EQ(data, Bytes(4, 0xFF));
    }

    Bytes data = Bytes(4, 0xFF);
    uint16_t count = 0xEEEE;
};

TEST_P(I3cTransferFunctionTest, AnSdrWriteSendsTheSubAddressAndTheData) {
    onCommand(0x1234, {0x43, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x08, 0x00, 0x01, 0xAA, 0x00, 0x00,
                       0x00, 0x02, 0x00, 0xAA, 0xBB});
    EXPECT_EQ(VeltraSDK_I3cSdrWrite(handle(), 0x50, bytes, 1, bytes, 2, one), 0x1234);
}

TEST_P(I3cTransferFunctionTest, AnHdrDdrWriteSendsItsCommandCodeAndTheData) {
    onCommand(0x1234, {0x43, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x02, 0x7F, 0x00, 0x00, 0x00, 0x00,
                       0x00, 0x02, 0x00, 0xAA, 0xBB});
    EXPECT_EQ(VeltraSDK_I3cHdrDdrWrite(handle(), 0x50, 0x7F, bytes, 2), 0x1234);
}

TEST_P(I3cTransferFunctionTest, ALegacyI2CWriteSendsTheSubAddressAndTheData) {
    onCommand(0x1234, {0x43, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x0C, 0x00, 0x01, 0xAA, 0x00, 0x00,
                       0x00, 0x02, 0x00, 0xAA, 0xBB});
    EXPECT_EQ(VeltraSDK_I3cLegacyI2CWrite(handle(), 0x50, bytes, 1, bytes, 2, one), 0x1234);
}

TEST_P(I3cTransferFunctionTest, AddressesAndHdrCommandCodesAreSentUnchecked) {
    Bytes data(2);
    uint16_t count = 0;
    onCommand(0, {0x3F, 0x00, 0x01, 0x00, 0x08, 0x19, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                  0x00, 0x01, 0x00, 0xAA});
    EXPECT_EQ(VeltraSDK_I3cSdrWrite(handle(), 0xFF, nullptr, 0, bytes, 1, none), 0);
    onCommand(0, {0x3B, 0x00, 0x02, 0x00, 0x08, 0x19, 0xFF, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00,
                  0x00, 0x02, 0x00});
    EXPECT_EQ(VeltraSDK_I3cSdrRead(handle(), 0xFF, nullptr, 0, 2, data.data(), &count, none), 0);
    onCommand(0, {0x3F, 0x00, 0x03, 0x00, 0x08, 0x19, 0xFF, 0x02, 0xFF, 0x00, 0x00, 0x00, 0x00,
                  0x00, 0x01, 0x00, 0xAA});
    EXPECT_EQ(VeltraSDK_I3cHdrDdrWrite(handle(), 0xFF, 0xFF, bytes, 1), 0);
    onCommand(0, {0x3B, 0x00, 0x04, 0x00, 0x08, 0x19, 0xFF, 0x03, 0xFF, 0x00, 0x00, 0x00, 0x00,
                  0x00, 0x02, 0x00});
    EXPECT_EQ(VeltraSDK_I3cHdrDdrRead(handle(), 0xFF, 0xFF, 2, &count, data.data()), 0);
    onCommand(0, {0x3F, 0x00, 0x05, 0x00, 0x08, 0x19, 0xFF, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00,
                  0x00, 0x01, 0x00, 0xAA});
    EXPECT_EQ(VeltraSDK_I3cLegacyI2CWrite(handle(), 0xFF, nullptr, 0, bytes, 1, none), 0);
    onCommand(0, {0x3B, 0x00, 0x06, 0x00, 0x08, 0x19, 0xFF, 0x05, 0x00, 0x00, 0x00, 0x00, 0x00,
                  0x00, 0x02, 0x00});
    EXPECT_EQ(VeltraSDK_I3cLegacyI2CRead(handle(), 0xFF, nullptr, 0, 2, data.data(), &count, none),
              0);
}

TEST_P(I3cTransferFunctionTest, WritesOfNothingDoNotUseTheirPointers) {
    onCommand(0, {0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                  0x00, 0x00, 0x00});
    EXPECT_EQ(VeltraSDK_I3cSdrWrite(handle(), 0x50, nullptr, 0, nullptr, 0, none), 0);
    onCommand(0, {0x3B, 0x00, 0x02, 0x00, 0x08, 0x19, 0x50, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00,
                  0x00, 0x00, 0x00});
    EXPECT_EQ(VeltraSDK_I3cLegacyI2CWrite(handle(), 0x50, bytes, 0, bytes, 0, none), 0);
    onCommand(0, {0x3B, 0x00, 0x03, 0x00, 0x08, 0x19, 0x50, 0x02, 0x7F, 0x00, 0x00, 0x00, 0x00,
                  0x00, 0x00, 0x00});
    EXPECT_EQ(VeltraSDK_I3cHdrDdrWrite(handle(), 0x50, 0x7F, nullptr, 0), 0);
}

TEST_P(I3cTransferFunctionTest, TheLongestWriteHas65535Bytes) {
    const Bytes data(65535, 0xA5);
    Bytes request{0x01, 0x00, 0x08, 0x19, 0x50, 0x00, 0x00,
                  0x00, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF};
    request.insert(request.end(), data.begin(), data.end());
    onWireLong(request, {0x01, 0x00, 0x08, 0x19, 0x00, 0x00});
    EXPECT_EQ(VeltraSDK_I3cSdrWrite(handle(), 0x50, nullptr, 0, data.data(), 65535, none), 0);
}

TEST_P(I3cTransferFunctionTest, AnSdrReadStoresTheBytesAndTheirNumber) {
    onWire(
        {0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x01, 0x00, 0x04, 0xAA, 0xBB, 0xCC, 0xDD, 0x04,
         0x00},
        {0x37, 0x00, 0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 0x00, 0x00, 0x03, 0x00, 0xA1, 0xA2, 0xA3});
    Stored stored;
    auto& [data, count] = stored;
    EXPECT_EQ(VeltraSDK_I3cSdrRead(handle(), 0x50, bytes, 4, 4, data.data(), &count, none), 0);
    stored.expect({0xA1, 0xA2, 0xA3});
}

TEST_P(I3cTransferFunctionTest, AnHdrDdrReadTakesTheCountBeforeTheBuffer) {
    onWire(
        {0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x03, 0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x04,
         0x00},
        {0x37, 0x00, 0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 0x00, 0x00, 0x03, 0x00, 0xA1, 0xA2, 0xA3});
    Stored stored;
    auto& [data, count] = stored;
    EXPECT_EQ(VeltraSDK_I3cHdrDdrRead(handle(), 0x50, 0x80, 4, &count, data.data()), 0);
    stored.expect({0xA1, 0xA2, 0xA3});
}

TEST_P(I3cTransferFunctionTest, ALegacyI2CReadStoresTheBytesAndTheirNumber) {
    onWire(
        {0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x0D, 0x00, 0x01, 0xAA, 0x00, 0x00, 0x00, 0x04,
         0x00},
        {0x37, 0x00, 0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 0x00, 0x00, 0x03, 0x00, 0xA1, 0xA2, 0xA3});
    Stored stored;
    auto& [data, count] = stored;
    EXPECT_EQ(VeltraSDK_I3cLegacyI2CRead(handle(), 0x50, bytes, 1, 4, data.data(), &count, one), 0);
    stored.expect({0xA1, 0xA2, 0xA3});
}

TEST_P(I3cTransferFunctionTest, AReadOfNoBytesStoresACountOfZero) {
    onWire({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
            0x04, 0x00},
           {0x2B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00});
    Stored stored;
    auto& [data, count] = stored;
    EXPECT_EQ(VeltraSDK_I3cSdrRead(handle(), 0x50, nullptr, 0, 4, data.data(), &count, none), 0);
    stored.expect({});
}

TEST_P(I3cTransferFunctionTest, AReadWithANonzeroStatusLeavesTheBufferAndTheCount) {
    Bytes carried{0x33, 0x00, 0x01, 0x00, 0x08, 0x19, 0x34,
                  0x12, 0x00, 0x00, 0x02, 0x00, 0xA1, 0xA2};
    Stored stored;
    auto& [data, count] = stored;
    onWire({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
            0x04, 0x00},
           carried);
    EXPECT_EQ(VeltraSDK_I3cSdrRead(handle(), 0x50, nullptr, 0, 4, data.data(), &count, none),
              0x1234);
    carried[2] = 0x02;
    onWire({0x3B, 0x00, 0x02, 0x00, 0x08, 0x19, 0x50, 0x05, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
            0x04, 0x00},
           carried);
    EXPECT_EQ(VeltraSDK_I3cLegacyI2CRead(handle(), 0x50, nullptr, 0, 4, data.data(), &count, none),
              0x1234);
    carried[2] = 0x03;
    onWire({0x3B, 0x00, 0x03, 0x00, 0x08, 0x19, 0x50, 0x03, 0x80, 0x00, 0x00, 0x00, 0x00, 0x00,
            0x04, 0x00},
           carried);
    EXPECT_EQ(VeltraSDK_I3cHdrDdrRead(handle(), 0x50, 0x80, 4, &count, data.data()), 0x1234);
    stored.expectUntouched();
}

TEST_P(I3cTransferFunctionWithoutWaitingTest, AReadWithoutAResponseLeavesTheBufferAndTheCount) {
    Stored stored;
    auto& [data, count] = stored;
    for (const ReadFunction read : reads) {
        EXPECT_EQ(read(handle(), 0x50, nullptr, 0, 4, data.data(), &count, none), noResponse);
    }
    EXPECT_EQ(VeltraSDK_I3cHdrDdrRead(handle(), 0x50, 0x80, 4, &count, data.data()), noResponse);
    stored.expectUntouched();
}

TEST_P(I3cTransferFunctionTest, TheLargestCountReadsAsZeroBeyondTheResponse) {
    onWire({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
            0xFF, 0xFF},
           {0x2F, 0x00, 0x01, 0x00, 0x08, 0x19, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xA1});
    Bytes data(0xFFFF, 0xFF);
    uint16_t count = 0;
    EXPECT_EQ(VeltraSDK_I3cSdrRead(handle(), 0x50, nullptr, 0, 0xFFFF, data.data(), &count, none),
              0);
    EXPECT_EQ(count, 0xFFFF);
    Bytes expected(0xFFFF);
    expected[0] = 0xA1;
    EXPECT_EQ(data, expected);
}

TEST_P(I3cTransferFunctionTest, ASubAddressOfFiveBytesIsRefused) {
    for (const WriteFunction write : writes) {
        EXPECT_EQ(write(handle(), 0x50, bytes, 5, bytes, 1, none), refused);
    }
    Stored stored;
    auto& [data, count] = stored;
    for (const ReadFunction read : reads) {
        EXPECT_EQ(read(handle(), 0x50, bytes, 5, 4, data.data(), &count, none), refused);
    }
    stored.expectUntouched();
    expectNothingSent();
}

TEST_P(I3cTransferFunctionTest, AMissingSubAddressIsRefused) {
    for (const WriteFunction write : writes) {
        EXPECT_EQ(write(handle(), 0x50, nullptr, 1, bytes, 1, none), refused);
    }
    Bytes data(4);
    uint16_t count = 0;
    for (const ReadFunction read : reads) {
        EXPECT_EQ(read(handle(), 0x50, nullptr, 1, 4, data.data(), &count, none), refused);
    }
    expectNothingSent();
}

TEST_P(I3cTransferFunctionTest, MissingDataIsRefused) {
    for (const WriteFunction write : writes) {
        EXPECT_EQ(write(handle(), 0x50, bytes, 1, nullptr, 1, none), refused);
    }
    EXPECT_EQ(VeltraSDK_I3cHdrDdrWrite(handle(), 0x50, 0x7F, nullptr, 1), refused);
    expectNothingSent();
}

TEST_P(I3cTransferFunctionTest, AReadWithoutABufferIsRefusedWhateverTheLength) {
    uint16_t count = 0xEEEE;
    for (const uint16_t length : {uint16_t{0}, uint16_t{4}}) {
        for (const ReadFunction read : reads) {
            EXPECT_EQ(read(handle(), 0x50, bytes, 1, length, nullptr, &count, none), refused);
        }
        EXPECT_EQ(VeltraSDK_I3cHdrDdrRead(handle(), 0x50, 0x80, length, &count, nullptr), refused);
    }
    EXPECT_EQ(count, 0xEEEE);
    expectNothingSent();
}

TEST_P(I3cTransferFunctionTest, AReadWithoutACountPointerIsRefused) {
    Bytes data(4, 0xFF);
    for (const ReadFunction read : reads) {
        EXPECT_EQ(read(handle(), 0x50, bytes, 1, 4, data.data(), nullptr, none), refused);
    }
    EXPECT_EQ(VeltraSDK_I3cHdrDdrRead(handle(), 0x50, 0x80, 4, nullptr, data.data()), refused);
    EXPECT_EQ(data, Bytes(4, 0xFF));
    expectNothingSent();
}

TEST_P(I3cTransferFunctionTest, TheTargetResetPatternIsPatternZero) {
    onCommand(0x1234, {0x17, 0x00, 0x01, 0x00, 0x0A, 0x19, 0x00});
    EXPECT_EQ(VeltraSDK_I3cTargetResetPattern(handle()), 0x1234);
}

TEST_P(I3cTransferFunctionTest, TheHdrExitPatternIsPatternOne) {
    onCommand(0x1234, {0x17, 0x00, 0x01, 0x00, 0x0A, 0x19, 0x01});
    EXPECT_EQ(VeltraSDK_I3cHdrExitPattern(handle()), 0x1234);
}

/// Calls every function with good arguments and expects none of them to do anything.
void expectNotConnected(VeltraSDK_Handle* handle) {
    Stored stored;
    auto& [data, count] = stored;
    for (const WriteFunction write : writes) {
        EXPECT_EQ(write(handle, 0x50, bytes, 1, bytes, 2, none), notConnected);
    }
    for (const ReadFunction read : reads) {
        EXPECT_EQ(read(handle, 0x50, bytes, 1, 4, data.data(), &count, none), notConnected);
    }
    EXPECT_EQ(VeltraSDK_I3cHdrDdrWrite(handle, 0x50, 0x7F, bytes, 2), notConnected);
    EXPECT_EQ(VeltraSDK_I3cHdrDdrRead(handle, 0x50, 0x80, 4, &count, data.data()), notConnected);
    EXPECT_EQ(VeltraSDK_I3cTargetResetPattern(handle), notConnected);
    EXPECT_EQ(VeltraSDK_I3cHdrExitPattern(handle), notConnected);
    stored.expectUntouched();
}

/// Calls every function that checks its arguments with bad ones.
void expectWithBadArguments(VeltraSDK_Handle* handle, int16_t result) {
    for (const WriteFunction write : writes) {
        EXPECT_EQ(write(handle, 0x50, nullptr, 5, nullptr, 1, none), result);
    }
    for (const ReadFunction read : reads) {
        EXPECT_EQ(read(handle, 0x50, nullptr, 5, 4, nullptr, nullptr, none), result);
    }
    EXPECT_EQ(VeltraSDK_I3cHdrDdrWrite(handle, 0x50, 0x7F, nullptr, 1), result);
    EXPECT_EQ(VeltraSDK_I3cHdrDdrRead(handle, 0x50, 0x80, 4, nullptr, nullptr), result);
}

TEST_P(I3cTransferFunctionTest, NothingIsSentWithoutALink) {
    VeltraSDK_Disconnect(handle());
    expectNotConnected(handle());
    expectNothingSent();
}

TEST_P(I3cTransferFunctionTest, ANullHandleIsNotConnected) {
    expectNotConnected(nullptr);
}

TEST_P(I3cTransferFunctionTest, ANullHandleWinsOverARefusedArgument) {
    expectWithBadArguments(nullptr, notConnected);
}

TEST_P(I3cTransferFunctionTest, ARefusedArgumentWinsOverAMissingLink) {
    VeltraSDK_Disconnect(handle());
    expectWithBadArguments(handle(), refused);
}

} // namespace
