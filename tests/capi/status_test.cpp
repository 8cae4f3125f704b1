// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include <veltrasdk/status.h>

#include <cstdint>
#include <map>
#include <string>

#include <gtest/gtest.h>

extern "C" const char* statusNameInC(int16_t result);

namespace {

const std::map<uint16_t, std::string> names{
    {0x0000, "Success"},          {0x0001, "UnknownCommand"},
    {0x0002, "MalformedRequest"}, {0x0003, "InvalidParameter"},
    {0x0004, "NoVoltage"},        {0x0005, "NotInitialised"},
    {0x0006, "NotAcknowledged"},  {0x0007, "DataNotAcknowledged"},
    {0x0008, "NoPullUp"},         {0x0009, "BusStuck"},
    {0x0030, "AddressReserved"},  {0x0031, "AddressInUse"},
    {0x0032, "LengthAboveLimit"}, {0x2000, "NoResponse"},
    {0x4000, "NotConnected"},     {0x6000, "UnexpectedResponse"},
    {0x8000, "InvalidArgument"},  {0xA000, "ShortResponse"},
};

/// Checks all 65536 values.
template <typename NameOf>
void expectNames(const NameOf& nameOf) {
    for (unsigned value = 0; value <= UINT16_MAX; ++value) {
        const char* const name = nameOf(static_cast<uint16_t>(value));
        const auto expected = names.find(static_cast<uint16_t>(value));
        if (expected == names.end()) {
            ASSERT_EQ(name, nullptr) << value;
        } else {
            ASSERT_STREQ(name, expected->second.c_str()) << value;
        }
    }
}

TEST(StatusName, InCEveryKnownResultHasANameAndNoOtherHas) {
    expectNames([](uint16_t value) { return statusNameInC(static_cast<int16_t>(value)); });
}

TEST(StatusName, TheResultsOfCFunctionsHaveTheSameNamesInCpp) {
    expectNames([](uint16_t value) { return veltraStatusName(static_cast<int16_t>(value)); });
}

TEST(StatusName, TheResultsOfTheClassesHaveTheSameNames) {
    expectNames([](uint16_t value) { return veltraStatusName(value); });
}

TEST(StatusName, AnEnumeratorHasAName) {
    EXPECT_STREQ(veltraStatusName(ResultCode_ShortResponse), "ShortResponse");
    EXPECT_STREQ(veltraStatusName(VeltraStatus_NoPullUp), "NoPullUp");
}

} // namespace
