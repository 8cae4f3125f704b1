// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/AsyncSdkTest.hpp"

namespace {

using test_support::Bytes;

using I3cCccEncoderTest = test_support::AsyncSdkTest;
INSTANTIATE_ON_BOTH_VARIANTS(I3cCccEncoderTest);

constexpr auto write = I3cTransferDirection_Write;
constexpr auto read = I3cTransferDirection_Read;
constexpr auto sdr = I3cTransferMode_Sdr;
constexpr auto plain = I3cCccType_WithoutDefiningByte;
constexpr auto defined = I3cCccType_WithDefiningByte;

TEST_P(I3cCccEncoderTest, ABroadcastOfENTDAAHasNineBytes) {
    EXPECT_EQ(sdk.i3cCccTransfer(0x0201, 0x7E, write, sdr, false, plain, 0, CCC_ENTDAA, 0, {}), 0);
    expectSent({0x27, 0x00, 0x01, 0x02, 0x09, 0x19, 0x7E, 0x00, 0x00, 0x07, 0x00});
}

TEST_P(I3cCccEncoderTest, TheDataFollowsTheDefiningByte) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, write, sdr, false, plain, 3, CCC_SETMRLDirect, 0,
                                 {0x00, 0x40, 0x08}),
              0);
    expectSent(
        {0x33, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x00, 0x03, 0x8A, 0x00, 0x00, 0x40, 0x08});
}

TEST_P(I3cCccEncoderTest, AReadWithADefiningByteHasTheControlByte0x11) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, read, sdr, false, defined, 4, CCC_GETCAPS, 0x5A, {}), 0);
    expectSent({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x11, 0x04, 0x95, 0x5A});
}

TEST_P(I3cCccEncoderTest, AWriteWithADefiningByteHasTheControlByte0x10) {
    EXPECT_EQ(
        sdk.i3cCccTransfer(1, 0x7E, write, sdr, false, defined, 1, CCC_RSTACTBroadcast, 0x02, {}),
        0);
    expectSent({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x7E, 0x10, 0x01, 0x2A, 0x02});
}

TEST_P(I3cCccEncoderTest, ADefiningByteOfZeroIsToldApartFromNone) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, read, sdr, false, defined, 4, CCC_GETCAPS, 0x00, {}), 0);
    expectSent({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x11, 0x04, 0x95, 0x00});
}

TEST_P(I3cCccEncoderTest, TheModeLiesInBitsOneAndTwo) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, write, I3cTransferMode_LegacyI2c, false, plain, 0,
                                 CCC_RSTDAA, 0, {}),
              0);
    expectSent({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x04, 0x00, 0x06, 0x00});
}

TEST_P(I3cCccEncoderTest, TheOptionFlagIsBitThree) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, write, sdr, true, plain, 0, CCC_RSTDAA, 0, {}), 0);
    expectSent({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x08, 0x00, 0x06, 0x00});
}

TEST_P(I3cCccEncoderTest, EveryFieldOfTheControlByteTogetherMakes0x1F) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, read, static_cast<I3cTransferMode>(3), true, defined, 0,
                                 CCC_GETCAPS, 0, {}),
              0);
    expectSent({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x1F, 0x00, 0x95, 0x00});
}

TEST_P(I3cCccEncoderTest, ADirectionAboveOneSpillsIntoTheModeAndMayCarryData) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, static_cast<I3cTransferDirection>(2), sdr, false, plain,
                                 1, CCC_ENECDirect, 0, {0x09}),
              0);
    expectSent({0x2B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x02, 0x01, 0x80, 0x00, 0x09});
}

TEST_P(I3cCccEncoderTest, BitsAboveTheControlByteAreCutOff) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, write, sdr, false, static_cast<I3cCccType>(0xFFFFFFF1), 0,
                                 static_cast<CCC>(0xFFFFFF06), 0, {}),
              0);
    expectSent({0x27, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x10, 0x00, 0x06, 0x00});
}

TEST_P(I3cCccEncoderTest, AddressLengthAndDefiningByteAreSentAsGiven) {
    EXPECT_EQ(
        sdk.i3cCccTransfer(1, 0xFF, write, sdr, false, defined, 0xFE, CCC_SETAASA, 0xFD, {0xFC}),
        0);
    expectSent({0x2B, 0x00, 0x01, 0x00, 0x09, 0x19, 0xFF, 0x10, 0xFE, 0x29, 0xFD, 0xFC});
}

TEST_P(I3cCccEncoderTest, TheDefiningByteIsZeroWhenTheTypeSaysThatThereIsNone) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, write, sdr, false, plain, 1, CCC_ENECDirect, 0xFD, {9}),
              0);
    expectSent({0x2B, 0x00, 0x01, 0x00, 0x09, 0x19, 0x30, 0x00, 0x01, 0x80, 0x00, 0x09});
}

TEST_P(I3cCccEncoderTest, DataLongerThanAPacketIsSentWhole) {
    const Bytes data(300, 0xA5);
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x7E, write, sdr, false, plain, 44, CCC_SETAASA, 0, data), 0);
    Bytes message{0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 0x2C, 0x29, 0x00};
    message.insert(message.end(), data.begin(), data.end());
    expectSentLong(message);
}

TEST_P(I3cCccEncoderTest, AReadWithDataIsRefused) {
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, read, sdr, false, plain, 1, CCC_GETBCR, 0, {0x00}),
              0x8000);
    expectNothingSent();
}

TEST_P(I3cCccEncoderTest, AMissingLinkWinsOverAReadWithData) {
    sdk.disconnect();
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x30, read, sdr, false, plain, 1, CCC_GETBCR, 0, {0x00}),
              0x4000);
    EXPECT_EQ(sdk.i3cCccTransfer(1, 0x7E, write, sdr, false, plain, 0, CCC_ENTDAA, 0, {}), 0x4000);
    expectNothingSent();
}

} // namespace
