// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What the queries among the Common Command Codes make of their replies.
#include "support/CccQueryTest.hpp"

using namespace test_support;

namespace {

using I3cCccRepliesTest = CccQueryTest;
INSTANTIATE_IN_BOTH_MODES(I3cCccRepliesTest);

constexpr auto write = I3cTransferDirection_Write;
constexpr auto read = I3cTransferDirection_Read;

TEST_P(I3cCccRepliesTest, GETPIDReturnsTheSixBytesInBusOrder) {
    onQuery(getPid, 0, 6, {0x04, 0x6A, 0x12, 0x34, 0x56, 0x78});
    Bytes pid(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccGETPID(0x30, pid), 0);
    EXPECT_EQ(pid, (Bytes{0x04, 0x6A, 0x12, 0x34, 0x56, 0x78}));
}

TEST_P(I3cCccRepliesTest, GETPIDReturnsExactlyTheCountedBytesEvenIfFewerThanSix) {
    onQuery(getPid, 0, 2, {0x04, 0x6A, 0x12, 0x34, 0x56, 0x78});
    Bytes pid(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccGETPID(0x30, pid), 0);
    EXPECT_EQ(pid, (Bytes{0x04, 0x6A}));
}

TEST_P(I3cCccRepliesTest, ACountOfZeroEmptiesTheVectorWhateverTheStatus) {
    onQuery(getPid, 0x1234, 0, {});
    Bytes pid(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccGETPID(0x30, pid), 0x1234);
    EXPECT_TRUE(pid.empty());
}

TEST_P(I3cCccRepliesTest, AnyCodeIsSentAsGivenAndItsReplyReplacesTheVector) {
    onWire(
        {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x1D, 0x05, 0x94, 0x91},
        {0x37, 0x00, 0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0xEE, 0xEE, 0xEE, 0x03, 0x01, 0x02, 0x03});
    Bytes reply(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccTransfer(0x30, read, I3cTransferMode_LegacyI2c, true,
                                   I3cCccType_WithDefiningByte, 5, CCC{0x94}, 0x91, {}, reply),
              0x1234);
    EXPECT_EQ(reply, (Bytes{0x01, 0x02, 0x03}));
}

TEST_P(I3cCccRepliesTest, AnyCodeIsSentWithItsDataAndItsDefiningByteOnlyWhereThereIsOne) {
    onCommand(0, {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x02, 0x0B, 0x00, 0xD1, 0xD2});
    Bytes reply(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccTransfer(0x7E, write, I3cTransferMode_Sdr, false,
                                   I3cCccType_WithoutDefiningByte, 2, CCC{0x0B}, 0x91, {0xD1, 0xD2},
                                   reply),
              0);
    EXPECT_TRUE(reply.empty());
}

TEST_P(I3cCccRepliesTest, AReadOfAnyCodeWithDataIsRefused) {
    Bytes reply{0xEE};
    EXPECT_EQ(sdk().i3cCccTransfer(0x30, read, I3cTransferMode_Sdr, false,
                                   I3cCccType_WithoutDefiningByte, 2, CCC{0x94}, 0, {0xD1}, reply),
              0x8000);
    EXPECT_EQ(reply, Bytes{0xEE});
    expectNothingSent();
}

TEST_P(I3cCccRepliesTest, ATruncatedReplyOfAnyCodeReadsAsZeros) {
    withEveryTruncation(
        {0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x03, 0x94, 0x00},
        {0x01, 0x00, 0x09, 0x19, 0x34, 0x12, 0x00, 0x00, 0x00, 0x03, 0xA1, 0xA2, 0xA3},
        [&](const Bytes& received) {
            Bytes reply;
            EXPECT_EQ(sdk().i3cCccTransfer(0x30, read, I3cTransferMode_Sdr, false,
                                           I3cCccType_WithoutDefiningByte, 3, CCC{0x94}, 0, {},
                                           reply),
                      0x1234);
            const auto begin = received.begin() + 10;
            EXPECT_EQ(reply, Bytes(begin, begin + received[9]));
        });
}

TEST_P(I3cCccRepliesTest, GETBCRStoresByteTenWhateverTheCountAndTheStatus) {
    onQuery(getBcr, 0x1234, 0, {0x27});
    uint8_t bcr = untouchedByte;
    EXPECT_EQ(sdk().i3cCccGETBCR(0x30, bcr), 0x1234);
    EXPECT_EQ(bcr, 0x27);
}

TEST_P(I3cCccRepliesTest, GETDCRStoresByteTenWhateverTheCountAndTheStatus) {
    onQuery(getDcr, 0x1234, 0, {0x63});
    uint8_t dcr = untouchedByte;
    EXPECT_EQ(sdk().i3cCccGETDCR(0x30, dcr), 0x1234);
    EXPECT_EQ(dcr, 0x63);
}

TEST_P(I3cCccRepliesTest, GETMWLTakesTheMostSignificantByteFirst) {
    onQuery(getMwl, 0, 2, {0x12, 0x34});
    uint16_t mwl = untouchedWord;
    EXPECT_EQ(sdk().i3cCccGETMWL(0x30, mwl), 0);
    EXPECT_EQ(mwl, 0x12 * 256 + 0x34);
}

TEST_P(I3cCccRepliesTest, GETMWLStoresItsValueWhateverTheCountAndTheStatus) {
    onQuery(getMwl, 0x1234, 0, {0x12, 0x34});
    uint16_t mwl = untouchedWord;
    EXPECT_EQ(sdk().i3cCccGETMWL(0x30, mwl), 0x1234);
    EXPECT_EQ(mwl, 0x1234);
}

TEST_P(I3cCccRepliesTest, GETMRLOfTwoBytesYields256AndNoIbiPayloadSize) {
    onQuery(getMrl, 0, 2, {0x01, 0x00, 0x08});
    uint16_t mrl = untouchedWord;
    std::optional<uint8_t> ibiPayloadSize = untouchedByte;
    EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0);
    EXPECT_EQ(mrl, 256);
    EXPECT_EQ(ibiPayloadSize, std::nullopt);
}

