// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/CccOutputs.hpp"
#include "support/CccFrames.hpp"
#include "support/SdkTest.hpp"

#include <map>

namespace {

using test_support::Bytes;
using test_support::CccFrame;
using test_support::cccFrames;
using test_support::noResponse;
using test_support::notConnected;
using test_support::Outputs;
using test_support::OwnedHandle;
using test_support::refused;
using test_support::untouchedByte;

using I3cCccFunctionTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(I3cCccFunctionTest);

constexpr auto write = I3cTransferDirection_Write;
constexpr auto read = I3cTransferDirection_Read;
constexpr auto resetPeripheral = I3cTargetResetDefByte_ResetPeripheral;
constexpr auto resetWholeTarget = I3cTargetResetDefByte_ResetWholeTarget;
constexpr auto timeToResetPeripheral = I3cTargetResetDefByte_TimeToResetPeripheral;

constexpr uint8_t staticAddresses[] = {0x50, 0x51};

/// The calls that send the frames of the table.
const std::map<std::string, int16_t (*)(VeltraSDK_Handle*, Outputs&)> calls{
    {"ENECBroadcast",
     [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccENECBroadcast(h, 0xA5); }},
    {"DISECBroadcast",
     [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccDISECBroadcast(h, 0xB6); }},
    {"RSTDAA", [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccRSTDAA(h); }},
    {"ENTDAA", [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccENTDAA(h); }},
    {"SETMWLBroadcast",
     [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccSETMWLBroadcast(h, 0x0100); }},
    {"SETMRLBroadcast",
     [](VeltraSDK_Handle* h, Outputs&) {
         return VeltraSDK_I3cCccSETMRLBroadcast(h, 0x0040, false, 8);
     }},
    {"SETMRLBroadcast with IBI size",
     [](VeltraSDK_Handle* h, Outputs&) {
         return VeltraSDK_I3cCccSETMRLBroadcast(h, 0x0040, true, 8);
     }},
    {"SETAASA",
     [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccSETAASA(h, staticAddresses, 2); }},
    {"RSTACTBroadcast",
     [](VeltraSDK_Handle* h, Outputs&) {
         return VeltraSDK_I3cCccRSTACTBroadcast(h, resetWholeTarget);
     }},
    {"ENECDirect",
     [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccENECDirect(h, 0xFF, 0xC7); }},
    {"DISECDirect",
     [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccDISECDirect(h, 0xFF, 0xD8); }},
    {"SETDASA",
     [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccSETDASA(h, 0xFF, 0x0A); }},
    {"SETNEWDA",
     [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccSETNEWDA(h, 0xFF, 0x31); }},
    {"SETMWLDirect",
     [](VeltraSDK_Handle* h, Outputs&) { return VeltraSDK_I3cCccSETMWLDirect(h, 0xFF, 0x0100); }},
    {"SETMRLDirect",
     [](VeltraSDK_Handle* h, Outputs&) {
         return VeltraSDK_I3cCccSETMRLDirect(h, 0xFF, 0x0040, false, 8);
     }},
    {"SETMRLDirect with IBI size",
     [](VeltraSDK_Handle* h, Outputs&) {
         return VeltraSDK_I3cCccSETMRLDirect(h, 0xFF, 0x0040, true, 8);
     }},
    {"GETMWL",
     [](VeltraSDK_Handle* h, Outputs& out) { return VeltraSDK_I3cCccGETMWL(h, 0xFF, &out.word); }},
    {"GETMRL",
     [](VeltraSDK_Handle* h, Outputs& out) {
         return VeltraSDK_I3cCccGETMRL(h, 0xFF, &out.word, &out.size, &out.flag);
     }},
    {"GETPID", [](VeltraSDK_Handle* h,
                  Outputs& out) { return VeltraSDK_I3cCccGETPID(h, 0xFF, out.bytes.data()); }},
    {"GETBCR",
     [](VeltraSDK_Handle* h, Outputs& out) { return VeltraSDK_I3cCccGETBCR(h, 0xFF, &out.byte); }},
    {"GETDCR",
     [](VeltraSDK_Handle* h, Outputs& out) { return VeltraSDK_I3cCccGETDCR(h, 0xFF, &out.byte); }},
    {"GETSTATUS",
     [](VeltraSDK_Handle* h, Outputs& out) {
         return VeltraSDK_I3cCccGETSTATUS(h, 0xFF, out.bytes.data(), &out.count, false, 0x91);
     }},
    {"GETSTATUS with defining byte",
     [](VeltraSDK_Handle* h, Outputs& out) {
         return VeltraSDK_I3cCccGETSTATUS(h, 0xFF, out.bytes.data(), &out.count, true, 0x91);
     }},
    {"GETCAPS",
     [](VeltraSDK_Handle* h, Outputs& out) {
         return VeltraSDK_I3cCccGETCAPS(h, 0xFF, out.bytes.data(), &out.count, false, 0x5A);
     }},
    {"GETCAPS with defining byte 0",
     [](VeltraSDK_Handle* h, Outputs& out) {
         return VeltraSDK_I3cCccGETCAPS(h, 0xFF, out.bytes.data(), &out.count, true, 0x00);
     }},
    {"GETCAPS with defining byte",
     [](VeltraSDK_Handle* h, Outputs& out) {
         return VeltraSDK_I3cCccGETCAPS(h, 0xFF, out.bytes.data(), &out.count, true, 0xE9);
     }},
    {"RSTACTDirect as a write",
     [](VeltraSDK_Handle* h, Outputs&) {
         return VeltraSDK_I3cCccRSTACTDirect(h, 0xFF, resetPeripheral, write, nullptr);
     }},
    {"RSTACTDirect as a read",
     [](VeltraSDK_Handle* h, Outputs& out) {
         return VeltraSDK_I3cCccRSTACTDirect(h, 0xFF, timeToResetPeripheral, read, &out.byte);
     }},
};

/// Calls the function that sends @p frame, on a new handle, for an identifier of 1.
int16_t callOnNewHandle(const CccFrame& frame, int32_t timeoutMs, Outputs& outputs) {
    const OwnedHandle handle(VeltraSDK_Create(timeoutMs));
    EXPECT_TRUE(VeltraSDK_Connect(handle.get(), nullptr));
    return calls.at(frame.name)(handle.get(), outputs);
}

TEST_P(I3cCccFunctionTest, EveryFunctionSendsTheFrameOfTheTableAndReturnsTheStatus) {
    ASSERT_EQ(calls.size(), cccFrames.size());
    for (const CccFrame& frame : cccFrames) {
        SCOPED_TRACE(frame.name);
        onWire(frame.packet, {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12});
        Outputs outputs;
        EXPECT_EQ(callOnNewHandle(frame, test_support::patientMs, outputs), 0x1234);
    }
}

TEST_P(I3cCccFunctionTest, NoFunctionWritesAnythingButTheFlagOfGETMRLWithoutAResponse) {
    for (const CccFrame& frame : cccFrames) {
        SCOPED_TRACE(frame.name);
        onWire(frame.packet);
        Outputs outputs;
        EXPECT_EQ(callOnNewHandle(frame, 0, outputs), noResponse);
        outputs.expectUntouched(frame.name == "GETMRL" ? 0 : untouchedByte);
    }
}

TEST_P(I3cCccFunctionTest, NoFunctionSendsOrWritesAnythingWithANullHandle) {
    for (const auto& [name, call] : calls) {
        SCOPED_TRACE(name);
        Outputs outputs;
        EXPECT_EQ(call(nullptr, outputs), notConnected);
        outputs.expectUntouched(untouchedByte);
    }
    expectNothingSent();
}

TEST_P(I3cCccFunctionTest, NoFunctionSendsOrWritesAnythingButTheFlagOfGETMRLWithoutALink) {
    VeltraSDK_Disconnect(handle());
    for (const auto& [name, call] : calls) {
        SCOPED_TRACE(name);
        Outputs outputs;
        EXPECT_EQ(call(handle(), outputs), notConnected);
        outputs.expectUntouched(name == "GETMRL" ? 0 : untouchedByte);
    }
    expectNothingSent();
}

TEST_P(I3cCccFunctionTest, RSTACTAsAReadWithoutAReplyPointerIsRefused) {
    EXPECT_EQ(VeltraSDK_I3cCccRSTACTDirect(handle(), 0x30, timeToResetPeripheral, read, nullptr),
              refused);
    expectNothingSent();
}

TEST_P(I3cCccFunctionTest, RSTACTAsAWriteNeedsNoReplyPointer) {
    onCommand(0, {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x10, 0x00, 0x9A, 0x01});
    EXPECT_EQ(VeltraSDK_I3cCccRSTACTDirect(handle(), 0x30, resetPeripheral, write, nullptr), 0);
}

TEST_P(I3cCccFunctionTest, RSTACTInAnUnknownDirectionNeedsNoReplyPointer) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x12, 0x01, 0x9A, 0x01},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x5A});
    EXPECT_EQ(VeltraSDK_I3cCccRSTACTDirect(handle(), 0x30, resetPeripheral,
                                           static_cast<I3cTransferDirection>(2), nullptr),
              0);
    onWire({0x27, 0x00, 0x02, 0x00, 0x09, 0x19, 0x30, 0x13, 0x01, 0x9A, 0x01},
           {0x2F, 0x00, 0x02, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x5A});
    EXPECT_EQ(VeltraSDK_I3cCccRSTACTDirect(handle(), 0x30, resetPeripheral,
                                           static_cast<I3cTransferDirection>(3), nullptr),
              0);
}

