// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/FaultInjector.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using virtual_adapter::CountedFrame;
using virtual_adapter::Fault;
using virtual_adapter::FaultInjector;
using virtual_adapter::FaultKind;
using virtual_adapter::Frame;
using virtual_adapter::OutgoingFrame;

namespace {

/// What an injector makes of the third answer.
std::vector<Frame> thirdAnswer(FaultKind kind, const std::vector<Frame>& answer) {
    FaultInjector faults(Fault{kind});
    faults.apply({{{0x01, 0x00, 0x07, 0x04, 0x00, 0x00}, {}}});
    faults.apply({{{0x02, 0x00, 0x07, 0x04, 0x00, 0x00}, {}}});
    std::vector<CountedFrame> messages;
    messages.reserve(answer.size());
    for (const Frame& frame : answer) {
        messages.push_back({frame, {}});
    }
    std::vector<Frame> frames;
    for (const OutgoingFrame& outgoing : faults.apply(messages)) {
        frames.push_back(outgoing.frame);
    }
    return frames;
}

TEST(FaultInjector, ASpoiltIdentifierNeverTurnsIntoZero) {
    EXPECT_EQ(thirdAnswer(FaultKind::WrongIdentifier, {{0xFF, 0xFF, 0x02, 0x14, 0x00, 0x00}}),
              (std::vector<Frame>{{0x01, 0x00, 0x02, 0x14, 0x00, 0x00}}));
    EXPECT_EQ(thirdAnswer(FaultKind::WrongIdentifier, {{0xFF, 0x00, 0x02, 0x14, 0x00, 0x00}}),
              (std::vector<Frame>{{0x00, 0x01, 0x02, 0x14, 0x00, 0x00}}));
}

TEST(FaultInjector, ALostResponseLeavesTheNotificationsBehindIt) {
    const Frame gpio{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x01};
    EXPECT_EQ(thirdAnswer(FaultKind::LostResponse, {{0x03, 0x00, 0x02, 0x14, 0x00, 0x00}, gpio}),
              std::vector<Frame>{gpio});
}

TEST(FaultInjector, EveryCountOfAMessageIsMadeTooLongAndNothingElse) {
    FaultInjector faults(Fault{FaultKind::OverLongCount});
    faults.apply({});
    faults.apply({});
    const std::vector<OutgoingFrame> outgoing =
        faults.apply({{{3, 0, 0x06, 0x09, 0, 0, 0, 1, 2, 0x50}, {{7, 1}, {8, 1}}},
                      {{0, 0, 0x81, 0x10, 0, 0, 1, 0, 'x'}, {{6, 2}}},
                      {{0, 0, 0x81, 0x14, 0, 0, 1}, {}}});
    ASSERT_EQ(outgoing.size(), 3U);
    EXPECT_EQ(outgoing[0].frame, (Frame{3, 0, 0x06, 0x09, 0, 0, 0, 0xFF, 0xFF, 0x50}));
    EXPECT_EQ(outgoing[1].frame, (Frame{0, 0, 0x81, 0x10, 0, 0, 0xFF, 0xFF, 'x'}));
    EXPECT_EQ(outgoing[2].frame, (Frame{0, 0, 0x81, 0x14, 0, 0, 1}));
}

TEST(FaultInjector, AStormSurroundsTheResponseWithNotificationsOfEveryKind) {
    const Frame answer{0x03, 0x00, 0x02, 0x14, 0x00, 0x00};
    const std::vector<Frame> frames = thirdAnswer(FaultKind::NotificationStorm, {answer});
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

TEST(FaultInjector, TheFourthAnswerIsSoundAgain) {
    const Frame answer{0x04, 0x00, 0x02, 0x14, 0x00, 0x00};
    for (const FaultKind kind :
         {FaultKind::LateResponse, FaultKind::LostResponse, FaultKind::WrongIdentifier,
          FaultKind::ShortFrame, FaultKind::NotificationStorm}) {
        FaultInjector faults(Fault{kind});
        for (int i = 0; i < 3; ++i) {
            faults.apply({{answer, {}}});
        }
        const std::vector<OutgoingFrame> frames = faults.apply({{answer, {}}});
        ASSERT_EQ(frames.size(), 1U);
        EXPECT_EQ(frames.front().frame, answer);
        EXPECT_EQ(frames.front().delay, 0ms);
    }
}

TEST(FaultInjector, ARequestWithoutAnAnswerHasNothingToSpoil) {
    for (const auto& fault : virtual_adapter::faultNames()) {
        EXPECT_TRUE(thirdAnswer(fault.kind, {}).empty()) << fault.name;
    }
}

} // namespace
