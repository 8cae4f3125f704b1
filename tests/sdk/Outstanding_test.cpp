// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Outstanding.hpp"

#include <gtest/gtest.h>

namespace {

using Stage = Outstanding::Stage;

class OutstandingTest : public testing::Test {
protected:
    static constexpr size_t maxSizeInOneReport = 62;

    /// Takes a place, as a small operation with this identifier.
    Outstanding::Slot& take(uint16_t id, Stage stage = Stage::Preparing) {
        Outstanding::Slot* const slot = outstanding.findFree(Outstanding::maxOverlap);
        slot->stage = stage;
        slot->transactionId = id;
        slot->header = 0x09050000U + id;
        slot->requestSize = 512;
        slot->maxAnswerSize = maxSizeInOneReport;
        return *slot;
    }

    bool mayGo(const Outstanding::Slot& slot) {
        return outstanding.mayGo(slot, maxSizeInOneReport);
    }

    Outstanding outstanding;
};

TEST_F(OutstandingTest, ThereAreAsManyPlacesAsMayOverlap) {
    EXPECT_NE(outstanding.findFree(1), nullptr);
    take(1);
    EXPECT_EQ(outstanding.findFree(1), nullptr);
    EXPECT_NE(outstanding.findFree(2), nullptr);
    take(2, Stage::OnWire);
    take(3, Stage::Answered);
    EXPECT_EQ(outstanding.findFree(3), nullptr);
    take(4);
    EXPECT_EQ(outstanding.findFree(4), nullptr);
}

TEST_F(OutstandingTest, AnIdentifierIsTakenUntilItsPlaceIsFree) {
    Outstanding::Slot& slot = take(7);
    EXPECT_FALSE(outstanding.hasTwin(slot));
    const Outstanding::Slot& twin = take(7);
    const Outstanding::Slot& other = take(8);
    for (const Stage stage : {Stage::Preparing, Stage::OnWire, Stage::Answered, Stage::Ended}) {
        slot.stage = stage;
        EXPECT_TRUE(outstanding.hasTwin(twin));
        EXPECT_FALSE(outstanding.hasTwin(other));
    }
    slot.stage = Stage::Free;
    EXPECT_FALSE(outstanding.hasTwin(twin));
}

TEST_F(OutstandingTest, EndingAllEndsWhatWaitsForAResponseOnly) {
    const Outstanding::Slot& waits = take(1, Stage::OnWire);
    const Outstanding::Slot& answered = take(2, Stage::Answered);
    const Outstanding::Slot& preparing = take(3, Stage::Preparing);
    outstanding.endAll();
    EXPECT_EQ(waits.stage, Stage::Ended);
    EXPECT_EQ(answered.stage, Stage::Answered);
    EXPECT_EQ(preparing.stage, Stage::Preparing);
    EXPECT_EQ(outstanding.findAwaiting(waits.header), nullptr) << "its response comes too late";
}

TEST_F(OutstandingTest, SmallRequestsGoBesideEachOther) {
    take(1, Stage::OnWire);
    EXPECT_TRUE(mayGo(take(2)));
}

TEST_F(OutstandingTest, ALongRequestAndALongAnswerGoAlone) {
    Outstanding::Slot& small = take(1, Stage::OnWire);
    Outstanding::Slot& longRequest = take(2);
    longRequest.requestSize = 513;
    Outstanding::Slot& longAnswer = take(3);
    longAnswer.maxAnswerSize = maxSizeInOneReport + 1;
    for (const Outstanding::Slot* const large : {&longRequest, &longAnswer}) {
        small.stage = Stage::OnWire;
        EXPECT_FALSE(mayGo(*large));
        for (const Stage stage : {Stage::Preparing, Stage::Answered, Stage::Free}) {
            small.stage = stage;
            EXPECT_TRUE(mayGo(*large));
        }
    }
}

TEST_F(OutstandingTest, NothingGoesBesideARequestThatGoesAlone) {
    Outstanding::Slot& large = take(1, Stage::OnWire);
    large.requestSize = 513;
    const Outstanding::Slot& small = take(2);
    EXPECT_FALSE(mayGo(small));
    large.stage = Stage::Answered;
    EXPECT_TRUE(mayGo(small));
}

TEST_F(OutstandingTest, OnlyAnOperationOnTheWireAwaitsAResponse) {
    Outstanding::Slot& slot = take(7);
    for (const Stage stage : {Stage::Preparing, Stage::Answered, Stage::Free}) {
        slot.stage = stage;
        EXPECT_EQ(outstanding.findAwaiting(0x09050007), nullptr);
    }
    slot.stage = Stage::OnWire;
    EXPECT_EQ(outstanding.findAwaiting(0x09050007), &slot);
}

TEST_F(OutstandingTest, NobodyAwaitsTheResponseOfAnotherOperationOrCommand) {
    take(7, Stage::OnWire);
    EXPECT_EQ(outstanding.findAwaiting(0x09050008), nullptr);
    EXPECT_EQ(outstanding.findAwaiting(0x09040007), nullptr);
}

} // namespace
