// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/BlockingApi.hpp"

#include "support/ScriptedHid.hpp"

#include <future>
#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr int patientMs = test_support::generousLimitMs;
constexpr uint16_t noResponse = 0x2000;

/// Hands a response of this status to whoever waits.
void respond(BlockingApi& blocking, uint8_t status) {
    const std::vector<uint8_t> frame{0x01, 0x00, 0x02, 0x03, status, 0x00};
    blocking.respond(ResponseFrame(frame));
}

/// The status of the response that ends the wait.
uint16_t await(BlockingApi& blocking) {
    const auto status = [](const ResponseFrame& response) { return response.status(); };
    return blocking.await(BlockingApi::Judge(status));
}

TEST(BlockingApi, WhatIsMadeOfTheResponseIsTheResult) {
    BlockingApi blocking(BlockingApi::noTimeout);
    respond(blocking, 0x34);
    const auto judge = [](const ResponseFrame& response) -> uint16_t {
        EXPECT_EQ(response.header(), 0x03020001U);
        EXPECT_EQ(response.status(), 0x0034);
        return 0xABCD;
    };
    EXPECT_EQ(blocking.await(BlockingApi::Judge(judge)), 0xABCD);
}

TEST(BlockingApi, AResponseFromAnotherThreadEndsTheWait) {
    for (const int timeoutMs : {-1, patientMs, std::numeric_limits<int>::max()}) {
        BlockingApi blocking(timeoutMs);
        std::thread other([&] { respond(blocking, 0x34); });
        EXPECT_EQ(await(blocking), 0x34) << timeoutMs;
        other.join();
    }
}

TEST(BlockingApi, WithoutATimeOutTheWaitEndsWithTheResponseOnly) {
    BlockingApi blocking(BlockingApi::noTimeout);
    auto waiting = std::async(std::launch::async, [&] { return await(blocking); });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    respond(blocking, 0x34);
    EXPECT_EQ(waiting.get(), 0x34);
}

TEST(BlockingApi, ZeroAndNegativeTimeOutsButMinusOneDoNotWait) {
    for (const int timeoutMs : {0, -2, -1000, std::numeric_limits<int>::min()}) {
        BlockingApi blocking(timeoutMs);
        EXPECT_EQ(await(blocking), noResponse) << timeoutMs;
        respond(blocking, 0x34);
        EXPECT_EQ(await(blocking), 0x34) << timeoutMs;
    }
}

TEST(BlockingApi, AWaitEndsAtItsTimeOut) {
    BlockingApi blocking(20);
    EXPECT_EQ(await(blocking), noResponse);
}

TEST(BlockingApi, AResponseIsConsumedByOneWait) {
    BlockingApi blocking(0);
    respond(blocking, 0x34);
    EXPECT_EQ(await(blocking), 0x34);
    EXPECT_EQ(await(blocking), noResponse);
}

TEST(BlockingApi, OfResponsesThatNobodyWaitsForTheLastCounts) {
    BlockingApi blocking(0);
    respond(blocking, 0x34);
    respond(blocking, 0x35);
    EXPECT_EQ(await(blocking), 0x35);
    EXPECT_EQ(await(blocking), noResponse);
}

TEST(BlockingApi, AResponseAfterTheTimeOutCompletesTheNextWait) {
    BlockingApi blocking(1);
    EXPECT_EQ(await(blocking), noResponse);
    respond(blocking, 0x34);
    EXPECT_EQ(await(blocking), 0x34);
}

} // namespace
