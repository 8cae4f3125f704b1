// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/BlockingApi.hpp"

#include "support/ConditionWait.hpp"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <limits>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

using namespace test_support;

namespace {

// The waiter is the only thread: a test decides how each wait ends, and lets a response arrive
// while the wait has the mutex unlocked.

constexpr int farOffMs = std::numeric_limits<int>::max();

/// What a wait returns that did not time out.
constexpr int woken = 0;

void respond(BlockingApi& blocking) {
    const std::vector<uint8_t> frame{0x01, 0x00, 0x02, 0x03, 0x00, 0x00};
    blocking.respond(ResponseFrame(frame));
}

/// Whether a response ends the wait.
bool await(BlockingApi& blocking) {
    const auto status = [](const ResponseFrame& response) { return response.status(); };
    return blocking.await(BlockingApi::Judge(status)) == 0;
}

TEST(BlockingApiWaits, AResponseThatIsPendingIsNotWaitedFor) {
    const ConditionWait never([](const auto&) {
        ADD_FAILURE() << "a wait";
        return ETIMEDOUT;
    });
    for (const int timeoutMs : {BlockingApi::noTimeout, 0, farOffMs}) {
        BlockingApi blocking(timeoutMs);
        respond(blocking);
        EXPECT_TRUE(await(blocking)) << timeoutMs;
    }
}

TEST(BlockingApiWaits, ASpuriousWakeUpEndsNoWait) {
    for (const int timeoutMs : {BlockingApi::noTimeout, farOffMs}) {
        BlockingApi blocking(timeoutMs);
        int waits = 0;
        const ConditionWait spurious([&](const auto& call) {
            if (++waits == 3) {
                call.unlocked([&] { respond(blocking); });
            }
            return woken;
        });
        EXPECT_TRUE(await(blocking)) << timeoutMs;
        EXPECT_EQ(waits, 3) << timeoutMs;
    }
}

TEST(BlockingApiWaits, ASpuriousWakeUpLeavesTheDeadlineAsItIs) {
    BlockingApi blocking(farOffMs);
    std::vector<std::chrono::nanoseconds> deadlines;
    const ConditionWait spurious([&](const auto& call) {
        deadlines.push_back(call.deadline);
        if (deadlines.size() == 3) {
            call.unlocked([&] { respond(blocking); });
        }
        return woken;
    });
    EXPECT_TRUE(await(blocking));
    ASSERT_EQ(deadlines.size(), 3U);
    EXPECT_EQ(deadlines, std::vector(3, deadlines.front()));
}

TEST(BlockingApiWaits, ATimeOutCountsFromTheBeginningOfTheWaitByTheSteadyClock) {
    using std::chrono::milliseconds;
    using std::chrono::steady_clock;
    for (const int timeoutMs : {1, 1000, farOffMs}) {
        BlockingApi blocking(timeoutMs);
        const auto before = steady_clock::now().time_since_epoch();
        const ConditionWait answered([&](const auto& call) {
            const auto after = steady_clock::now().time_since_epoch();
            EXPECT_EQ(call.clock, CLOCK_MONOTONIC);
            EXPECT_GE(call.deadline, before + milliseconds(timeoutMs));
            EXPECT_LE(call.deadline, after + milliseconds(timeoutMs));
            call.unlocked([&] { respond(blocking); });
            return woken;
        });
        EXPECT_TRUE(await(blocking)) << timeoutMs;
    }
}

TEST(BlockingApiWaits, WithoutATimeOutNoClockLimitsTheWait) {
    BlockingApi blocking(BlockingApi::noTimeout);
    const ConditionWait answered([&](const auto& call) {
        EXPECT_EQ(call.clock, std::nullopt);
        call.unlocked([&] { respond(blocking); });
        return woken;
    });
    EXPECT_TRUE(await(blocking));
}

TEST(BlockingApiWaits, AResponseThatArrivesAsTheTimeOutPassesCounts) {
    BlockingApi blocking(1);
    const ConditionWait tooLate([&](const auto& call) {
        while (call.wait() != ETIMEDOUT) {
        }
        call.unlocked([&] { respond(blocking); });
        return ETIMEDOUT;
    });
    EXPECT_TRUE(await(blocking));
}

} // namespace