TEST_P(I3cCccRepliesTest, GETMRLOfThreeBytesYields64AndAnIbiPayloadSizeOfEight) {
    onQuery(getMrl, 0, 3, {0x00, 0x40, 0x08});
    uint16_t mrl = untouchedWord;
    std::optional<uint8_t> ibiPayloadSize;
    EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0);
    EXPECT_EQ(mrl, 64);
    EXPECT_EQ(ibiPayloadSize, uint8_t{8});
}

TEST_P(I3cCccRepliesTest, GETMRLOfAnyOtherLengthYieldsNoIbiPayloadSize) {
    for (const uint8_t count : Bytes{0, 1, 4, 255}) {
        onQuery(getMrl, 0, count, {0x00, 0x40, 0x08});
        uint16_t mrl = untouchedWord;
        std::optional<uint8_t> ibiPayloadSize = untouchedByte;
        EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0);
        EXPECT_EQ(mrl, 64);
        EXPECT_EQ(ibiPayloadSize, std::nullopt);
    }
}

TEST_P(I3cCccRepliesTest, GETMRLStoresItsOutputsWhateverTheStatus) {
    onQuery(getMrl, 0x1234, 3, {0x12, 0x34, 0x56});
    uint16_t mrl = untouchedWord;
    std::optional<uint8_t> ibiPayloadSize;
    EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0x1234);
    EXPECT_EQ(mrl, 0x1234);
    EXPECT_EQ(ibiPayloadSize, uint8_t{0x56});
}

TEST_P(I3cCccRepliesTest, GETCAPSWithoutDefiningByteAndWithZeroDifferInTheControlByte) {
    onQuery(getCaps, 0, 2, {0xC1, 0xC2});
    Bytes capabilities(9, 0xFF);
    EXPECT_EQ(sdk().i3cCccGETCAPS(0x30, capabilities, std::nullopt), 0);
    EXPECT_EQ(capabilities, (Bytes{0xC1, 0xC2}));
    onQuery(getCapsOfZero, 0x1234, 4, {0xC1, 0xC2, 0xC3, 0xC4});
    EXPECT_EQ(sdk().i3cCccGETCAPS(0x30, capabilities, uint8_t{0}), 0x1234);
    EXPECT_EQ(capabilities, (Bytes{0xC1, 0xC2, 0xC3, 0xC4}));
}

TEST_P(I3cCccRepliesTest, GETSTATUSReturnsTheCountedBytesWhateverTheStatus) {
    onQuery(getStatusOf0x91, 0x1234, 3, {0xD1, 0xD2, 0xD3});
    Bytes status;
    EXPECT_EQ(sdk().i3cCccGETSTATUS(0x30, status, uint8_t{0x91}), 0x1234);
    EXPECT_EQ(status, (Bytes{0xD1, 0xD2, 0xD3}));
}

TEST_P(I3cCccRepliesTest, RSTACTAsAReadStoresByteTenWhateverTheCountAndTheStatus) {
    onQuery(readResetAction, 0x1234, 0, {0x5A});
    uint8_t reply = untouchedByte;
    EXPECT_EQ(
        sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_TimeToResetPeripheral, read, &reply),
        0x1234);
    EXPECT_EQ(reply, 0x5A);
}

TEST_P(I3cCccRepliesTest, RSTACTAsAReadAcceptsANullReply) {
    onQuery(readResetAction, 0, 1, {0x5A});
    EXPECT_EQ(
        sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_TimeToResetPeripheral, read, nullptr),
        0);
}

TEST_P(I3cCccRepliesTest, RSTACTAsAWriteStoresNothing) {
    onQuery(writeResetAction, 0, 1, {0x5A});
    uint8_t reply = untouchedByte;
    EXPECT_EQ(sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_ResetPeripheral, write, &reply),
              0);
    EXPECT_EQ(reply, untouchedByte);
}

