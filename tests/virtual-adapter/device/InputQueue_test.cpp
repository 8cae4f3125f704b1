// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/InputQueue.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using virtual_adapter::Bytes;
using virtual_adapter::InputQueue;

namespace {

const InputQueue::Time start{};

/// A host that is one response behind: it has asked for A, which came late, asked again and taken
/// what came.
class HostBehind : public testing::Test {
protected:
    HostBehind() {
        ask('A', 1s);
        queue.keepHostBehind(1ms);
        ask('a');
        EXPECT_EQ(takenAt(start + 1s), "A");
    }

    void ask(char answer, InputQueue::Duration delay = 0s, InputQueue::Time now = start) {
        queue.hostWrites(now);
        queue.send({{static_cast<uint8_t>(answer)}}, InputQueue::Message::Response, delay);
    }

    std::string takenAt(InputQueue::Time now) {
        std::string taken;
        while (const std::optional<Bytes> report = queue.take(now)) {
            taken += static_cast<char>(report->front());
        }
        return taken;
    }

    InputQueue queue{0us};
};

TEST_F(HostBehind, GetsTheOldAnswerAFrameAfterItsNextRequest) {
    const auto now = start + 1s + 20ms;
    EXPECT_EQ(takenAt(now), "");
    ask('B', 0s, now);
    EXPECT_EQ(queue.nextDue(), now + 1ms);
    EXPECT_EQ(takenAt(now + 1ms), "a");
}

TEST_F(HostBehind, StaysBehindHoweverSlowItsMachineIs) {
    auto now = start + 1s;
    std::string got;
    for (const char answer : std::string("BCDEFGH")) {
        now += 40ms;
        ask(answer, 0s, now);
        now += 2ms;
        got += takenAt(now);
        EXPECT_EQ(takenAt(now), "");
    }
    EXPECT_EQ(got, "aBCDEFG");
}

TEST_F(HostBehind, GetsBackInStepByWaiting) {
    EXPECT_EQ(queue.nextDue(), start + 1s + 50ms);
    EXPECT_EQ(takenAt(start + 1s + 50ms), "a");
    const auto now = start + 2s;
    ask('B', 0s, now);
    EXPECT_EQ(queue.nextDue(), now + 2ms);
    EXPECT_EQ(takenAt(now + 2ms), "B");
}

TEST_F(HostBehind, IsNotKeptBehindByNotifications) {
    EXPECT_EQ(takenAt(start + 2s), "a");
    queue.hostWrites(start + 2s);
    queue.send({{'n'}}, InputQueue::Message::Notification, 0s);
    queue.send({{'B'}}, InputQueue::Message::Response, 0s);
    EXPECT_EQ(takenAt(start + 2s + 3ms), "nB");
}

TEST(InputQueue, AHostThatIsNotLateGetsItsAnswersTogether) {
    InputQueue queue(0us);
    for (const uint8_t answer : Bytes{1, 2, 3}) {
        queue.hostWrites(start);
        queue.send({{answer}}, InputQueue::Message::Response, 0s);
    }
    EXPECT_EQ(queue.take(start), Bytes{1});
    EXPECT_EQ(queue.take(start), Bytes{2});
    EXPECT_EQ(queue.take(start), Bytes{3});
    EXPECT_EQ(queue.nextDue(), std::nullopt);
}

} // namespace
