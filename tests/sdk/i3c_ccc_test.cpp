// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/CccFrames.hpp"
#include "support/SdkTest.hpp"

#include <map>

namespace {

using test_support::Bytes;
using test_support::CccFrame;
using test_support::cccFrames;
using test_support::untouchedByte;
using test_support::untouchedWord;

using I3cCccTest = test_support::SdkTest;
INSTANTIATE_IN_BOTH_MODES(I3cCccTest);

constexpr auto write = I3cTransferDirection_Write;
constexpr auto read = I3cTransferDirection_Read;

/// The calls that send the frames of the table.
const std::map<std::string, uint16_t (*)(VeltraSDK&)> calls{
    {"ENECBroadcast", [](VeltraSDK& sdk) { return sdk.i3cCccENECBroadcast(0xA5); }},
    {"DISECBroadcast", [](VeltraSDK& sdk) { return sdk.i3cCccDISECBroadcast(0xB6); }},
    {"RSTDAA", [](VeltraSDK& sdk) { return sdk.i3cCccRSTDAA(); }},
    {"ENTDAA", [](VeltraSDK& sdk) { return sdk.i3cCccENTDAA(); }},
    {"SETMWLBroadcast", [](VeltraSDK& sdk) { return sdk.i3cCccSETMWLBroadcast(0x0100); }},
    {"SETMRLBroadcast",
     [](VeltraSDK& sdk) { return sdk.i3cCccSETMRLBroadcast(0x0040, std::nullopt); }},
    {"SETMRLBroadcast with IBI size",
     [](VeltraSDK& sdk) { return sdk.i3cCccSETMRLBroadcast(0x0040, uint8_t{8}); }},
    {"SETAASA",
     [](VeltraSDK& sdk) {
         return sdk.i3cCccSETAASA({0x50, 0x51});
     }},
    {"RSTACTBroadcast",
     [](VeltraSDK& sdk) {
         return sdk.i3cCccRSTACTBroadcast(I3cTargetResetDefByte_ResetWholeTarget);
     }},
    {"ENECDirect", [](VeltraSDK& sdk) { return sdk.i3cCccENECDirect(0xFF, 0xC7); }},
    {"DISECDirect", [](VeltraSDK& sdk) { return sdk.i3cCccDISECDirect(0xFF, 0xD8); }},
    {"SETDASA", [](VeltraSDK& sdk) { return sdk.i3cCccSETDASA(0xFF, 0x0A); }},
    {"SETNEWDA", [](VeltraSDK& sdk) { return sdk.i3cCccSETNEWDA(0xFF, 0x31); }},
    {"SETMWLDirect", [](VeltraSDK& sdk) { return sdk.i3cCccSETMWLDirect(0xFF, 0x0100); }},
    {"SETMRLDirect",
     [](VeltraSDK& sdk) { return sdk.i3cCccSETMRLDirect(0xFF, 0x0040, std::nullopt); }},
    {"SETMRLDirect with IBI size",
     [](VeltraSDK& sdk) { return sdk.i3cCccSETMRLDirect(0xFF, 0x0040, uint8_t{8}); }},
    {"GETMWL",
     [](VeltraSDK& sdk) {
         uint16_t mwl = 0;
         return sdk.i3cCccGETMWL(0xFF, mwl);
     }},
    {"GETMRL",
     [](VeltraSDK& sdk) {
         uint16_t mrl = 0;
         std::optional<uint8_t> ibiPayloadSize;
         return sdk.i3cCccGETMRL(0xFF, mrl, ibiPayloadSize);
     }},
    {"GETPID",
     [](VeltraSDK& sdk) {
         Bytes pid;
         return sdk.i3cCccGETPID(0xFF, pid);
     }},
    {"GETBCR",
     [](VeltraSDK& sdk) {
         uint8_t bcr = 0;
         return sdk.i3cCccGETBCR(0xFF, bcr);
     }},
    {"GETDCR",
     [](VeltraSDK& sdk) {
         uint8_t dcr = 0;
         return sdk.i3cCccGETDCR(0xFF, dcr);
     }},
    {"GETSTATUS",
     [](VeltraSDK& sdk) {
         Bytes status;
         return sdk.i3cCccGETSTATUS(0xFF, status, std::nullopt);
     }},
    {"GETSTATUS with defining byte",
     [](VeltraSDK& sdk) {
         Bytes status;
         return sdk.i3cCccGETSTATUS(0xFF, status, uint8_t{0x91});
     }},
    {"GETCAPS",
     [](VeltraSDK& sdk) {
         Bytes capabilities;
         return sdk.i3cCccGETCAPS(0xFF, capabilities, std::nullopt);
     }},
    {"GETCAPS with defining byte 0",
     [](VeltraSDK& sdk) {
         Bytes capabilities;
         return sdk.i3cCccGETCAPS(0xFF, capabilities, uint8_t{0x00});
     }},
    {"GETCAPS with defining byte",
     [](VeltraSDK& sdk) {
         Bytes capabilities;
         return sdk.i3cCccGETCAPS(0xFF, capabilities, uint8_t{0xE9});
     }},
    {"RSTACTDirect as a write",
     [](VeltraSDK& sdk) {
         return sdk.i3cCccRSTACTDirect(0xFF, I3cTargetResetDefByte_ResetPeripheral, write, nullptr);
     }},
    {"RSTACTDirect as a read",
     [](VeltraSDK& sdk) {
         uint8_t reply = 0;
         return sdk.i3cCccRSTACTDirect(0xFF, I3cTargetResetDefByte_TimeToResetPeripheral, read,
                                       &reply);
     }},
};

TEST_P(I3cCccTest, EveryOperationSendsTheFrameOfTheTableAndReturnsTheStatus) {
    ASSERT_EQ(calls.size(), cccFrames.size());
    for (const CccFrame& frame : cccFrames) {
        SCOPED_TRACE(frame.name);
        // A new object, for an identifier of 1.
        VeltraSDK sdk(test_support::patientMs);
        ASSERT_TRUE(sdk.connect(""));
        onWire(frame.packet, {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12});
        EXPECT_EQ(calls.at(frame.name)(sdk), 0x1234);
    }
}

TEST_P(I3cCccTest, EveryOperationSucceedsWithAStatusOfZero) {
    for (const CccFrame& frame : cccFrames) {
        SCOPED_TRACE(frame.name);
        VeltraSDK sdk(test_support::patientMs);
        ASSERT_TRUE(sdk.connect(""));
        onWire(frame.packet, {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
        EXPECT_EQ(calls.at(frame.name)(sdk), 0);
    }
}

TEST_P(I3cCccTest, NoOperationSendsAnythingWithoutALink) {
    VeltraSDK unconnected(test_support::patientMs);
    for (const auto& [name, call] : calls) {
        EXPECT_EQ(call(unconnected), 0x4000) << name;
    }
    expectNothingSent();
}

TEST_P(I3cCccTest, AnOperationWithoutAResponseReturns0x2000) {
    VeltraSDK impatient(0);
    ASSERT_TRUE(impatient.connect(""));
    for (const auto& [name, call] : calls) {
        EXPECT_EQ(call(impatient), 0x2000) << name;
    }
}

/// Runs every query, and expects each of them to fail and to leave its outputs alone.
void expectOutputsUntouched(VeltraSDK& sdk, uint16_t result) {
    Bytes bytes{untouchedByte};
    uint8_t byte = untouchedByte;
    uint16_t word = untouchedWord;
    std::optional<uint8_t> optional = untouchedByte;
    EXPECT_EQ(sdk.i3cCccGETPID(0x30, bytes), result);
    EXPECT_EQ(sdk.i3cCccGETCAPS(0x30, bytes, std::nullopt), result);
    EXPECT_EQ(sdk.i3cCccGETSTATUS(0x30, bytes, std::nullopt), result);
    EXPECT_EQ(bytes, Bytes{untouchedByte});
    EXPECT_EQ(sdk.i3cCccGETBCR(0x30, byte), result);
    EXPECT_EQ(sdk.i3cCccGETDCR(0x30, byte), result);
    EXPECT_EQ(
        sdk.i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_VirtualTargetIndication, read, &byte),
        result);
    EXPECT_EQ(byte, untouchedByte);
    EXPECT_EQ(sdk.i3cCccGETMWL(0x30, word), result);
    EXPECT_EQ(sdk.i3cCccGETMRL(0x30, word, optional), result);
    EXPECT_EQ(word, untouchedWord);
    EXPECT_EQ(optional, untouchedByte);
}

TEST_P(I3cCccTest, OutputsAreLeftAloneWithoutALink) {
    VeltraSDK unconnected(test_support::patientMs);
    expectOutputsUntouched(unconnected, 0x4000);
}

TEST_P(I3cCccTest, OutputsAreLeftAloneWithoutAResponse) {
    VeltraSDK impatient(0);
    ASSERT_TRUE(impatient.connect(""));
    expectOutputsUntouched(impatient, 0x2000);
}

TEST_P(I3cCccTest, OnlyTheLowByteOfTheDefiningByteOfRSTACTIsSent) {
    const auto definingByte = static_cast<I3cTargetResetDefByte>(0xFFFFFF42);
    onCommand(0, {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x10, 0x00, 0x9A, 0x42});
    EXPECT_EQ(sdk().i3cCccRSTACTDirect(0x30, definingByte, write, nullptr), 0);
    onCommand(0, {0x27, 0x00, 0x02, 0x00, 0x09, 0x19, 0x7E, 0x10, 0x01, 0x2A, 0x42});
    EXPECT_EQ(sdk().i3cCccRSTACTBroadcast(definingByte), 0);
}

TEST_P(I3cCccTest, AnAddressAbove0x7FLosesItsTopBitAsData) {
    onCommand(0, {0x2B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x00, 0x01, 0x88, 0x00, 0xFE});
    EXPECT_EQ(sdk().i3cCccSETNEWDA(0x30, 0xFF), 0);
    onCommand(0, {0x2B, 0x00, 0x02, 0x00, 0x09, 0x19, 0xFF, 0x00, 0x01, 0x87, 0x00, 0x02});
    EXPECT_EQ(sdk().i3cCccSETDASA(0xFF, 0x81), 0);
}

TEST_P(I3cCccTest, LengthsAreSentMostSignificantByteFirstOverTheirWholeRange) {
    onCommand(0, {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x00, 0x02, 0x89, 0x00, 0xFF, 0xFE});
    EXPECT_EQ(sdk().i3cCccSETMWLDirect(0x30, 0xFFFE), 0);
    onCommand(0,
              {0x33, 0x00, 0x02, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x03, 0x0A, 0x00, 0x00, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETMRLBroadcast(0, uint8_t{0}), 0);
}

TEST_P(I3cCccTest, SETAASAWithoutAddressesSendsALengthOfZeroAndNoData) {
    onCommand(0, {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x00, 0x29, 0x00});
    EXPECT_EQ(sdk().i3cCccSETAASA({}), 0);
}

TEST_P(I3cCccTest, SETAASAWith257AddressesSendsThemAllWithALengthOfOne) {
    const Bytes addresses(257, 0x50);
    Bytes request{0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x01, 0x29, 0x00};
    request.insert(request.end(), addresses.begin(), addresses.end());
    onWireLong(request, {0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETAASA(addresses), 0);
}

} // namespace
