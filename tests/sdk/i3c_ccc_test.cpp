#include "support/CccFrames.hpp"
#include "support/SdkTest.hpp"

#include <map>

namespace {

using test_support::Bytes;
using test_support::CccFrame;
using test_support::cccFrames;

using I3cCccTest = test_support::SdkTest;
INSTANTIATE_ON_BOTH_MODELS(I3cCccTest);

constexpr auto write = I3cTransferDirection_Write;
constexpr auto read = I3cTransferDirection_Read;

// What a refused or unanswered query must leave alone.
constexpr uint8_t untouchedByte = 0xEE;
constexpr uint16_t untouchedWord = 0xEEEE;

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

TEST_P(I3cCccTest, GETPIDReturnsTheSixBytesInBusOrder) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x06, 0x8D, 0x00},
           {0x43, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0xEE, 0xEE, 0xEE, 0x06, 0x04, 0x6A,
            0x12, 0x34, 0x56, 0x78});
    Bytes pid(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccGETPID(0x30, pid), 0);
    EXPECT_EQ(pid, (Bytes{0x04, 0x6A, 0x12, 0x34, 0x56, 0x78}));
}

TEST_P(I3cCccTest, GETPIDReturnsExactlyTheCountedBytesEvenIfFewerThanSix) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x06, 0x8D, 0x00},
           {0x43, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0x04, 0x6A,
            0x12, 0x34, 0x56, 0x78});
    Bytes pid(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccGETPID(0x30, pid), 0);
    EXPECT_EQ(pid, (Bytes{0x04, 0x6A}));
}

TEST_P(I3cCccTest, ACountOfZeroEmptiesTheVectorWhateverTheStatus) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x06, 0x8D, 0x00},
           {0x2B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0x00, 0x00, 0x00, 0x00});
    Bytes pid(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccGETPID(0x30, pid), 0x1234);
    EXPECT_TRUE(pid.empty());
}

TEST_P(I3cCccTest, GETBCRStoresByteTenWhateverTheCountAndTheStatus) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x01, 0x8E, 0x00},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0xEE, 0xEE, 0xEE, 0x00, 0x27});
    uint8_t bcr = untouchedByte;
    EXPECT_EQ(sdk().i3cCccGETBCR(0x30, bcr), 0x1234);
    EXPECT_EQ(bcr, 0x27);
}

TEST_P(I3cCccTest, GETDCRStoresByteTenWhateverTheCountAndTheStatus) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x01, 0x8F, 0x00},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0xEE, 0xEE, 0xEE, 0x00, 0x63});
    uint8_t dcr = untouchedByte;
    EXPECT_EQ(sdk().i3cCccGETDCR(0x30, dcr), 0x1234);
    EXPECT_EQ(dcr, 0x63);
}

TEST_P(I3cCccTest, GETMWLTakesTheMostSignificantByteFirst) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x02, 0x8B, 0x00},
           {0x33, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0xEE, 0xEE, 0xEE, 0x02, 0x12, 0x34});
    uint16_t mwl = untouchedWord;
    EXPECT_EQ(sdk().i3cCccGETMWL(0x30, mwl), 0);
    EXPECT_EQ(mwl, 0x12 * 256 + 0x34);
}

TEST_P(I3cCccTest, GETMWLStoresItsValueWhateverTheCountAndTheStatus) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x02, 0x8B, 0x00},
           {0x33, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0x00, 0x00, 0x00, 0x00, 0x12, 0x34});
    uint16_t mwl = untouchedWord;
    EXPECT_EQ(sdk().i3cCccGETMWL(0x30, mwl), 0x1234);
    EXPECT_EQ(mwl, 0x1234);
}

TEST_P(I3cCccTest, GETMRLOfTwoBytesYields256AndNoIbiPayloadSize) {
    onWire(
        {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x03, 0x8C, 0x00},
        {0x37, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0x01, 0x00, 0x08});
    uint16_t mrl = untouchedWord;
    std::optional<uint8_t> ibiPayloadSize = untouchedByte;
    EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0);
    EXPECT_EQ(mrl, 256);
    EXPECT_EQ(ibiPayloadSize, std::nullopt);
}

TEST_P(I3cCccTest, GETMRLOfThreeBytesYields64AndAnIbiPayloadSizeOfEight) {
    onWire(
        {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x03, 0x8C, 0x00},
        {0x37, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03, 0x00, 0x40, 0x08});
    uint16_t mrl = untouchedWord;
    std::optional<uint8_t> ibiPayloadSize;
    EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0);
    EXPECT_EQ(mrl, 64);
    EXPECT_EQ(ibiPayloadSize, uint8_t{8});
}

