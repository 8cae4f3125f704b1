// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/BlockingApi.hpp"

#include "support/ScriptedHid.hpp"

#include <functional>
#include <future>
#include <limits>
#include <thread>

#include <gtest/gtest.h>

namespace {

constexpr int patientMs = test_support::generousLimitMs;

TEST(BlockingApi, ARequestThatIsNotSentIsNotWaitedFor) {
    BlockingApi blocking(BlockingApi::noTimeout);
    EXPECT_FALSE(blocking.execute([] { return false; }));
}

TEST(BlockingApi, ARequestThatIsNotSentLeavesAPendingResponsePending) {
    BlockingApi blocking(0);
    blocking.notifyResponseReceived();
    EXPECT_FALSE(blocking.execute([] { return false; }));
    EXPECT_TRUE(blocking.waitForResponse());
}

TEST(BlockingApi, AnEmptyRequestIsABadFunctionCall) {
    BlockingApi blocking(BlockingApi::noTimeout);
    EXPECT_THROW(blocking.execute(std::function<bool()>()), std::bad_function_call);
}

TEST(BlockingApi, AResponseDuringTheRequestEndsTheWait) {
    for (const int timeoutMs : {-1, 0, patientMs}) {
        BlockingApi blocking(timeoutMs);
        EXPECT_TRUE(blocking.execute([&] {
            blocking.notifyResponseReceived();
            return true;
        })) << timeoutMs;
    }
}

TEST(BlockingApi, AResponseFromAnotherThreadEndsTheWait) {
    for (const int timeoutMs : {-1, patientMs, std::numeric_limits<int>::max()}) {
        BlockingApi blocking(timeoutMs);
        std::thread other;
        EXPECT_TRUE(blocking.execute([&] {
            other = std::thread([&] { blocking.notifyResponseReceived(); });
            return true;
        })) << timeoutMs;
        other.join();
    }
}

TEST(BlockingApi, WithoutATimeOutTheWaitEndsWithTheResponseOnly) {
    BlockingApi blocking(BlockingApi::noTimeout);
    auto waiting = std::async(std::launch::async, [&] { return blocking.waitForResponse(); });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    blocking.notifyResponseReceived();
    EXPECT_TRUE(waiting.get());
}

TEST(BlockingApi, ZeroAndNegativeTimeOutsButMinusOneDoNotWait) {
    for (const int timeoutMs : {0, -2, -1000, std::numeric_limits<int>::min()}) {
        BlockingApi blocking(timeoutMs);
        EXPECT_FALSE(blocking.waitForResponse()) << timeoutMs;
        blocking.notifyResponseReceived();
        EXPECT_TRUE(blocking.waitForResponse()) << timeoutMs;
    }
}

TEST(BlockingApi, AWaitEndsAtItsTimeOut) {
    BlockingApi blocking(20);
    EXPECT_FALSE(blocking.waitForResponse());
}

TEST(BlockingApi, AResponseIsConsumedByOneWait) {
    BlockingApi blocking(0);
    blocking.notifyResponseReceived();
    EXPECT_TRUE(blocking.waitForResponse());
    EXPECT_FALSE(blocking.waitForResponse());
}

TEST(BlockingApi, ResponsesThatNobodyWaitsForCountOnce) {
    BlockingApi blocking(0);
    blocking.notifyResponseReceived();
    blocking.notifyResponseReceived();
    EXPECT_TRUE(blocking.waitForResponse());
    EXPECT_FALSE(blocking.waitForResponse());
}

TEST(BlockingApi, AResponseAfterTheTimeOutCompletesTheNextWait) {
    BlockingApi blocking(1);
    EXPECT_FALSE(blocking.execute([] { return true; }));
    blocking.notifyResponseReceived();
    EXPECT_TRUE(blocking.execute([] { return true; }));
}

TEST(BlockingApi, ANewTimeOutTakesEffectAtTheNextWait) {
    BlockingApi blocking(BlockingApi::noTimeout);
    blocking.setTimeout(0);
    EXPECT_FALSE(blocking.waitForResponse());
    blocking.setTimeout(patientMs);
    std::thread other;
    EXPECT_TRUE(blocking.execute([&] {
        other = std::thread([&] { blocking.notifyResponseReceived(); });
        return true;
    }));
    other.join();
}

} // namespace
