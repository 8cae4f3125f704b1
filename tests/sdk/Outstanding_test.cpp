// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Outstanding.hpp"

#include <gtest/gtest.h>

namespace {

using Stage = Outstanding::Stage;

class OutstandingTest : public testing::Test {
protected:
    /// Takes a place, as the operation with this identifier.
    Outstanding::Slot& take(uint16_t id, Stage stage = Stage::Preparing) {
        Outstanding::Slot* const slot = outstanding.findFree(Outstanding::maxOverlap);
        slot->stage = stage;
        slot->transactionId = id;
        slot->turn = id;
        slot->command = CommandCode::I2cRead;
        return *slot;
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
    take(4, Stage::Over);
    EXPECT_EQ(outstanding.findFree(4), nullptr);
}

TEST_F(OutstandingTest, AnIdentifierIsFoundUntilItsPlaceIsFree) {
    EXPECT_EQ(outstanding.find(0), nullptr);
    Outstanding::Slot& slot = take(7);
    for (const Stage stage : {Stage::Preparing, Stage::OnWire, Stage::Answered, Stage::Over}) {
        slot.stage = stage;
        EXPECT_EQ(outstanding.find(7), &slot);
    }
    slot.stage = Stage::Free;
    EXPECT_EQ(outstanding.find(7), nullptr);
}

TEST_F(OutstandingTest, SmallRequestsGoBesideEachOther) {
    take(1, Stage::OnWire);
    EXPECT_TRUE(outstanding.mayGo(take(2)));
}

TEST_F(OutstandingTest, ARequestThatGoesAloneWaitsForThoseOnTheWire) {
    Outstanding::Slot& small = take(1, Stage::OnWire);
    Outstanding::Slot& large = take(2);
    large.goesAlone = true;
    EXPECT_FALSE(outstanding.mayGo(large));
    for (const Stage stage : {Stage::Answered, Stage::Over, Stage::Free}) {
        small.stage = stage;
        EXPECT_TRUE(outstanding.mayGo(large));
    }
}

TEST_F(OutstandingTest, NothingGoesBesideARequestThatGoesAlone) {
    Outstanding::Slot& large = take(1, Stage::OnWire);
    large.goesAlone = true;
    const Outstanding::Slot& small = take(2);
    EXPECT_FALSE(outstanding.mayGo(small));
    large.stage = Stage::Answered;
    EXPECT_TRUE(outstanding.mayGo(small));
}

TEST_F(OutstandingTest, RequestsGoInTheOrderOfTheirTurns) {
    Outstanding::Slot& first = take(1);
    Outstanding::Slot& second = take(2);
    EXPECT_TRUE(outstanding.mayGo(first));
    EXPECT_FALSE(outstanding.mayGo(second));
    first.stage = Stage::OnWire;
    EXPECT_TRUE(outstanding.mayGo(second));
}

TEST_F(OutstandingTest, OnlyAnOperationOnTheWireIsAnsweredAndOnlyOnce) {
    const std::vector<uint8_t> response{0x07, 0x00, 0x05, 0x09, 0x34, 0x12};
    Outstanding::Slot& slot = take(7);
    EXPECT_FALSE(outstanding.answer(response));
    slot.stage = Stage::OnWire;
    EXPECT_TRUE(outstanding.answer(response));
    EXPECT_EQ(slot.stage, Stage::Answered);
    EXPECT_EQ(slot.response, response);
    EXPECT_FALSE(outstanding.answer({0x07, 0x00, 0x05, 0x09, 0x00, 0x00}));
    EXPECT_EQ(slot.response, response);
}

TEST_F(OutstandingTest, AResponseOfAnotherOperationOrCommandAnswersNobody) {
    take(7, Stage::OnWire);
    EXPECT_FALSE(outstanding.answer({0x08, 0x00, 0x05, 0x09, 0x00, 0x00}));
    EXPECT_FALSE(outstanding.answer({0x07, 0x00, 0x04, 0x09, 0x00, 0x00}));
}

} // namespace
