// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/HidAdapter.hpp"

#include "support/SleepingThread.hpp"

#include <gtest/gtest.h>

#include <sys/syscall.h>

#include <array>
#include <atomic>
#include <future>
#include <thread>

using namespace std::chrono_literals;
using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;
using virtual_adapter::FaultKind;
using virtual_adapter::HidAdapter;

namespace {

using Clock = std::chrono::steady_clock;

/// Longer than any machine takes; a test that waits so long has failed.
constexpr int generous = 30'000;
constexpr int anHour = 3'600'000;

const Bytes request{0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x01};
const Bytes enterBootMode{0x13, 0x00, 0x01, 0x00, 0x02, 0x04};

AdapterSettings withFault(FaultKind kind, std::chrono::milliseconds delay = 0ms) {
    AdapterSettings settings;
    settings.fault = {kind, delay};
    return settings;
}

Bytes numbered(uint8_t identifier) {
    Bytes report = request;
    report[2] = identifier;
    return report;
}

/// The transaction identifier of the next report, or what `read` returned.
int nextIdentifier(HidAdapter& adapter, int milliseconds = 0) {
    std::array<uint8_t, 64> report{};
    const int count = adapter.read(report.data(), report.size(), milliseconds);
    return count == 64 ? report[2] : count;
}

/// A read on a thread of its own, which sleeps by now as there is no report.
class WaitingRead {
public:
    WaitingRead(HidAdapter& read, int milliseconds)
        : adapter(read), result(std::async(std::launch::async, [=] {
              threadId.set_value(static_cast<pid_t>(syscall(SYS_gettid)));
              return nextIdentifier(adapter, milliseconds);
          })) {
        EXPECT_TRUE(SleepingThread(threadId.get_future().get()).waitUntilAsleep());
    }

    /// What it returned. It is a failure when nothing has woken it.
    int get() {
        if (result.wait_for(std::chrono::milliseconds(generous)) != std::future_status::ready) {
            ADD_FAILURE() << "the read sleeps on";
            adapter.close();
            adapter.write(request);
        }
        return result.get();
    }

private:
    HidAdapter& adapter;
    std::promise<pid_t> threadId;
    std::future<int> result;
};

TEST(HidAdapter, AReportIsCutToTheReadersBuffer) {
    HidAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open());
    ASSERT_TRUE(adapter.write(request));
    std::array<uint8_t, 4> start{};
    EXPECT_EQ(adapter.read(start.data(), start.size(), 0), 4);
    EXPECT_EQ(start, (std::array<uint8_t, 4>{0x37, 0x00, 0x01, 0x00}));
    EXPECT_EQ(adapter.read(start.data(), start.size(), 0), 0) << "the report's rest is gone";
}

TEST(HidAdapter, ALongReportFitsALargerBuffer) {
    AdapterSettings settings;
    settings.identity = virtual_adapter::usbIdentities[1];
    HidAdapter adapter(settings);
    ASSERT_TRUE(adapter.open());
    ASSERT_TRUE(adapter.write(request));
    std::array<uint8_t, 2048> report{};
    EXPECT_EQ(adapter.read(report.data(), report.size(), 0), 1024);
}

TEST(HidAdapter, AReadWaitsUntilItsTimeIsOver) {
    HidAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open());
    const auto start = Clock::now();
    EXPECT_EQ(nextIdentifier(adapter, 20), 0);
    EXPECT_GE(Clock::now() - start, 20ms);
}

TEST(HidAdapter, AWaitingReadIsEndedByAReport) {
    for (const int patience : {anHour, -1}) {
        HidAdapter adapter{AdapterSettings()};
        ASSERT_TRUE(adapter.open());
        WaitingRead read(adapter, patience);
        ASSERT_TRUE(adapter.write(numbered(9)));
        EXPECT_EQ(read.get(), 9);
    }
}

