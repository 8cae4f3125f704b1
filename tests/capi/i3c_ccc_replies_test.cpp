// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What the queries among the Common Command Codes write, and how much of it.
#include "capi/CccOutputs.hpp"
#include "support/CccQueryTest.hpp"

using namespace test_support;

namespace {

using I3cCccRepliesFunctionTest = CccQueryTest;
INSTANTIATE_IN_BOTH_MODES(I3cCccRepliesFunctionTest);

constexpr auto read = I3cTransferDirection_Read;
constexpr auto timeToResetPeripheral = I3cTargetResetDefByte_TimeToResetPeripheral;

TEST_P(I3cCccRepliesFunctionTest, GETPIDCopiesEveryReturnedByteAndNoOther) {
    onQuery(getPid, 0, 6, {0x04, 0x6A, 0x12, 0x34, 0x56, 0x78});
    Outputs outputs;
    EXPECT_EQ(VeltraSDK_I3cCccGETPID(handle(), 0x30, outputs.bytes.data()), 0);
    EXPECT_EQ(outputs.written(6), (Bytes{0x04, 0x6A, 0x12, 0x34, 0x56, 0x78}));
}

TEST_P(I3cCccRepliesFunctionTest, GETPIDCopiesAsManyBytesAsCountedUpTo255) {
    onQuery(getPid, 0, 255, {0x04});
    Outputs outputs;
    EXPECT_EQ(VeltraSDK_I3cCccGETPID(handle(), 0x30, outputs.bytes.data()), 0);
    Bytes expected(255);
    expected[0] = 0x04;
    EXPECT_EQ(outputs.written(255), expected);
}

TEST_P(I3cCccRepliesFunctionTest, GETPIDWritesNothingWithANonzeroStatus) {
    onQuery(getPid, 0x1234, 6, {0x04, 0x6A, 0x12, 0x34, 0x56, 0x78});
    Outputs outputs;
    EXPECT_EQ(VeltraSDK_I3cCccGETPID(handle(), 0x30, outputs.bytes.data()), 0x1234);
    EXPECT_TRUE(outputs.written(0).empty());
}

TEST_P(I3cCccRepliesFunctionTest, GETBCRWritesTheValueWhateverTheStatus) {
    onQuery(getBcr, 0x1234, 1, {0x27});
    uint8_t bcr = untouchedByte;
    EXPECT_EQ(VeltraSDK_I3cCccGETBCR(handle(), 0x30, &bcr), 0x1234);
    EXPECT_EQ(bcr, 0x27);
}

TEST_P(I3cCccRepliesFunctionTest, GETDCRWritesTheValueWhateverTheStatus) {
    onQuery(getDcr, 0x1234, 1, {0x63});
    uint8_t dcr = untouchedByte;
    EXPECT_EQ(VeltraSDK_I3cCccGETDCR(handle(), 0x30, &dcr), 0x1234);
    EXPECT_EQ(dcr, 0x63);
}

TEST_P(I3cCccRepliesFunctionTest, GETMWLWritesTheValueWhateverTheStatus) {
    onQuery(getMwl, 0x1234, 2, {0x56, 0x78});
    uint16_t mwl = untouchedWord;
    EXPECT_EQ(VeltraSDK_I3cCccGETMWL(handle(), 0x30, &mwl), 0x1234);
    EXPECT_EQ(mwl, 0x5678);
}

TEST_P(I3cCccRepliesFunctionTest, GETMRLWritesThePresentSizeAndItsFlagWhateverTheStatus) {
    onQuery(getMrl, 0x1234, 3, {0x00, 0x40, 0x08});
    Outputs out;
    EXPECT_EQ(VeltraSDK_I3cCccGETMRL(handle(), 0x30, &out.word, &out.size, &out.flag), 0x1234);
    EXPECT_EQ(out.word, 64);
    EXPECT_EQ(out.size, 8);
    EXPECT_EQ(out.flag, 1);
}

TEST_P(I3cCccRepliesFunctionTest, GETMRLClearsTheFlagAndLeavesAnAbsentSize) {
    onQuery(getMrl, 0, 2, {0x01, 0x00, 0x08});
    Outputs out;
    EXPECT_EQ(VeltraSDK_I3cCccGETMRL(handle(), 0x30, &out.word, &out.size, &out.flag), 0);
    EXPECT_EQ(out.word, 256);
    EXPECT_EQ(out.size, untouchedByte);
    EXPECT_EQ(out.flag, 0);
}

TEST_P(I3cCccRepliesFunctionTest, GETMRLClearsTheFlagBeforeItAsks) {
    Outputs out;
    hid.respond([&](const Bytes& report) {
        EXPECT_EQ(report, GetParam().output(
                              {0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x01, 0x03, 0x8C, 0x00}));
        EXPECT_EQ(out.flag, 0);
        return std::vector<Bytes>{GetParam().input({0x37, 0x00, 0x01, 0x00, 0x09, 0x19, 0x00, 0x00,
                                                    0x00, 0x00, 0x00, 0x03, 0x00, 0x40, 0x08})};
    });
    EXPECT_EQ(VeltraSDK_I3cCccGETMRL(handle(), 0x30, &out.word, &out.size, &out.flag), 0);
    EXPECT_EQ(out.flag, 1);
}

TEST_P(I3cCccRepliesFunctionTest, GETMRLNeedsNeitherTheSizeNorTheFlag) {
    Outputs out;
    onQuery(getMrl, 0, 3, {0x00, 0x40, 0x08});
    EXPECT_EQ(VeltraSDK_I3cCccGETMRL(handle(), 0x30, &out.word, nullptr, nullptr), 0);
    EXPECT_EQ(out.word, 64);
    onQuery(getMrl, 0, 3, {0x00, 0x40, 0x08});
    EXPECT_EQ(VeltraSDK_I3cCccGETMRL(handle(), 0x30, &out.word, &out.size, nullptr), 0);
    EXPECT_EQ(out.size, 8);
    onQuery(getMrl, 0, 3, {0x00, 0x40, 0x08});
    EXPECT_EQ(VeltraSDK_I3cCccGETMRL(handle(), 0x30, &out.word, nullptr, &out.flag), 0);
    EXPECT_EQ(out.flag, 1);
}

TEST_P(I3cCccRepliesFunctionTest, GETCAPSStoresTheBytesAndTheirNumber) {
    onQuery(getCapsOfZero, 0, 3, {0xC1, 0xC2, 0xC3});
    Outputs out;
    EXPECT_EQ(VeltraSDK_I3cCccGETCAPS(handle(), 0x30, out.bytes.data(), &out.count, true, 0), 0);
    EXPECT_EQ(out.count, 3);
    EXPECT_EQ(out.written(3), (Bytes{0xC1, 0xC2, 0xC3}));
}

TEST_P(I3cCccRepliesFunctionTest, GETSTATUSStoresTheBytesAndTheirNumber) {
    onQuery(getStatus, 0, 2, {0xD1, 0xD2});
    Outputs out;
    EXPECT_EQ(VeltraSDK_I3cCccGETSTATUS(handle(), 0x30, out.bytes.data(), &out.count, false, 0x91),
              0);
    EXPECT_EQ(out.count, 2);
    EXPECT_EQ(out.written(2), (Bytes{0xD1, 0xD2}));
}

TEST_P(I3cCccRepliesFunctionTest, AnEmptyReplyStoresACountOfZero) {
    onQuery(getCaps, 0, 0, {});
    Outputs out;
    EXPECT_EQ(VeltraSDK_I3cCccGETCAPS(handle(), 0x30, out.bytes.data(), &out.count, false, 0), 0);
    EXPECT_EQ(out.count, 0);
    EXPECT_TRUE(out.written(0).empty());
}

TEST_P(I3cCccRepliesFunctionTest, ACountOf255ReadsAsZeroBeyondTheResponse) {
    onQuery(getStatus, 0, 255, {0xD1});
    Outputs out;
    EXPECT_EQ(VeltraSDK_I3cCccGETSTATUS(handle(), 0x30, out.bytes.data(), &out.count, false, 0), 0);
    EXPECT_EQ(out.count, 255);
    Bytes expected(255);
    expected[0] = 0xD1;
    EXPECT_EQ(out.written(255), expected);
}

TEST_P(I3cCccRepliesFunctionTest, GETCAPSAndGETSTATUSWriteNothingWithANonzeroStatus) {
    Outputs out;
    onQuery(getCaps, 0x1234, 2, {0xD1, 0xD2});
    EXPECT_EQ(VeltraSDK_I3cCccGETCAPS(handle(), 0x30, out.bytes.data(), &out.count, false, 0),
              0x1234);
    onQuery(getStatus, 0x1234, 2, {0xD1, 0xD2});
    EXPECT_EQ(VeltraSDK_I3cCccGETSTATUS(handle(), 0x30, out.bytes.data(), &out.count, false, 0),
              0x1234);
    EXPECT_EQ(out.count, untouchedByte);
    EXPECT_TRUE(out.written(0).empty());
}

TEST_P(I3cCccRepliesFunctionTest, RSTACTAsAReadWritesTheReplyWhateverTheStatus) {
    onQuery(readResetAction, 0x1234, 1, {0x5A});
    uint8_t reply = untouchedByte;
    EXPECT_EQ(VeltraSDK_I3cCccRSTACTDirect(handle(), 0x30, timeToResetPeripheral, read, &reply),
              0x1234);
    EXPECT_EQ(reply, 0x5A);
}

} // namespace
