// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/HostedAdapter.hpp"

#include <gtest/gtest.h>

#include <optional>

using namespace std::chrono_literals;
using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;
using virtual_adapter::FaultKind;
using virtual_adapter::HostedAdapter;

namespace {

/// The time of every call that does not say another.
constexpr HostedAdapter::Time start{};

const Bytes enterBootMode{0x13, 0x00, 0x01, 0x00, 0x02, 0x04};

AdapterSettings withFault(FaultKind kind, std::chrono::milliseconds delay = 0ms) {
    AdapterSettings settings;
    settings.faults = {{kind, {}}};
    settings.faultDelay = delay;
    return settings;
}

/// A request for identity string 1.
Bytes numbered(uint8_t identifier) {
    return {0x17, 0x00, identifier, 0x00, 0x07, 0x04, 0x01};
}

/// The transaction identifier of the next report; nothing when there is none.
std::optional<int> nextIdentifier(HostedAdapter& adapter, HostedAdapter::Time now = start) {
    const auto report = adapter.read(now);
    return report ? std::optional<int>(report->at(2)) : std::nullopt;
}

TEST(HostedAdapter, AReportIsWhole) {
    HostedAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open(1));
    ASSERT_TRUE(adapter.write(numbered(7), start));
    Bytes response{0x37, 0x00, 0x07, 0x00, 0x07, 0x04, 0x00, 0x00,
                   0x07, 0x56, 0x65, 0x6C, 0x74, 0x72, 0x61};
    response.resize(64);
    EXPECT_EQ(adapter.read(start), response);
    EXPECT_EQ(adapter.read(start), std::nullopt);
}

TEST(HostedAdapter, AnUnpluggedAdapterIsGoneForItsOpener) {
    HostedAdapter adapter(withFault(FaultKind::Unplug));
    ASSERT_TRUE(adapter.open(1));
    EXPECT_TRUE(adapter.write(numbered(1), start));
    EXPECT_TRUE(adapter.write(numbered(2), start));
    EXPECT_FALSE(adapter.write(numbered(3), start));
    EXPECT_FALSE(adapter.isInReach());
    EXPECT_EQ(nextIdentifier(adapter), 1) << "what came before can still be read";
    EXPECT_EQ(nextIdentifier(adapter), 2);
    EXPECT_EQ(nextIdentifier(adapter), std::nullopt);
    EXPECT_FALSE(adapter.write(numbered(4), start));
    adapter.close(start);
    EXPECT_FALSE(adapter.open(2));
}

TEST(HostedAdapter, BootModeLeavesTheBus) {
    HostedAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open(1));
    EXPECT_TRUE(adapter.write(enterBootMode, start));
    EXPECT_FALSE(adapter.isOnBus());
    EXPECT_EQ(nextIdentifier(adapter), 1);
    EXPECT_EQ(nextIdentifier(adapter), std::nullopt);
}

TEST(HostedAdapter, AStalledAdapterRefusesWritesAndStillReads) {
    HostedAdapter adapter(withFault(FaultKind::Stall));
    ASSERT_TRUE(adapter.open(1));
    EXPECT_TRUE(adapter.write(numbered(1), start));
    EXPECT_TRUE(adapter.write(numbered(2), start));
    EXPECT_FALSE(adapter.write(numbered(3), start));
    EXPECT_EQ(nextIdentifier(adapter), 1);
    EXPECT_EQ(nextIdentifier(adapter), 2);
    EXPECT_EQ(nextIdentifier(adapter), std::nullopt);
    EXPECT_TRUE(adapter.isInReach());
}

TEST(HostedAdapter, ALateResponseComesAfterItsDelay) {
    HostedAdapter adapter(withFault(FaultKind::LateResponse, 30ms));
    ASSERT_TRUE(adapter.open(1));
    for (uint8_t i = 1; i <= 3; ++i) {
        EXPECT_TRUE(adapter.write(numbered(i), start));
    }
    EXPECT_EQ(nextIdentifier(adapter), 1);
    EXPECT_EQ(nextIdentifier(adapter), 2);
    EXPECT_EQ(nextIdentifier(adapter, start + 29ms), std::nullopt);
    EXPECT_EQ(adapter.nextDue(), start + 30ms);
    EXPECT_EQ(nextIdentifier(adapter, start + 30ms), 3);
}

TEST(HostedAdapter, EveryUnreadReportIsKept) {
    HostedAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open(1));
    for (uint8_t i = 1; i <= 200; ++i) {
        ASSERT_TRUE(adapter.write(numbered(i), start));
    }
    for (int i = 1; i <= 200; ++i) {
        EXPECT_EQ(nextIdentifier(adapter), i);
    }
    EXPECT_EQ(nextIdentifier(adapter), std::nullopt);
}

TEST(HostedAdapter, WithTooMuchUnreadItTakesNothingMore) {
    HostedAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open(1));
    for (int i = 0; i <= 65'536; ++i) {
        ASSERT_TRUE(adapter.write(numbered(1), start)) << i;
    }
    EXPECT_FALSE(adapter.write(numbered(2), start));
    EXPECT_TRUE(adapter.isInReach());
    EXPECT_EQ(nextIdentifier(adapter), 1);
    EXPECT_TRUE(adapter.write(numbered(2), start));
}

