// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/VeltraDriver.hpp"
#include "support/ConditionWait.hpp"
#include "support/Variant.hpp"

#include <atomic>
#include <chrono>
#include <ctime>
#include <functional>
#include <future>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using namespace test_support;
using std::chrono::steady_clock;

namespace {

/// The pauses after read errors. Of all threads the polling thread alone waits on a condition
/// variable, in its pauses: no read waits, as each finds a report or fails.
class VeltraDriverPauses : public testing::Test {
protected:
    VeltraDriverPauses() {
        hid.attach({"1-1:1.0", vendorId, fullSpeed.productId, L"VA-0001"});
        hid.failReading(true);
    }

    using InPause = std::function<void(const ConditionWait::Call& call)>;

    /// Opens the driver, calls @p inPause once in each of the first pauses, and closes the driver.
    /// Returns how many reads came before each of these pauses.
    std::vector<size_t> readsBeforePauses(size_t pauses, const InPause& inPause) {
        std::vector<size_t> readsBefore;
        std::promise<void> done;
        const ConditionWait observed([&](const auto& call) {
            const size_t reads = hid.readCalls();
            // A wake-up that ends no pause is followed by another wait in the same one.
            const bool isNew = readsBefore.empty() || readsBefore.back() != reads;
            if (isNew && readsBefore.size() < pauses) {
                readsBefore.push_back(reads);
                inPause(call);
                if (readsBefore.size() == pauses) {
                    done.set_value();
                }
            }
            return call.wait();
        });
        EXPECT_TRUE(driver.open("", ""));
        EXPECT_EQ(done.get_future().wait_for(std::chrono::milliseconds(generousLimitMs)),
                  std::future_status::ready)
            << "there was no pause";
        driver.close();
        return readsBefore;
    }

    InPause deliverToRead4(const Bytes& report) {
        return [this, report](const auto&) {
            if (hid.readCalls() == 3) {
                hid.deliver(report);
            }
        };
    }

    ScriptedHid hid;
    VeltraDriver driver;
};

TEST_F(VeltraDriverPauses, TheFirstRetryComesAtOnceAndEachLaterOneAfterAPause) {
    EXPECT_EQ(readsBeforePauses(4, [](const auto&) {}), (std::vector<size_t>{2, 3, 4, 5}));
}

TEST_F(VeltraDriverPauses, EveryReadErrorIsToldBeforeItsPause) {
    std::atomic<size_t> told{0};
    driver.onReadError([&] { ++told; });
    readsBeforePauses(4, [&](const auto&) { EXPECT_EQ(told, hid.readCalls()); });
}

TEST_F(VeltraDriverPauses, AReadThatFindsAReportOrNothingIsNoReadError) {
    std::atomic<size_t> told{0};
    driver.onReadError([&] { ++told; });
    readsBeforePauses(3, [&](const auto& call) {
        deliverToRead4({})(call);
        EXPECT_EQ(told, hid.readCalls() < 4 ? hid.readCalls() : hid.readCalls() - 1);
    });
    EXPECT_GE(told, 5U);
}

TEST_F(VeltraDriverPauses, AfterAReportTheNextRetryComesAtOnceAgain) {
    EXPECT_EQ(readsBeforePauses(4, deliverToRead4(fullSpeed.input({0x01}))),
              (std::vector<size_t>{2, 3, 6, 7}));
}

TEST_F(VeltraDriverPauses, AfterAReadThatGotNothingTheNextRetryComesAtOnceAgain) {
    EXPECT_EQ(readsBeforePauses(4, deliverToRead4({})), (std::vector<size_t>{2, 3, 6, 7}));
}

TEST_F(VeltraDriverPauses, PausesDoubleFromOneMillisecondToATenthOfASecond) {
    const std::vector<int> lengthsMs{1, 2, 4, 8, 16, 32, 64, 100, 100};
    auto expected = lengthsMs.begin();
    auto earliestBegin = steady_clock::now().time_since_epoch();
    readsBeforePauses(lengthsMs.size(), [&](const auto& call) {
        const auto latestBegin = steady_clock::now().time_since_epoch();
        const std::chrono::milliseconds length(*expected++);
        EXPECT_EQ(call.clock, CLOCK_MONOTONIC);
        EXPECT_GE(call.deadline, earliestBegin + length) << length.count();
        EXPECT_LE(call.deadline, latestBegin + length) << length.count();
        earliestBegin = call.deadline;
    });
    EXPECT_EQ(expected, lengthsMs.end());
}

/// Lets no pause end by time, and tells when the first two have begun.
class UntimedPauses {
public:
    void waitForFirst() { first.get_future().wait(); }
    void waitForSecond() { second.get_future().wait(); }
    [[nodiscard]] bool wereAllEnded() const { return woken; }

private:
    std::promise<void> first;
    std::promise<void> second;
    int waits = 0;
    std::atomic<bool> woken = true;
    ConditionWait notByTime{[this](const auto& call) {
        if (++waits <= 2) {
            (waits == 1 ? first : second).set_value();
        }
        const int result = call.waitUntilWoken();
        woken = woken && result == 0;
        return result;
    }};
};

TEST_F(VeltraDriverPauses, ClosingEndsThePause) {
    UntimedPauses pauses;
    ASSERT_TRUE(driver.open("", ""));
    pauses.waitForFirst();
    driver.close();
    EXPECT_EQ(hid.openDevices(), 0U);
    EXPECT_TRUE(pauses.wereAllEnded()) << "the pause ended by itself";
}

TEST_F(VeltraDriverPauses, AWrittenReportEndsThePause) {
    UntimedPauses pauses;
    ASSERT_TRUE(driver.open("", ""));
    pauses.waitForFirst();
    EXPECT_EQ(hid.readCalls(), 2U);
    EXPECT_TRUE(driver.sendCommand({0x55}));
    pauses.waitForSecond();
    EXPECT_EQ(hid.readCalls(), 3U);
    driver.close();
    EXPECT_TRUE(pauses.wereAllEnded()) << "a pause ended by itself";
}

} // namespace