TEST_P(I3cCccTest, GETMRLOfAnyOtherLengthYieldsNoIbiPayloadSize) {
    uint8_t id = 0;
    for (const uint8_t count : Bytes{0, 1, 4, 255}) {
        ++id;
        onWire({0x27, 0x00, id, 0x00, 0x09, 0x19, 0x30, 0x01, 0x03, 0x8C, 0x00},
               {0x37, 0x00, id, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, count, 0x00, 0x40,
                0x08});
        uint16_t mrl = untouchedWord;
        std::optional<uint8_t> ibiPayloadSize = untouchedByte;
        EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0);
        EXPECT_EQ(mrl, 64);
        EXPECT_EQ(ibiPayloadSize, std::nullopt);
    }
}

TEST_P(I3cCccTest, GETMRLStoresItsOutputsWhateverTheStatus) {
    onWire(
        {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x03, 0x8C, 0x00},
        {0x37, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0x00, 0x00, 0x00, 0x03, 0x12, 0x34, 0x56});
    uint16_t mrl = untouchedWord;
    std::optional<uint8_t> ibiPayloadSize;
    EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0x1234);
    EXPECT_EQ(mrl, 0x1234);
    EXPECT_EQ(ibiPayloadSize, uint8_t{0x56});
}

TEST_P(I3cCccTest, GETCAPSWithoutDefiningByteAndWithZeroDifferInTheControlByte) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x04, 0x95, 0x00},
           {0x33, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0xC1, 0xC2});
    Bytes capabilities(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccGETCAPS(0x30, capabilities, std::nullopt), 0);
    EXPECT_EQ(capabilities, (Bytes{0xC1, 0xC2}));
    onWire({0x27, 0x00, 0x02, 0x00, 0x09, 0x19, 0x30, 0x11, 0x04, 0x95, 0x00},
           {0x3B, 0x00, 0x02, 0x00, 0x09, 0x19, 0x34, 0x12, 0x00, 0x00, 0x00, 0x04, 0xC1, 0xC2,
            0xC3, 0xC4});
    EXPECT_EQ(sdk().i3cCccGETCAPS(0x30, capabilities, uint8_t{0}), 0x1234);
    EXPECT_EQ(capabilities, (Bytes{0xC1, 0xC2, 0xC3, 0xC4}));
}

TEST_P(I3cCccTest, GETSTATUSReturnsTheCountedBytesWhateverTheStatus) {
    onWire(
        {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x11, 0x02, 0x90, 0x91},
        {0x37, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0x00, 0x00, 0x00, 0x03, 0xD1, 0xD2, 0xD3});
    Bytes status;
    EXPECT_EQ(sdk().i3cCccGETSTATUS(0x30, status, uint8_t{0x91}), 0x1234);
    EXPECT_EQ(status, (Bytes{0xD1, 0xD2, 0xD3}));
}

TEST_P(I3cCccTest, RSTACTAsAReadStoresByteTenWhateverTheCountAndTheStatus) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x11, 0x01, 0x9A, 0x81},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0x00, 0x00, 0x00, 0x00, 0x5A});
    uint8_t reply = untouchedByte;
    EXPECT_EQ(
        sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_TimeToResetPeripheral, read, &reply),
        0x1234);
    EXPECT_EQ(reply, 0x5A);
}

TEST_P(I3cCccTest, RSTACTAsAReadAcceptsANullReply) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x11, 0x01, 0x9A, 0x81},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x5A});
    EXPECT_EQ(
        sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_TimeToResetPeripheral, read, nullptr),
        0);
}

TEST_P(I3cCccTest, RSTACTAsAWriteStoresNothing) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x10, 0x00, 0x9A, 0x01},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x5A});
    uint8_t reply = untouchedByte;
    EXPECT_EQ(sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_ResetPeripheral, write, &reply),
              0);
    EXPECT_EQ(reply, untouchedByte);
}

TEST_P(I3cCccTest, RSTACTInAnUnknownDirectionHasALengthOfOneAndStoresNothing) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x12, 0x01, 0x9A, 0x01},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x5A});
    uint8_t reply = untouchedByte;
    EXPECT_EQ(sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_ResetPeripheral,
                                       static_cast<I3cTransferDirection>(2), &reply),
              0);
    EXPECT_EQ(reply, untouchedByte);
}

TEST_P(I3cCccTest, OnlyTheLowByteOfTheDefiningByteOfRSTACTIsSent) {
    const auto definingByte = static_cast<I3cTargetResetDefByte>(0xFFFFFF42);
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x10, 0x00, 0x9A, 0x42},
           {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccRSTACTDirect(0x30, definingByte, write, nullptr), 0);
    onWire({0x27, 0x00, 0x02, 0x00, 0x09, 0x19, 0x7E, 0x10, 0x01, 0x2A, 0x42},
           {0x1B, 0x00, 0x02, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccRSTACTBroadcast(definingByte), 0);
}

