#include "support/AsyncSdkTest.hpp"

namespace {

using test_support::Bytes;

using I3cTransferEncoderTest = test_support::AsyncSdkTest;
INSTANTIATE_ON_BOTH_MODELS(I3cTransferEncoderTest);

constexpr auto none = I3cTransferFlags_None;
constexpr auto one = static_cast<I3cTransferFlags>(1);

TEST_P(I3cTransferEncoderTest, AnSdrWriteCarriesItsSubAddressApartFromItsData) {
    EXPECT_EQ(sdk.i3cSdrWrite(0x0201, 0x50, {0x10}, {0xAA, 0xBB}, none), 0);
    expectSent({0x43, 0x00, 0x01, 0x02, 0x08, 0x19, 0x50, 0x00, 0x00, 0x01, 0x10, 0x00, 0x00, 0x00,
                0x02, 0x00, 0xAA, 0xBB});
}

TEST_P(I3cTransferEncoderTest, AnSdrReadOfFourBytesWithoutSubAddressHasItsFieldAllZero) {
    EXPECT_EQ(sdk.i3cSdrRead(1, 0x50, {}, 4, none), 0);
    expectSent({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x04, 0x00});
}

TEST_P(I3cTransferEncoderTest, AnHdrDdrWriteCarriesItsCommandCodeAndNoSubAddress) {
    EXPECT_EQ(sdk.i3cHdrDdrWrite(1, 0x50, 0x7F, {0xAA, 0xBB}), 0);
    expectSent({0x43, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x02, 0x7F, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x02, 0x00, 0xAA, 0xBB});
}

TEST_P(I3cTransferEncoderTest, AnHdrDdrReadCarriesItsCommandCodeAndTheLength) {
    EXPECT_EQ(sdk.i3cHdrDdrRead(1, 0x50, 0x80, 8), 0);
    expectSent({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x03, 0x80, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x08, 0x00});
}

TEST_P(I3cTransferEncoderTest, ALegacyI2cWriteHasModeTwo) {
    EXPECT_EQ(sdk.i3cLegacyI2cWrite(1, 0x50, {0x10}, {0xAA, 0xBB}, none), 0);
    expectSent({0x43, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x04, 0x00, 0x01, 0x10, 0x00, 0x00, 0x00,
                0x02, 0x00, 0xAA, 0xBB});
}

TEST_P(I3cTransferEncoderTest, ALegacyI2cReadHasModeTwoAndTheReadBit) {
    EXPECT_EQ(sdk.i3cLegacyI2cRead(1, 0x50, {0x10}, 0x1234, none), 0);
    expectSent({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x05, 0x00, 0x01, 0x10, 0x00, 0x00, 0x00,
                0x34, 0x12});
}

TEST_P(I3cTransferEncoderTest, FlagsOfOneGiveAnSdrWriteTheControlByte0x08) {
    EXPECT_EQ(sdk.i3cSdrWrite(1, 0x50, {0x10}, {0xAA, 0xBB}, one), 0);
    expectSent({0x43, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x08, 0x00, 0x01, 0x10, 0x00, 0x00, 0x00,
                0x02, 0x00, 0xAA, 0xBB});
}

TEST_P(I3cTransferEncoderTest, FlagsOfOneGiveAnSdrReadTheControlByte0x09) {
    EXPECT_EQ(sdk.i3cSdrRead(1, 0x50, {}, 4, one), 0);
    expectSent({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x09, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x04, 0x00});
}

TEST_P(I3cTransferEncoderTest, FlagsOfOneGiveALegacyI2cWriteTheControlByte0x0C) {
    EXPECT_EQ(sdk.i3cLegacyI2cWrite(1, 0x50, {0x10}, {0xAA, 0xBB}, one), 0);
    expectSent({0x43, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x0C, 0x00, 0x01, 0x10, 0x00, 0x00, 0x00,
                0x02, 0x00, 0xAA, 0xBB});
}

TEST_P(I3cTransferEncoderTest, FlagsOfOneGiveALegacyI2cReadTheControlByte0x0D) {
    EXPECT_EQ(sdk.i3cLegacyI2cRead(1, 0x50, {}, 4, one), 0);
    expectSent({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x0D, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x04, 0x00});
}

TEST_P(I3cTransferEncoderTest, OnlyTheLowFiveBitsOfTheFlagsAreSent) {
    EXPECT_EQ(sdk.i3cLegacyI2cRead(1, 0x50, {}, 4, static_cast<I3cTransferFlags>(0xFFFFFFFF)), 0);
    expectSent({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0xFD, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x04, 0x00});
}

TEST_P(I3cTransferEncoderTest, FlagsAboveTheLowFiveBitsAreCutOff) {
    EXPECT_EQ(sdk.i3cSdrRead(1, 0x50, {}, 4, static_cast<I3cTransferFlags>(0x20)), 0);
    expectSent({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x04, 0x00});
}

TEST_P(I3cTransferEncoderTest, ASubAddressOfFourBytesFillsItsFieldInTheCallersOrder) {
    EXPECT_EQ(sdk.i3cSdrWrite(1, 0x50, {0x11, 0x22, 0x33, 0x44}, {0xAA}, none), 0);
    expectSent({0x3F, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x00, 0x00, 0x04, 0x11, 0x22, 0x33, 0x44,
                0x01, 0x00, 0xAA});
}

TEST_P(I3cTransferEncoderTest, ASubAddressOfThreeBytesIsFollowedByOneZero) {
    EXPECT_EQ(sdk.i3cLegacyI2cRead(1, 0x50, {0x11, 0x22, 0x33}, 0xFFFF, none), 0);
    expectSent({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x05, 0x00, 0x03, 0x11, 0x22, 0x33, 0x00,
                0xFF, 0xFF});
}

TEST_P(I3cTransferEncoderTest, ASubAddressOfFiveBytesIsRefused) {
    const Bytes tooLong{1, 2, 3, 4, 5};
    EXPECT_EQ(sdk.i3cSdrWrite(1, 0x50, tooLong, {}, none), 0x8000);
    EXPECT_EQ(sdk.i3cSdrRead(1, 0x50, tooLong, 4, none), 0x8000);
    EXPECT_EQ(sdk.i3cLegacyI2cWrite(1, 0x50, tooLong, {}, none), 0x8000);
    EXPECT_EQ(sdk.i3cLegacyI2cRead(1, 0x50, tooLong, 4, none), 0x8000);
    expectNothingSent();
}

TEST_P(I3cTransferEncoderTest, ASubAddressOf256BytesIsRefused) {
    EXPECT_EQ(sdk.i3cSdrWrite(1, 0x50, Bytes(256), {}, none), 0x8000);
    expectNothingSent();
}

TEST_P(I3cTransferEncoderTest, WritesWithoutDataAreSent) {
    EXPECT_EQ(sdk.i3cSdrWrite(1, 0x50, {}, {}, none), 0);
    expectSent({0x3B, 0x00, 0x01, 0x00, 0x08, 0x19, 0x50, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x00});
}

/// A write of so many bytes, as it goes on the wire with the given length field.
Bytes longWrite(uint8_t control, const Bytes& data, uint8_t lengthLow, uint8_t lengthHigh) {
    Bytes message{0x01, 0x00, 0x08, 0x19, 0x50, control,   0x00,
                  0x00, 0x00, 0x00, 0x00, 0x00, lengthLow, lengthHigh};
    message.insert(message.end(), data.begin(), data.end());
    return message;
}

TEST_P(I3cTransferEncoderTest, AWriteOf65535BytesFillsTheLengthField) {
    const Bytes data(65535, 0xA5);
    EXPECT_EQ(sdk.i3cSdrWrite(1, 0x50, {}, data, none), 0);
    expectSentLong(longWrite(0x00, data, 0xFF, 0xFF));
}

TEST_P(I3cTransferEncoderTest, AWriteOf65536BytesIsSentWholeWithALengthOfZero) {
    const Bytes data(65536, 0xA5);
    EXPECT_EQ(sdk.i3cLegacyI2cWrite(1, 0x50, {}, data, none), 0);
    expectSentLong(longWrite(0x04, data, 0x00, 0x00));
}

TEST_P(I3cTransferEncoderTest, AnHdrDdrWriteOf65537BytesIsSentWholeWithALengthOfOne) {
    const Bytes data(65537, 0xA5);
    EXPECT_EQ(sdk.i3cHdrDdrWrite(1, 0x50, 0x00, data), 0);
    expectSentLong(longWrite(0x02, data, 0x01, 0x00));
}

TEST_P(I3cTransferEncoderTest, TheTargetResetPatternIsPatternZero) {
    EXPECT_EQ(sdk.i3cTargetResetPattern(1), 0);
    expectSent({0x17, 0x00, 0x01, 0x00, 0x0A, 0x19, 0x00});
}

TEST_P(I3cTransferEncoderTest, TheHdrExitPatternIsPatternOne) {
    EXPECT_EQ(sdk.i3cHdrExitPattern(1), 0);
    expectSent({0x17, 0x00, 0x01, 0x00, 0x0A, 0x19, 0x01});
}

TEST_P(I3cTransferEncoderTest, AMissingLinkWinsOverASubAddressThatIsTooLong) {
    sdk.disconnect();
    for (const Bytes& subAddress : {Bytes(), Bytes(5)}) {
        EXPECT_EQ(sdk.i3cSdrWrite(1, 0x50, subAddress, {0xAA}, none), 0x4000);
        EXPECT_EQ(sdk.i3cSdrRead(1, 0x50, subAddress, 4, none), 0x4000);
        EXPECT_EQ(sdk.i3cLegacyI2cWrite(1, 0x50, subAddress, {0xAA}, none), 0x4000);
        EXPECT_EQ(sdk.i3cLegacyI2cRead(1, 0x50, subAddress, 4, none), 0x4000);
    }
    expectNothingSent();
}

TEST_P(I3cTransferEncoderTest, NothingIsSentWithoutALink) {
    sdk.disconnect();
    EXPECT_EQ(sdk.i3cHdrDdrWrite(1, 0x50, 0x00, {0xAA}), 0x4000);
    EXPECT_EQ(sdk.i3cHdrDdrRead(1, 0x50, 0x80, 4), 0x4000);
    EXPECT_EQ(sdk.i3cTargetResetPattern(1), 0x4000);
    EXPECT_EQ(sdk.i3cHdrExitPattern(1), 0x4000);
    expectNothingSent();
}

} // namespace
