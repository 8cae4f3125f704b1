// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/FrameFaults.hpp"

#include <gtest/gtest.h>

using virtual_adapter::CountedFrame;
using virtual_adapter::FaultKind;
using virtual_adapter::FaultSet;
using virtual_adapter::Frame;
using virtual_adapter::FrameFaults;
using virtual_adapter::OutgoingFrame;

namespace {

FaultSet setOf(FaultKind kind) {
    FaultSet set;
    set.insert(kind);
    return set;
}

std::vector<CountedFrame> countless(const std::vector<Frame>& frames) {
    std::vector<CountedFrame> messages;
    messages.reserve(frames.size());
    for (const Frame& frame : frames) {
        messages.push_back({frame, {}});
    }
    return messages;
}

std::vector<Frame> framesOf(const std::vector<OutgoingFrame>& outgoing) {
    std::vector<Frame> frames;
    for (const OutgoingFrame& message : outgoing) {
        frames.push_back(message.frame);
    }
    return frames;
}

/// What becomes of an answer that the fault strikes.
std::vector<Frame> spoilt(FaultKind kind, const std::vector<Frame>& answer) {
    return framesOf(FrameFaults().apply(setOf(kind), countless(answer)));
}

TEST(FrameFaultsTest, ASpoiltIdentifierNeverTurnsIntoZero) {
    EXPECT_EQ(spoilt(FaultKind::WrongIdentifier, {{0xFF, 0xFF, 0x02, 0x14, 0x00, 0x00}}),
              (std::vector<Frame>{{0x01, 0x00, 0x02, 0x14, 0x00, 0x00}}));
    EXPECT_EQ(spoilt(FaultKind::WrongIdentifier, {{0xFF, 0x00, 0x02, 0x14, 0x00, 0x00}}),
              (std::vector<Frame>{{0x00, 0x01, 0x02, 0x14, 0x00, 0x00}}));
}

TEST(FrameFaultsTest, ALostResponseLeavesTheNotificationsBehindIt) {
    const Frame gpio{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x01};
    EXPECT_EQ(spoilt(FaultKind::LostResponse, {{0x03, 0x00, 0x02, 0x14, 0x00, 0x00}, gpio}),
              std::vector<Frame>{gpio});
}

TEST(FrameFaultsTest, EveryCountOfAMessageIsMadeTooLongAndNothingElse) {
    const std::vector<OutgoingFrame> outgoing =
        FrameFaults().apply(setOf(FaultKind::OverLongCount),
                            {{{3, 0, 0x06, 0x09, 0, 0, 0, 1, 2, 0x50}, {{7, 1}, {8, 1}}},
                             {{0, 0, 0x81, 0x10, 0, 0, 1, 0, 'x'}, {{6, 2}}},
                             {{0, 0, 0x81, 0x14, 0, 0, 1}, {}}});
    ASSERT_EQ(outgoing.size(), 3U);
    EXPECT_EQ(outgoing[0].frame, (Frame{3, 0, 0x06, 0x09, 0, 0, 0, 0xFF, 0xFF, 0x50}));
    EXPECT_EQ(outgoing[1].frame, (Frame{0, 0, 0x81, 0x10, 0, 0, 0xFF, 0xFF, 'x'}));
    EXPECT_EQ(outgoing[2].frame, (Frame{0, 0, 0x81, 0x14, 0, 0, 1}));
}

TEST(FrameFaultsTest, AStormSurroundsTheResponseWithNotificationsOfEveryKind) {
    const Frame answer{0x03, 0x00, 0x02, 0x14, 0x00, 0x00};
    const std::vector<Frame> frames = spoilt(FaultKind::NotificationStorm, {answer});
    ASSERT_EQ(frames.size(), 2001U);
    EXPECT_EQ(frames[1000], answer);

    EXPECT_EQ(frames[0], (Frame{0x00, 0x00, 0x82, 0x19, 0x00, 0x00, 0x04, 0x6A, 0x00, 0x00, 0x00,
                                0x01, 0x06, 0xC6, 0x08}));
    EXPECT_EQ(frames[1], (Frame{0x00, 0x00, 0x81, 0x19, 0x00, 0x00, 0x08, 0x02, 0xAB, 0xCD}));
    EXPECT_EQ(frames[2], (Frame{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x01}));
    Frame uart{0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0x60, 0x00};
    uart.resize(104, 'U');
    EXPECT_EQ(frames[3], uart);
    EXPECT_EQ(frames[4], (Frame{0x00, 0x00, 0xFF, 0x7F, 0x00, 0x00}));
    for (size_t i = 5; i < 1000; ++i) {
        EXPECT_EQ(frames[i], frames[i % 5]);
        EXPECT_EQ(frames[1001 + i], frames[i % 5]);
    }
}

TEST(FrameFaultsTest, TheAnswerBehindASpoiltOneIsSound) {
    const Frame answer{0x04, 0x00, 0x02, 0x14, 0x00, 0x00};
    for (const auto& fault : virtual_adapter::faultNames()) {
        FrameFaults faults;
        faults.apply(setOf(fault.kind), countless({answer}));
        const std::vector<OutgoingFrame> frames = faults.apply({}, countless({answer}));
        ASSERT_EQ(frames.size(), 1U) << fault.name;
        EXPECT_EQ(frames.front().frame, answer);
        EXPECT_FALSE(frames.front().late);
        EXPECT_TRUE(frames.front().isResponse);
    }
}

TEST(FrameFaultsTest, AFlippedBitIsTheLowestOfTheLastByteReadFromABus) {
    const auto flipped = [](const CountedFrame& response) {
        return framesOf(FrameFaults().apply(setOf(FaultKind::FlippedBit), {response}));
    };
    EXPECT_EQ(flipped({{3, 0, 0x05, 0x09, 0, 0, 0, 2, 0, 0x19, 0x80}, {{7, 2}}}),
              (std::vector<Frame>{{3, 0, 0x05, 0x09, 0, 0, 0, 2, 0, 0x19, 0x81}}));
    EXPECT_EQ(flipped({{3, 0, 0x09, 0x19, 0, 0, 9, 0x8E, 0, 1, 0x27}, {{9, 1}}}),
              (std::vector<Frame>{{3, 0, 0x09, 0x19, 0, 0, 9, 0x8E, 0, 1, 0x26}}));
    // Nothing was read, or nothing from a bus.
    EXPECT_EQ(flipped({{3, 0, 0x05, 0x09, 0, 0, 0, 0, 0}, {{7, 2}}}),
              (std::vector<Frame>{{3, 0, 0x05, 0x09, 0, 0, 0, 0, 0}}));
    EXPECT_EQ(flipped({{3, 0, 0x05, 0x09, 6, 0}, {}}),
              (std::vector<Frame>{{3, 0, 0x05, 0x09, 6, 0}}));
    EXPECT_EQ(flipped({{3, 0, 0x07, 0x04, 0, 0, 2, 'x'}, {{6, 1}}}),
              (std::vector<Frame>{{3, 0, 0x07, 0x04, 0, 0, 2, 'x'}}));
}

TEST(FrameFaultsTest, ALostNotificationIsTheNextOneWhateverItsRequest) {
    const Frame answer{0x03, 0x00, 0x02, 0x14, 0x00, 0x00};
    const Frame first{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x01};
    const Frame second{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x02};
    EXPECT_EQ(spoilt(FaultKind::LostNotification, {answer, first, second}),
              (std::vector<Frame>{answer, second}));

    FrameFaults faults;
    EXPECT_EQ(framesOf(faults.apply(setOf(FaultKind::LostNotification), countless({answer}))),
              (std::vector<Frame>{answer}));
    EXPECT_EQ(framesOf(faults.applyToNotifications(countless({first, second}))),
              (std::vector<Frame>{second}));
    EXPECT_EQ(framesOf(faults.apply({}, countless({answer, first}))),
              (std::vector<Frame>{answer, first}));
}

TEST(FrameFaultsTest, ARequestWithoutAnAnswerHasNothingToSpoil) {
    for (const auto& fault : virtual_adapter::faultNames()) {
        EXPECT_TRUE(spoilt(fault.kind, {}).empty()) << fault.name;
    }
}

} // namespace