TEST(HostedAdapter, LostReportsAreTheOldestBeyondThirtyTwo) {
    HostedAdapter adapter(withFault(FaultKind::LostReports));
    ASSERT_TRUE(adapter.open(1));
    for (uint8_t i = 1; i <= 40; ++i) {
        ASSERT_TRUE(adapter.write(numbered(i), start));
    }
    for (int i = 9; i <= 40; ++i) {
        EXPECT_EQ(nextIdentifier(adapter), i);
    }
    EXPECT_EQ(nextIdentifier(adapter), std::nullopt);
}

TEST(HostedAdapter, AnOpenAdapterIsNotOpenedTwice) {
    HostedAdapter adapter{AdapterSettings()};
    EXPECT_TRUE(adapter.open(1));
    EXPECT_FALSE(adapter.open(2));
    EXPECT_TRUE(adapter.isOpenAs(1));
    adapter.close(start);
    EXPECT_FALSE(adapter.isOpenAs(1));
    EXPECT_TRUE(adapter.open(2));
}

TEST(HostedAdapter, ClosingDropsUnreadReports) {
    HostedAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open(1));
    ASSERT_TRUE(adapter.write(numbered(1), start));
    adapter.close(start);
    ASSERT_TRUE(adapter.open(2));
    EXPECT_EQ(nextIdentifier(adapter), std::nullopt);
}

TEST(HostedAdapter, ClosingDropsALateReportThatIsDue) {
    HostedAdapter adapter(withFault(FaultKind::LateResponse, 1ms));
    ASSERT_TRUE(adapter.open(1));
    for (uint8_t i = 1; i <= 3; ++i) {
        ASSERT_TRUE(adapter.write(numbered(i), start));
    }
    adapter.close(start + 1ms);
    ASSERT_TRUE(adapter.open(2));
    EXPECT_EQ(nextIdentifier(adapter, start + 1h), std::nullopt);
}

TEST(HostedAdapter, ALateReportThatIsNotDueIsForWhoeverOpensNext) {
    HostedAdapter adapter(withFault(FaultKind::LateResponse, 1ms));
    ASSERT_TRUE(adapter.open(1));
    for (uint8_t i = 1; i <= 3; ++i) {
        ASSERT_TRUE(adapter.write(numbered(i), start));
    }
    adapter.close(start);
    ASSERT_TRUE(adapter.open(2));
    EXPECT_EQ(nextIdentifier(adapter, start + 1ms), 3);
}

TEST(HostedAdapter, WithoutPermissionItIsOnTheBusAndCannotBeOpened) {
    HostedAdapter adapter(withFault(FaultKind::NoPermission));
    EXPECT_TRUE(adapter.isOnBus());
    EXPECT_FALSE(adapter.isAccessible());
    EXPECT_FALSE(adapter.open(1));
}

TEST(HostedAdapter, AResetBeginsAnewForTheSameOpener) {
    HostedAdapter adapter(withFault(FaultKind::LostResponse));
    ASSERT_TRUE(adapter.open(1));
    for (const char* const round : {"first", "second"}) {
        for (uint8_t i = 1; i <= 3; ++i) {
            ASSERT_TRUE(adapter.write(numbered(i), start)) << round;
        }
        EXPECT_EQ(nextIdentifier(adapter), 1) << round;
        EXPECT_EQ(nextIdentifier(adapter), 2) << round;
        EXPECT_EQ(nextIdentifier(adapter), std::nullopt) << round;
        ASSERT_TRUE(adapter.write(numbered(4), start)) << round;
        adapter.reset();
        EXPECT_EQ(nextIdentifier(adapter), std::nullopt) << "unread reports go with a reset";
        EXPECT_TRUE(adapter.isOpenAs(1));
    }
}

TEST(HostedAdapter, AnAdapterThatIsBackMustBeOpenedAnew) {
    HostedAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open(1));
    ASSERT_TRUE(adapter.write(numbered(1), start));
    adapter.unplug(start);
    EXPECT_FALSE(adapter.isOnBus());
    adapter.plug();
    EXPECT_TRUE(adapter.isOnBus());
    EXPECT_FALSE(adapter.isInReach());
    EXPECT_FALSE(adapter.write(numbered(2), start));
    EXPECT_EQ(nextIdentifier(adapter), 1) << "what came before can still be read";
    adapter.close(start);
    ASSERT_TRUE(adapter.open(2));
    EXPECT_TRUE(adapter.write(numbered(3), start));
    EXPECT_EQ(nextIdentifier(adapter), 3);
}

TEST(HostedAdapter, PluggingInWhatIsPluggedInChangesNothing) {
    HostedAdapter adapter{AdapterSettings()};
    ASSERT_TRUE(adapter.open(1));
    ASSERT_TRUE(adapter.write(numbered(1), start));
    adapter.plug();
    EXPECT_TRUE(adapter.isInReach());
    EXPECT_EQ(nextIdentifier(adapter), 1);
}

} // namespace