TEST(HidAdapter, AWaitingReadIsEndedByUnplugging) {
    HidAdapter adapter(withFault(FaultKind::Unplug));
    ASSERT_TRUE(adapter.open());
    EXPECT_TRUE(adapter.write(numbered(1)));
    EXPECT_TRUE(adapter.write(numbered(2)));
    EXPECT_EQ(nextIdentifier(adapter), 1);
    EXPECT_EQ(nextIdentifier(adapter), 2);
    WaitingRead read(adapter, -1);
    EXPECT_FALSE(adapter.write(numbered(3)));
    EXPECT_EQ(read.get(), -1);
    EXPECT_EQ(nextIdentifier(adapter, generous), -1);
    EXPECT_FALSE(adapter.write(numbered(4)));
    EXPECT_FALSE(adapter.isOnBus());
    adapter.close();
    EXPECT_FALSE(adapter.open());
}

TEST(HidAdapter, ReportsThatCameBeforeUnpluggingCanStillBeRead) {
    HidAdapter adapter(withFault(FaultKind::Unplug));
    ASSERT_TRUE(adapter.open());
    adapter.write(numbered(1));
    adapter.write(numbered(2));
    EXPECT_FALSE(adapter.write(numbered(3)));
    EXPECT_EQ(nextIdentifier(adapter), 1);
    EXPECT_EQ(nextIdentifier(adapter), 2);
    EXPECT_EQ(nextIdentifier(adapter), -1);
}

TEST(HidAdapter, BootModeLeavesTheBus) {
    HidAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open());
    EXPECT_TRUE(adapter.write(enterBootMode));
    EXPECT_FALSE(adapter.isOnBus());
    EXPECT_EQ(nextIdentifier(adapter), 1);
    EXPECT_EQ(nextIdentifier(adapter), -1);
}

TEST(HidAdapter, AStalledAdapterRefusesWritesAndStillReads) {
    HidAdapter adapter(withFault(FaultKind::Stall));
    ASSERT_TRUE(adapter.open());
    EXPECT_TRUE(adapter.write(numbered(1)));
    EXPECT_TRUE(adapter.write(numbered(2)));
    EXPECT_FALSE(adapter.write(numbered(3)));
    EXPECT_EQ(nextIdentifier(adapter), 1);
    EXPECT_EQ(nextIdentifier(adapter), 2);
    EXPECT_EQ(nextIdentifier(adapter), 0);
    EXPECT_TRUE(adapter.isOnBus());
}

TEST(HidAdapter, ALateResponseComesAfterItsDelay) {
    for (const int patience : {generous, -1}) {
        HidAdapter adapter(withFault(FaultKind::LateResponse, 30ms));
        ASSERT_TRUE(adapter.open());
        adapter.write(numbered(1));
        adapter.write(numbered(2));
        EXPECT_EQ(nextIdentifier(adapter), 1);
        EXPECT_EQ(nextIdentifier(adapter), 2);
        const auto start = Clock::now();
        adapter.write(numbered(3));
        EXPECT_EQ(nextIdentifier(adapter, patience), 3);
        EXPECT_GE(Clock::now() - start, 30ms);
    }
}

TEST(HidAdapter, AReadGivesUpOnAResponseThatIsTooLate) {
    HidAdapter adapter(withFault(FaultKind::LateResponse, 1h));
    ASSERT_TRUE(adapter.open());
    for (uint8_t i = 1; i <= 3; ++i) {
        adapter.write(numbered(i));
    }
    EXPECT_EQ(nextIdentifier(adapter), 1);
    EXPECT_EQ(nextIdentifier(adapter), 2);
    EXPECT_EQ(nextIdentifier(adapter, 10), 0);
}

TEST(HidAdapter, EveryUnreadReportIsKept) {
    HidAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open());
    for (uint8_t i = 1; i <= 200; ++i) {
        ASSERT_TRUE(adapter.write(numbered(i)));
    }
    for (int i = 1; i <= 200; ++i) {
        EXPECT_EQ(nextIdentifier(adapter), i);
    }
    EXPECT_EQ(nextIdentifier(adapter), 0);
}