TEST_P(I3cCccRepliesTest, RSTACTInAnUnknownDirectionHasALengthOfOneAndStoresNothing) {
    onWire({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x12, 0x01, 0x9A, 0x01},
           {0x2F, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x5A});
    uint8_t reply = untouchedByte;
    EXPECT_EQ(sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_ResetPeripheral,
                                       static_cast<I3cTransferDirection>(2), &reply),
              0);
    EXPECT_EQ(reply, untouchedByte);
}

TEST_P(I3cCccRepliesTest, ByteStringsHaveTheCountedSizeWhereverTheResponseEnds) {
    struct Case {
        CccQuery query;
        uint16_t (*call)(VeltraSDK& sdk, Bytes& bytes);
    };
    const Case cases[] = {
        {getPid, [](VeltraSDK& sdk, Bytes& bytes) { return sdk.i3cCccGETPID(0x30, bytes); }},
        {getCaps,
         [](VeltraSDK& sdk, Bytes& bytes) { return sdk.i3cCccGETCAPS(0x30, bytes, std::nullopt); }},
        {getStatus, [](VeltraSDK& sdk,
                       Bytes& bytes) { return sdk.i3cCccGETSTATUS(0x30, bytes, std::nullopt); }},
    };
    constexpr uint8_t oneMoreThanCarried = 4;
    for (const Case& each : cases) {
        withEveryTruncatedReply(each.query, oneMoreThanCarried, [&](const Bytes& received) {
            Bytes expected(received.begin() + 10, received.end());
            expected.resize(received[9]);
            Bytes bytes(5, 0xFF);
            EXPECT_EQ(each.call(sdk(), bytes), 0x1234);
            EXPECT_EQ(bytes, expected);
        });
    }
}

TEST_P(I3cCccRepliesTest, ACountOf255ReadsAsZeroBeyondTheResponse) {
    onQuery(getCaps, 0, 255, {0xA1});
    onQuery(getStatus, 0, 255, {0xA1});
    Bytes expected(255);
    expected[0] = 0xA1;
    Bytes bytes;
    EXPECT_EQ(sdk().i3cCccGETCAPS(0x30, bytes, std::nullopt), 0);
    EXPECT_EQ(bytes, expected);
    bytes.clear();
    EXPECT_EQ(sdk().i3cCccGETSTATUS(0x30, bytes, std::nullopt), 0);
    EXPECT_EQ(bytes, expected);
}

TEST_P(I3cCccRepliesTest, GETBCRReadsZeroWhereItsResponseEnds) {
    withEveryTruncatedReply(getBcr, 1, [&](const Bytes& received) {
        uint8_t bcr = untouchedByte;
        EXPECT_EQ(sdk().i3cCccGETBCR(0x30, bcr), 0x1234);
        EXPECT_EQ(bcr, received[10]);
    });
}

TEST_P(I3cCccRepliesTest, GETDCRReadsZeroWhereItsResponseEnds) {
    withEveryTruncatedReply(getDcr, 1, [&](const Bytes& received) {
        uint8_t dcr = untouchedByte;
        EXPECT_EQ(sdk().i3cCccGETDCR(0x30, dcr), 0x1234);
        EXPECT_EQ(dcr, received[10]);
    });
}

TEST_P(I3cCccRepliesTest, GETMWLReadsZeroWhereItsResponseEnds) {
    withEveryTruncatedReply(getMwl, 2, [&](const Bytes& received) {
        uint16_t mwl = untouchedWord;
        EXPECT_EQ(sdk().i3cCccGETMWL(0x30, mwl), 0x1234);
        EXPECT_EQ(mwl, received[10] * 256 + received[11]);
    });
}

TEST_P(I3cCccRepliesTest, GETMRLReadsZeroWhereItsResponseEnds) {
    withEveryTruncatedReply(getMrl, 3, [&](const Bytes& received) {
        uint16_t mrl = untouchedWord;
        std::optional<uint8_t> ibiPayloadSize = untouchedByte;
        EXPECT_EQ(sdk().i3cCccGETMRL(0x30, mrl, ibiPayloadSize), 0x1234);
        EXPECT_EQ(mrl, received[10] * 256 + received[11]);
        EXPECT_EQ(ibiPayloadSize.has_value(), received[9] == 3);
        EXPECT_EQ(ibiPayloadSize.value_or(received[12]), received[12]);
    });
}

TEST_P(I3cCccRepliesTest, RSTACTReadsZeroWhereItsResponseEnds) {
    withEveryTruncatedReply(readResetAction, 1, [&](const Bytes& received) {
        uint8_t reply = untouchedByte;
        EXPECT_EQ(sdk().i3cCccRSTACTDirect(0x30, I3cTargetResetDefByte_TimeToResetPeripheral, read,
                                           &reply),
                  0x1234);
        EXPECT_EQ(reply, received[10]);
    });
}

} // namespace
