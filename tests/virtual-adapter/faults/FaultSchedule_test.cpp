// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/FaultSchedule.hpp"

#include <gtest/gtest.h>

using virtual_adapter::FaultKind;
using virtual_adapter::FaultSchedule;
using virtual_adapter::parseFault;

namespace {

constexpr uint16_t i2cRead = 0x0905;
constexpr uint16_t i2cWrite = 0x0904;

/// One letter for each request: x where the fault strikes.
std::string strikes(FaultSchedule& schedule, FaultKind kind,
                    const std::vector<FaultSchedule::Code>& codes) {
    std::string struck;
    for (const FaultSchedule::Code code : codes) {
        const bool isNext = schedule.next(code).has(kind);
        const bool isNow = schedule.begin(code).has(kind);
        EXPECT_EQ(isNext, isNow);
        struck += isNow ? 'x' : '.';
    }
    return struck;
}

TEST(FaultSchedule, OneThatStrikesOnceDoesSoAtItsRequest) {
    FaultSchedule schedule({parseFault("lost-response@2")});
    EXPECT_EQ(strikes(schedule, FaultKind::LostResponse, {i2cRead, std::nullopt, 7, i2cRead}),
              ".x..");
    EXPECT_EQ(schedule.requestCount(), 4U);
}

TEST(FaultSchedule, OneThatIsForGoodStrikesFromItsRequestOn) {
    FaultSchedule schedule({parseFault("stall@i2c-read:2")});
    EXPECT_EQ(strikes(schedule, FaultKind::Stall,
                      {i2cRead, i2cWrite, std::nullopt, i2cRead, i2cWrite, std::nullopt}),
              "...xxx");
}

TEST(FaultSchedule, TwoOfAKindStrikeTwice) {
    FaultSchedule schedule({parseFault("lost-response@1"), parseFault("lost-response@i2c-read")});
    EXPECT_EQ(strikes(schedule, FaultKind::LostResponse, {i2cWrite, i2cWrite, i2cRead, i2cRead}),
              "x.x.");
}

TEST(FaultSchedule, OneThatIsAddedCountsItsCommandFromThenOn) {
    FaultSchedule schedule({});
    strikes(schedule, FaultKind::ShortFrame, {i2cRead, i2cRead});
    EXPECT_EQ(schedule.add(parseFault("short-frame@i2c-read:2")), "");
    EXPECT_EQ(schedule.add(parseFault("short-frame@6")), "");
    EXPECT_EQ(strikes(schedule, FaultKind::ShortFrame, {i2cRead, i2cRead, i2cRead, i2cRead}),
              ".x.x");
}

TEST(FaultSchedule, OneWhoseRequestHasPassedIsNotAdded) {
    FaultSchedule schedule({});
    strikes(schedule, FaultKind::Stall, {i2cRead, i2cRead, i2cRead});
    EXPECT_EQ(schedule.add(parseFault("stall")),
              "request 3 has passed: the next is 4; say where, as @4 or @i2c-read");
    EXPECT_EQ(schedule.add(parseFault("stall@4")), "");
}

TEST(FaultSchedule, OneOfTheHostIsNotAdded) {
    FaultSchedule schedule({});
    EXPECT_EQ(schedule.add(parseFault("no-permission")),
              "no-permission lasts from the start: it is an option of 'run'");
}

TEST(FaultSchedule, ClearingEndsWhatLastsAndForgetsWhatIsToCome) {
    FaultSchedule schedule({parseFault("stall@1"), parseFault("lost-response@3")});
    EXPECT_TRUE(schedule.begin(i2cRead).has(FaultKind::Stall));
    schedule.clear();
    EXPECT_FALSE(schedule.begin(i2cRead).has(FaultKind::Stall));
    EXPECT_FALSE(schedule.begin(i2cRead).has(FaultKind::LostResponse));
}

} // namespace