TEST(HidAdapter, LostReportsAreTheOldestBeyondThirtyTwo) {
    HidAdapter adapter(withFault(FaultKind::LostReports));
    ASSERT_TRUE(adapter.open());
    for (uint8_t i = 1; i <= 40; ++i) {
        ASSERT_TRUE(adapter.write(numbered(i)));
    }
    for (int i = 9; i <= 40; ++i) {
        EXPECT_EQ(nextIdentifier(adapter), i);
    }
    EXPECT_EQ(nextIdentifier(adapter), 0);
}

TEST(HidAdapter, AnOpenAdapterIsNotOpenedTwice) {
    HidAdapter adapter{AdapterSettings()};
    EXPECT_TRUE(adapter.open());
    EXPECT_FALSE(adapter.open());
    adapter.close();
    EXPECT_TRUE(adapter.open());
}

TEST(HidAdapter, AClosedAdapterIsNeitherReadNorWritten) {
    HidAdapter adapter{AdapterSettings()};
    EXPECT_FALSE(adapter.write(request));
    EXPECT_EQ(nextIdentifier(adapter, generous), -1);
    ASSERT_TRUE(adapter.open());
    adapter.close();
    EXPECT_FALSE(adapter.write(request));
    EXPECT_EQ(nextIdentifier(adapter, generous), -1);
}

TEST(HidAdapter, ClosingDropsUnreadReports) {
    HidAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open());
    ASSERT_TRUE(adapter.write(numbered(1)));
    adapter.close();
    ASSERT_TRUE(adapter.open());
    EXPECT_EQ(nextIdentifier(adapter), 0);
}

TEST(HidAdapter, ClosingDropsALateReportThatIsDue) {
    HidAdapter adapter(withFault(FaultKind::LateResponse, 1ms));
    ASSERT_TRUE(adapter.open());
    for (uint8_t i = 1; i <= 3; ++i) {
        ASSERT_TRUE(adapter.write(numbered(i)));
    }
    const auto due = Clock::now() + 1ms;
    while (Clock::now() < due) {
        std::this_thread::yield();
    }
    adapter.close();
    ASSERT_TRUE(adapter.open());
    EXPECT_EQ(nextIdentifier(adapter), 0);
}

TEST(HidAdapter, AWaitingReadIsEndedByClosing) {
    for (const int patience : {anHour, -1}) {
        HidAdapter adapter{AdapterSettings()};
        ASSERT_TRUE(adapter.open());
        WaitingRead read(adapter, patience);
        adapter.close();
        EXPECT_EQ(read.get(), -1);
    }
}

TEST(HidAdapter, WithoutPermissionItIsOnTheBusAndCannotBeOpened) {
    HidAdapter adapter(withFault(FaultKind::NoPermission));
    EXPECT_TRUE(adapter.isOnBus());
    EXPECT_FALSE(adapter.isAccessible());
    EXPECT_FALSE(adapter.open());
}

TEST(HidAdapter, ReadersAndWritersMayMeet) {
    HidAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open());
    constexpr int perWriter = 500;
    std::atomic<int> received{0};
    auto reader = [&] {
        while (received < 2 * perWriter) {
            if (nextIdentifier(adapter, 1) > 0) {
                ++received;
            }
        }
    };
    auto writer = [&](uint8_t identifier) {
        for (int i = 0; i < perWriter; ++i) {
            EXPECT_TRUE(adapter.write(numbered(identifier)));
            EXPECT_TRUE(adapter.isOnBus());
            EXPECT_TRUE(adapter.isOpen());
        }
    };
    std::vector<std::thread> threads;
    threads.emplace_back(reader);
    threads.emplace_back(reader);
    threads.emplace_back(writer, uint8_t{1});
    threads.emplace_back(writer, uint8_t{2});
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(received, 2 * perWriter);
}

} // namespace
