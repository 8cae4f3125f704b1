// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include <veltrasdk/i3c.h>

#include <gtest/gtest.h>

namespace {

TEST(I3cValues, TheCommonCommandCodesAreThoseOfTheStandard) {
    // MIPI I3C Basic v1.1.1, section 5.1.9.3, table "I3C Common Command Codes".
    EXPECT_EQ(CCC_ENECBroadcast, 0x00U);
    EXPECT_EQ(CCC_DISECBroadcast, 0x01U);
    EXPECT_EQ(CCC_RSTDAA, 0x06U);
    EXPECT_EQ(CCC_ENTDAA, 0x07U);
    EXPECT_EQ(CCC_SETMWLBroadcast, 0x09U);
    EXPECT_EQ(CCC_SETMRLBroadcast, 0x0AU);
    EXPECT_EQ(CCC_SETAASA, 0x29U);
    EXPECT_EQ(CCC_RSTACTBroadcast, 0x2AU);
    EXPECT_EQ(CCC_ENECDirect, 0x80U);
    EXPECT_EQ(CCC_DISECDirect, 0x81U);
    EXPECT_EQ(CCC_SETDASA, 0x87U);
    EXPECT_EQ(CCC_SETNEWDA, 0x88U);
    EXPECT_EQ(CCC_SETMWLDirect, 0x89U);
    EXPECT_EQ(CCC_SETMRLDirect, 0x8AU);
    EXPECT_EQ(CCC_GETMWL, 0x8BU);
    EXPECT_EQ(CCC_GETMRL, 0x8CU);
    EXPECT_EQ(CCC_GETPID, 0x8DU);
    EXPECT_EQ(CCC_GETBCR, 0x8EU);
    EXPECT_EQ(CCC_GETDCR, 0x8FU);
    EXPECT_EQ(CCC_GETSTATUS, 0x90U);
    EXPECT_EQ(CCC_GETCAPS, 0x95U);
    EXPECT_EQ(CCC_RSTACTDirect, 0x9AU);
}

TEST(I3cValues, TheDefiningBytesOfRSTACTAreThoseOfTheStandard) {
    // MIPI I3C Basic v1.1.1, section 5.1.9.3.26, table of RSTACT defining bytes.
    EXPECT_EQ(I3cTargetResetDefByte_NoReset, 0x00U);
    EXPECT_EQ(I3cTargetResetDefByte_ResetPeripheral, 0x01U);
    EXPECT_EQ(I3cTargetResetDefByte_ResetWholeTarget, 0x02U);
    EXPECT_EQ(I3cTargetResetDefByte_ResetDebugNetworkAdapter, 0x03U);
    EXPECT_EQ(I3cTargetResetDefByte_VirtualTargetDetect, 0x04U);
    EXPECT_EQ(I3cTargetResetDefByte_TimeToResetPeripheral, 0x81U);
    EXPECT_EQ(I3cTargetResetDefByte_TimeToResetWholeTarget, 0x82U);
    EXPECT_EQ(I3cTargetResetDefByte_TimeToResetDebugNetworkAdapter, 0x83U);
    EXPECT_EQ(I3cTargetResetDefByte_VirtualTargetIndication, 0x84U);
}

TEST(I3cValues, TheFieldsOfTheTransferControlByteAreThoseOfTheAdapter) {
    EXPECT_EQ(I3cTransferDirection_Write, 0U);
    EXPECT_EQ(I3cTransferDirection_Read, 1U);
    EXPECT_EQ(I3cTransferMode_Sdr, 0U);
    EXPECT_EQ(I3cTransferMode_HdrDdr, 1U);
    EXPECT_EQ(I3cTransferMode_LegacyI2c, 2U);
    EXPECT_EQ(I3cCccType_WithoutDefiningByte, 0U);
    EXPECT_EQ(I3cCccType_WithDefiningByte, 1U);
}

TEST(I3cValues, TransferFlagsAreCombinedWithoutLeavingTheirType) {
    constexpr I3cTransferFlags both =
        I3cTransferFlags_SkipBroadcastAddress | I3cTransferFlags_NoStop;
    EXPECT_EQ(both, 3U);
}

} // namespace
