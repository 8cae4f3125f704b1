#include "attach/HostPort.hpp"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <thread>

using namespace std::chrono_literals;
using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;
using virtual_adapter::FaultKind;
using virtual_adapter::HostPort;

namespace {

using Clock = std::chrono::steady_clock;

/// Longer than any machine takes; a test that waits so long has failed.
constexpr int generous = 30'000;

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
int nextIdentifier(HostPort& port, int milliseconds = 0) {
    std::array<uint8_t, 64> report{};
    const int count = port.read(report.data(), report.size(), milliseconds);
    return count == 64 ? report[2] : count;
}

TEST(HostPort, AReportIsCutToTheReadersBuffer) {
    HostPort port{AdapterSettings()};
    ASSERT_TRUE(port.open());
    ASSERT_TRUE(port.write(request));
    std::array<uint8_t, 4> start{};
    EXPECT_EQ(port.read(start.data(), start.size(), 0), 4);
    EXPECT_EQ(start, (std::array<uint8_t, 4>{0x37, 0x00, 0x01, 0x00}));
    EXPECT_EQ(port.read(start.data(), start.size(), 0), 0) << "the report's rest is gone";
}

TEST(HostPort, ALongReportFitsALargerBuffer) {
    AdapterSettings settings;
    settings.identity = virtual_adapter::usbIdentities[1];
    HostPort port(settings);
    ASSERT_TRUE(port.open());
    ASSERT_TRUE(port.write(request));
    std::array<uint8_t, 2048> report{};
    EXPECT_EQ(port.read(report.data(), report.size(), 0), 1024);
}

TEST(HostPort, AReadWaitsUntilItsTimeIsOver) {
    HostPort port{AdapterSettings()};
    ASSERT_TRUE(port.open());
    const auto start = Clock::now();
    EXPECT_EQ(nextIdentifier(port, 20), 0);
    EXPECT_GE(Clock::now() - start, 20ms);
}

TEST(HostPort, AWaitingReadIsEndedByAReport) {
    for (const int patience : {generous, -1}) {
        HostPort port{AdapterSettings()};
        ASSERT_TRUE(port.open());
        auto read = std::async(std::launch::async, [&] { return nextIdentifier(port, patience); });
        ASSERT_TRUE(port.write(numbered(9)));
        EXPECT_EQ(read.get(), 9);
    }
}

TEST(HostPort, AWaitingReadIsEndedByUnplugging) {
    HostPort port(withFault(FaultKind::Unplug));
    ASSERT_TRUE(port.open());
    EXPECT_TRUE(port.write(numbered(1)));
    EXPECT_TRUE(port.write(numbered(2)));
    EXPECT_EQ(nextIdentifier(port), 1);
    EXPECT_EQ(nextIdentifier(port), 2);
    auto read = std::async(std::launch::async, [&] { return nextIdentifier(port, -1); });
    EXPECT_FALSE(port.write(numbered(3)));
    EXPECT_EQ(read.get(), -1);
    EXPECT_EQ(nextIdentifier(port, generous), -1);
    EXPECT_FALSE(port.write(numbered(4)));
    EXPECT_FALSE(port.isOnBus());
    port.close();
    EXPECT_FALSE(port.open());
}

TEST(HostPort, ReportsThatCameBeforeUnpluggingCanStillBeRead) {
    HostPort port(withFault(FaultKind::Unplug));
    ASSERT_TRUE(port.open());
    port.write(numbered(1));
    port.write(numbered(2));
    EXPECT_FALSE(port.write(numbered(3)));
    EXPECT_EQ(nextIdentifier(port), 1);
    EXPECT_EQ(nextIdentifier(port), 2);
    EXPECT_EQ(nextIdentifier(port), -1);
}

TEST(HostPort, BootModeLeavesTheBus) {
    HostPort port{AdapterSettings()};
    ASSERT_TRUE(port.open());
    EXPECT_TRUE(port.write(enterBootMode));
    EXPECT_FALSE(port.isOnBus());
    EXPECT_EQ(nextIdentifier(port), 1);
    EXPECT_EQ(nextIdentifier(port), -1);
}

TEST(HostPort, AStalledPortRefusesWritesAndStillReads) {
    HostPort port(withFault(FaultKind::Stall));
    ASSERT_TRUE(port.open());
    EXPECT_TRUE(port.write(numbered(1)));
    EXPECT_TRUE(port.write(numbered(2)));
    EXPECT_FALSE(port.write(numbered(3)));
    EXPECT_EQ(nextIdentifier(port), 1);
    EXPECT_EQ(nextIdentifier(port), 2);
    EXPECT_EQ(nextIdentifier(port), 0);
    EXPECT_TRUE(port.isOnBus());
}

TEST(HostPort, ALateResponseComesAfterItsDelay) {
    for (const int patience : {generous, -1}) {
        HostPort port(withFault(FaultKind::LateResponse, 30ms));
        ASSERT_TRUE(port.open());
        port.write(numbered(1));
        port.write(numbered(2));
        EXPECT_EQ(nextIdentifier(port), 1);
        EXPECT_EQ(nextIdentifier(port), 2);
        const auto start = Clock::now();
        port.write(numbered(3));
        EXPECT_EQ(nextIdentifier(port, patience), 3);
        EXPECT_GE(Clock::now() - start, 30ms);
    }
}

TEST(HostPort, AReadGivesUpOnAResponseThatIsTooLate) {
    HostPort port(withFault(FaultKind::LateResponse, 1h));
    ASSERT_TRUE(port.open());
    for (uint8_t i = 1; i <= 3; ++i) {
        port.write(numbered(i));
    }
    EXPECT_EQ(nextIdentifier(port), 1);
    EXPECT_EQ(nextIdentifier(port), 2);
    EXPECT_EQ(nextIdentifier(port, 10), 0);
}

TEST(HostPort, EveryUnreadReportIsKept) {
    HostPort port{AdapterSettings()};
    ASSERT_TRUE(port.open());
    for (uint8_t i = 1; i <= 200; ++i) {
        ASSERT_TRUE(port.write(numbered(i)));
    }
    for (int i = 1; i <= 200; ++i) {
        EXPECT_EQ(nextIdentifier(port), i);
    }
    EXPECT_EQ(nextIdentifier(port), 0);
}

TEST(HostPort, LostReportsAreTheOldestBeyondThirtyTwo) {
    HostPort port(withFault(FaultKind::LostReports));
    ASSERT_TRUE(port.open());
    for (uint8_t i = 1; i <= 40; ++i) {
        ASSERT_TRUE(port.write(numbered(i)));
    }
    for (int i = 9; i <= 40; ++i) {
        EXPECT_EQ(nextIdentifier(port), i);
    }
    EXPECT_EQ(nextIdentifier(port), 0);
}

TEST(HostPort, AnOpenAdapterIsNotOpenedTwice) {
    HostPort port{AdapterSettings()};
    EXPECT_TRUE(port.open());
    EXPECT_FALSE(port.open());
    port.close();
    EXPECT_TRUE(port.open());
}

TEST(HostPort, AClosedAdapterIsNeitherReadNorWritten) {
    HostPort port{AdapterSettings()};
    EXPECT_FALSE(port.write(request));
    EXPECT_EQ(nextIdentifier(port, generous), -1);
    ASSERT_TRUE(port.open());
    port.close();
    EXPECT_FALSE(port.write(request));
    EXPECT_EQ(nextIdentifier(port, generous), -1);
}

TEST(HostPort, ClosingDropsUnreadReports) {
    HostPort port{AdapterSettings()};
    ASSERT_TRUE(port.open());
    ASSERT_TRUE(port.write(numbered(1)));
    port.close();
    ASSERT_TRUE(port.open());
    EXPECT_EQ(nextIdentifier(port), 0);
}

TEST(HostPort, AWaitingReadIsEndedByClosing) {
    HostPort port{AdapterSettings()};
    ASSERT_TRUE(port.open());
    auto read = std::async(std::launch::async, [&] { return nextIdentifier(port, -1); });
    port.close();
    EXPECT_EQ(read.get(), -1);
}

TEST(HostPort, WithoutPermissionItIsOnTheBusAndCannotBeOpened) {
    HostPort port(withFault(FaultKind::NoPermission));
    EXPECT_TRUE(port.isOnBus());
    EXPECT_FALSE(port.isAccessible());
    EXPECT_FALSE(port.open());
}

TEST(HostPort, ReadersAndWritersMayMeet) {
    HostPort port{AdapterSettings()};
    ASSERT_TRUE(port.open());
    constexpr int perWriter = 500;
    std::atomic<int> received{0};
    auto reader = [&] {
        while (received < 2 * perWriter) {
            if (nextIdentifier(port, 1) > 0) {
                ++received;
            }
        }
    };
    auto writer = [&](uint8_t identifier) {
        for (int i = 0; i < perWriter; ++i) {
            EXPECT_TRUE(port.write(numbered(identifier)));
            EXPECT_TRUE(port.isOnBus());
            EXPECT_TRUE(port.isOpen());
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