TEST_P(I3cCccFunctionTest, SETAASAWithoutAddressesDoesNotUseThePointer) {
    onCommand(0, {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x00, 0x29, 0x00});
    EXPECT_EQ(VeltraSDK_I3cCccSETAASA(handle(), nullptr, 0), 0);
}

TEST_P(I3cCccFunctionTest, SETAASAWith257AddressesSendsThemAllWithALengthOfOne) {
    const Bytes addresses(257, 0x50);
    Bytes request{0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x01, 0x29, 0x00};
    request.insert(request.end(), addresses.begin(), addresses.end());
    onWireLong(request, {0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(VeltraSDK_I3cCccSETAASA(handle(), addresses.data(), addresses.size()), 0);
}

/// GETMXDS of target 0x30, into at most @p capacity bytes.
int16_t readAnyCode(VeltraSDK_Handle* handle, uint8_t* reply, uint8_t capacity, uint8_t* count) {
    return VeltraSDK_I3cCccTransfer(handle, 0x30, read, I3cTransferMode_Sdr, false,
                                    I3cCccType_WithDefiningByte, 3, CCC{0x94}, 0x91, nullptr, 0,
                                    reply, capacity, count);
}

TEST_P(I3cCccFunctionTest, TheReplyOfAnyCodeIsCutToItsCapacity) {
    for (const int room : {255, 3, 2, 1, 0}) {
        const auto capacity = static_cast<uint8_t>(room);
        const auto id = static_cast<uint8_t>(hid.writes().size() + 1);
        onWire({0x27, 0x00, id, 0x00, 0x09, 0x19, 0x30, 0x11, 0x03, 0x94, 0x91},
               {0x37, 0x00, id, 0x00, 0x09, 0x19, 0x00, 0x00, 0xEE, 0xEE, 0xEE, 0x03, 0xA1, 0xA2,
                0xA3});
        Outputs out;
        EXPECT_EQ(readAnyCode(handle(), out.bytes.data(), capacity, &out.count), 0);
        const auto stored = std::min<uint8_t>(capacity, 3);
        EXPECT_EQ(out.count, stored);
        Bytes expected{0xA1, 0xA2, 0xA3};
        expected.resize(stored);
        EXPECT_EQ(out.written(stored), expected);
    }
}

TEST_P(I3cCccFunctionTest, AnyCodeIsWrittenWithoutRoomForAReply) {
    onWire({0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x7E, 0x08, 0x02, 0x0B, 0x00, 0xD1, 0xD2},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x5A});
    const Bytes data{0xD1, 0xD2};
    EXPECT_EQ(VeltraSDK_I3cCccTransfer(handle(), 0x7E, write, I3cTransferMode_Sdr, true,
                                       I3cCccType_WithoutDefiningByte, 2, CCC{0x0B}, 0x91,
                                       data.data(), 2, nullptr, 0, nullptr),
              0);
}

TEST_P(I3cCccFunctionTest, AnyCodeThatFailsStoresNothing) {
    onWire(
        {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x11, 0x03, 0x94, 0x91},
        {0x37, 0x00, 0x01, 0x00, 0x09, 0x19, 0x06, 0x00, 0xEE, 0xEE, 0xEE, 0x03, 0xA1, 0xA2, 0xA3});
    Outputs out;
    EXPECT_EQ(readAnyCode(handle(), out.bytes.data(), 255, &out.count), 6);
    out.expectUntouched(untouchedByte);
}

TEST_P(I3cCccFunctionTest, AnyCodeWithoutAPointerThatItNeedsIsRefused) {
    Outputs out;
    EXPECT_EQ(readAnyCode(handle(), nullptr, 1, &out.count), refused);
    EXPECT_EQ(readAnyCode(handle(), out.bytes.data(), 1, nullptr), refused);
    EXPECT_EQ(readAnyCode(nullptr, nullptr, 1, nullptr), notConnected);
    EXPECT_EQ(VeltraSDK_I3cCccTransfer(handle(), 0x7E, write, I3cTransferMode_Sdr, false,
                                       I3cCccType_WithoutDefiningByte, 2, CCC{0x0B}, 0, nullptr, 2,
                                       nullptr, 0, nullptr),
              refused);
    const Bytes data{0xD1};
    EXPECT_EQ(VeltraSDK_I3cCccTransfer(handle(), 0x30, read, I3cTransferMode_Sdr, false,
                                       I3cCccType_WithoutDefiningByte, 2, CCC{0x94}, 0, data.data(),
                                       1, out.bytes.data(), 255, &out.count),
              refused);
    out.expectUntouched(untouchedByte);
    expectNothingSent();
}

/// Calls every query without one of the pointers it requires.
void expectWithoutAPointer(VeltraSDK_Handle* handle, int16_t result) {
    Outputs out;
    EXPECT_EQ(VeltraSDK_I3cCccGETPID(handle, 0x30, nullptr), result);
    EXPECT_EQ(VeltraSDK_I3cCccGETBCR(handle, 0x30, nullptr), result);
    EXPECT_EQ(VeltraSDK_I3cCccGETDCR(handle, 0x30, nullptr), result);
    EXPECT_EQ(VeltraSDK_I3cCccGETMWL(handle, 0x30, nullptr), result);
    EXPECT_EQ(VeltraSDK_I3cCccGETMRL(handle, 0x30, nullptr, &out.size, &out.flag), result);
    EXPECT_EQ(VeltraSDK_I3cCccGETCAPS(handle, 0x30, nullptr, &out.count, false, 0), result);
    EXPECT_EQ(VeltraSDK_I3cCccGETCAPS(handle, 0x30, out.bytes.data(), nullptr, false, 0), result);
    EXPECT_EQ(VeltraSDK_I3cCccGETSTATUS(handle, 0x30, nullptr, &out.count, false, 0), result);
    EXPECT_EQ(VeltraSDK_I3cCccGETSTATUS(handle, 0x30, out.bytes.data(), nullptr, false, 0), result);
    EXPECT_EQ(VeltraSDK_I3cCccRSTACTDirect(handle, 0x30, timeToResetPeripheral, read, nullptr),
              result);
    EXPECT_TRUE(out.written(0).empty());
    EXPECT_EQ(out.count, untouchedByte);
    EXPECT_EQ(out.size, untouchedByte);
}

TEST_P(I3cCccFunctionTest, AMissingRequiredPointerIsRefused) {
    expectWithoutAPointer(handle(), refused);
    expectNothingSent();
}

TEST_P(I3cCccFunctionTest, ARefusedArgumentWinsOverAMissingLink) {
    VeltraSDK_Disconnect(handle());
    expectWithoutAPointer(handle(), refused);
}

TEST_P(I3cCccFunctionTest, ANullHandleWinsOverARefusedArgument) {
    expectWithoutAPointer(nullptr, notConnected);
}

} // namespace