TEST_P(I3cCccTest, AnAddressAbove0x7FLosesItsTopBitAsData) {
    onWire({0x2B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x00, 0x01, 0x88, 0x00, 0xFE},
           {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETNEWDA(0x30, 0xFF), 0);
    onWire({0x2B, 0x00, 0x02, 0x00, 0x09, 0x19, 0xFF, 0x00, 0x01, 0x87, 0x00, 0x02},
           {0x1B, 0x00, 0x02, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETDASA(0xFF, 0x81), 0);
}

TEST_P(I3cCccTest, LengthsAreSentMostSignificantByteFirstOverTheirWholeRange) {
    onWire({0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x00, 0x02, 0x89, 0x00, 0xFF, 0xFE},
           {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETMWLDirect(0x30, 0xFFFE), 0);
    onWire({0x33, 0x00, 0x02, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x03, 0x0A, 0x00, 0x00, 0x00, 0x00},
           {0x1B, 0x00, 0x02, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETMRLBroadcast(0, uint8_t{0}), 0);
}

TEST_P(I3cCccTest, SETMWLBroadcastOf0x0100SendsItsHighByteFirstToTheBroadcastAddress) {
    onWire({0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x02, 0x09, 0x00, 0x01, 0x00},
           {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETMWLBroadcast(0x0100), 0);
}

TEST_P(I3cCccTest, SETMRLSendsThreeBytesWithAnIbiPayloadSizeAndTwoWithout) {
    onWire({0x33, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x00, 0x03, 0x8A, 0x00, 0x00, 0x40, 0x08},
           {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETMRLDirect(0x30, 0x0040, uint8_t{8}), 0);
    onWire({0x2F, 0x00, 0x02, 0x00, 0x09, 0x19, 0x30, 0x00, 0x02, 0x8A, 0x00, 0x00, 0x40},
           {0x1B, 0x00, 0x02, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETMRLDirect(0x30, 0x0040, std::nullopt), 0);
}

TEST_P(I3cCccTest, SETNEWDAAndSETDASASendTheAssignedAddressShiftedLeft) {
    onWire({0x2B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x00, 0x01, 0x88, 0x00, 0x62},
           {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETNEWDA(0x30, 0x31), 0);
    onWire({0x2B, 0x00, 0x02, 0x00, 0x09, 0x19, 0x50, 0x00, 0x01, 0x87, 0x00, 0x14},
           {0x1B, 0x00, 0x02, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETDASA(0x50, 0x0A), 0);
}

TEST_P(I3cCccTest, ENECCarriesItsEventsInTheDefiningByteAsABroadcastAndInTheDataAsADirectCode) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x7E, 0x10, 0x01, 0x00, 0x09},
           {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccENECBroadcast(0x09), 0);
    onWire({0x2B, 0x00, 0x02, 0x00, 0x09, 0x19, 0x30, 0x00, 0x01, 0x80, 0x00, 0x09},
           {0x1B, 0x00, 0x02, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccENECDirect(0x30, 0x09), 0);
}

TEST_P(I3cCccTest, SETAASASendsItsAddressesUnshifted) {
    onWire({0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x02, 0x29, 0x00, 0x50, 0x51},
           {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETAASA({0x50, 0x51}), 0);
}

TEST_P(I3cCccTest, SETAASAWithoutAddressesSendsALengthOfZeroAndNoData) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x00, 0x29, 0x00},
           {0x1B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETAASA({}), 0);
}

TEST_P(I3cCccTest, SETAASAWith257AddressesSendsThemAllWithALengthOfOne) {
    const Bytes addresses(257, 0x50);
    Bytes request{0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x01, 0x29, 0x00};
    request.insert(request.end(), addresses.begin(), addresses.end());
    onWireLong(request, {0x01, 0x00, 0x09, 0x19, 0x00, 0x00});
    EXPECT_EQ(sdk().i3cCccSETAASA(addresses), 0);
}

/// A reply of three bytes; a count of four makes the response shorter than what it announces.
Bytes replyCounting(uint8_t count) {
    return {0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0xEE, 0xEE, 0xEE, count, 0xA1, 0xA2, 0xA3};
}

TEST_P(I3cCccTest, ByteStringsHaveTheCountedSizeWhereverTheResponseEnds) {
    struct Query {
        Bytes request;
        uint16_t (*call)(VeltraSDK& sdk, Bytes& bytes);
    };
    const Query queries[] = {
        {{0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x06, 0x8D, 0x00},
         [](VeltraSDK& sdk, Bytes& bytes) { return sdk.i3cCccGETPID(0x30, bytes); }},
        {{0x0F, 0x00, 0x09, 0x19, 0x30, 0x01, 0x04, 0x95, 0x00},
         [](VeltraSDK& sdk, Bytes& bytes) { return sdk.i3cCccGETCAPS(0x30, bytes, std::nullopt); }},
        {{0x1D, 0x00, 0x09, 0x19, 0x30, 0x01, 0x02, 0x90, 0x00},
         [](VeltraSDK& sdk, Bytes& bytes) {
             return sdk.i3cCccGETSTATUS(0x30, bytes, std::nullopt);
         }},
    };
    for (const Query& query : queries) {
        withEveryTruncation(query.request, replyCounting(4), [&](const Bytes& received) {
            Bytes expected(received.begin() + 10, received.end());
            expected.resize(received[9]);
            Bytes bytes(5, 0xFF);
            EXPECT_EQ(query.call(sdk(), bytes), 0x1234);
            EXPECT_EQ(bytes, expected);
        });
    }
}

TEST_P(I3cCccTest, ACountOf255ReadsAsZeroBeyondTheResponse) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x04, 0x95, 0x00},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xA1});
    onWire({0x27, 0x00, 0x02, 0x00, 0x09, 0x19, 0x30, 0x01, 0x02, 0x90, 0x00},
           {0x2F, 0x00, 0x02, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xA1});
    Bytes expected(255);
    expected[0] = 0xA1;
    Bytes bytes;
    EXPECT_EQ(sdk().i3cCccGETCAPS(0x30, bytes, std::nullopt), 0);
    EXPECT_EQ(bytes, expected);
    bytes.clear();
    EXPECT_EQ(sdk().i3cCccGETSTATUS(0x30, bytes, std::nullopt), 0);
    EXPECT_EQ(bytes, expected);
}

TEST_P(I3cCccTest, GETBCRReadsZeroWhereItsResponseEnds) {
    withEveryTruncation({0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x01, 0x8E, 0x00}, replyCounting(1),
                        [&](const Bytes& received) {
                            uint8_t bcr = untouchedByte;
                            EXPECT_EQ(sdk().i3cCccGETBCR(0x30, bcr), 0x1234);
                            EXPECT_EQ(bcr, received[10]);
                        });
}

TEST_P(I3cCccTest, GETDCRReadsZeroWhereItsResponseEnds) {
    withEveryTruncation({0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x01, 0x8F, 0x00}, replyCounting(1),
                        [&](const Bytes& received) {
                            uint8_t dcr = untouchedByte;
                            EXPECT_EQ(sdk().i3cCccGETDCR(0x30, dcr), 0x1234);
                            EXPECT_EQ(dcr, received[10]);
                        });
}

TEST_P(I3cCccTest, GETMWLReadsZeroWhereItsResponseEnds) {
    withEveryTruncation({0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x02, 0x8B, 0x00}, replyCounting(2),
                        [&](const Bytes& received) {
                            uint16_t mwl = untouchedWord;
                            EXPECT_EQ(sdk().i3cCccGETMWL(0x30, mwl), 0x1234);
                            EXPECT_EQ(mwl, received[10] * 256 + received[11]);
                        });
}

TEST_P(I3cCccTest, GETMRLReadsZeroWhereItsResponseEnds) {
    withEveryTruncation({0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x03, 0x8C, 0x00}, replyCounting(3),
                        [&](const Bytes& received) {
                            uint16_t mrl = untouchedWord;
                            std::optional<uint8_t> ibiPayloadSize = untouchedByte;
                            EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0x1234);
                            EXPECT_EQ(mrl, received[10] * 256 + received[11]);
                            EXPECT_EQ(ibiPayloadSize.has_value(), received[9] == 3);
                            EXPECT_EQ(ibiPayloadSize.value_or(received[12]), received[12]);
                        });
}

TEST_P(I3cCccTest, RSTACTReadsZeroWhereItsResponseEnds) {
    withEveryTruncation(
        {0x01, 0x00, 0x09, 0x19, 0x30, 0x11, 0x01, 0x9A, 0x81}, replyCounting(1),
        [&](const Bytes& received) {
            uint8_t reply = untouchedByte;
            EXPECT_EQ(sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_TimeToResetPeripheral,
                                               read, &reply),
                      0x1234);
            EXPECT_EQ(reply, received[10]);
        });
}

} // namespace
