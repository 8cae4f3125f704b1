// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/VeltraDriver.hpp"
#include "support/Variant.hpp"

#include <memory>
#include <optional>

#include <gtest/gtest.h>

using namespace test_support;

namespace {

/// What passes through a driver that has been opened, and what it does when nothing does.
class VeltraDriverTraffic : public testing::TestWithParam<Variant> {
protected:
    VeltraDriverTraffic() {
        hid.attach({"1-1:1.0", vendorId, GetParam().productId, L"VA-0001"});
        driver.onResponse([this](const Bytes& report) { received.push_back(report); });
    }

    ScriptedHid hid;
    // Written on the polling thread; whoever has waited until everything was read may look.
    std::vector<Bytes> received;
    VeltraDriver driver;
};
INSTANTIATE_ON_BOTH_VARIANTS(VeltraDriverTraffic);

// Writing.

TEST_P(VeltraDriverTraffic, EveryWriteIsAWholeReportBehindIdentifierZero) {
    ASSERT_TRUE(driver.open("", ""));
    EXPECT_TRUE(driver.sendCommand({}));
    EXPECT_TRUE(driver.sendCommand({0xAB, 0xCD}));
    const Bytes full(GetParam().reportSize, 0x5A);
    EXPECT_TRUE(driver.sendCommand(full));

    Bytes empty(GetParam().reportSize + 1);
    Bytes two = empty;
    two[1] = 0xAB;
    two[2] = 0xCD;
    Bytes whole(GetParam().reportSize + 1, 0x5A);
    whole[0] = 0;
    EXPECT_EQ(hid.writes(), (std::vector<Bytes>{empty, two, whole}));
}

TEST_P(VeltraDriverTraffic, APacketLongerThanTheReportIsCut) {
    ASSERT_TRUE(driver.open("", ""));
    Bytes packet(GetParam().reportSize + 1, 0x5A);
    packet.back() = 0xEE;
    EXPECT_TRUE(driver.sendCommand(packet));
    Bytes expected(GetParam().reportSize + 1, 0x5A);
    expected[0] = 0;
    EXPECT_EQ(hid.writes(), std::vector<Bytes>{expected});
}

TEST_P(VeltraDriverTraffic, AWriteFailsWhenHidapiReturnsANegativeValueOnly) {
    ASSERT_TRUE(driver.open("", ""));
    hid.failWriting(-1);
    EXPECT_FALSE(driver.sendCommand({0x01}));
    hid.failWriting(0);
    EXPECT_TRUE(driver.sendCommand({0x01}));
    hid.failWriting(5);
    EXPECT_TRUE(driver.sendCommand({0x01})) << "a short write counts as success";
    hid.failWriting(std::nullopt);
    EXPECT_TRUE(driver.sendCommand({0x01}));
    EXPECT_EQ(hid.writes().size(), 4U) << "nothing is retried";
}

// Reading.

TEST_P(VeltraDriverTraffic, ReadsAskForOneReportAndWaitATenthOfASecond) {
    ASSERT_TRUE(driver.open("", ""));
    ASSERT_TRUE(hid.waitForReads(2));
    EXPECT_EQ(hid.lastReadLength(), GetParam().reportSize);
    EXPECT_EQ(hid.lastReadTimeout(), 100);
}

TEST_P(VeltraDriverTraffic, EveryReportIsHandedUpInOrder) {
    ASSERT_TRUE(driver.open("", ""));
    const std::vector<Bytes> reports{Bytes(GetParam().reportSize, 0x01),
                                     Bytes(GetParam().reportSize, 0x02),
                                     Bytes(GetParam().reportSize, 0x03)};
    for (const Bytes& report : reports) {
        hid.deliver(report);
    }
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, reports);
}

TEST_P(VeltraDriverTraffic, TheTailOfAShortReportHoldsEarlierReports) {
    ASSERT_TRUE(driver.open("", ""));
    hid.deliver({0x01});
    hid.deliver(Bytes(GetParam().reportSize, 0x22));
    hid.deliver({0x31, 0x32, 0x33});
    ASSERT_TRUE(hid.waitUntilDrained());

    Bytes first(GetParam().reportSize);
    first[0] = 0x01;
    const Bytes second(GetParam().reportSize, 0x22);
    Bytes third = second;
    third[0] = 0x31;
    third[1] = 0x32;
    third[2] = 0x33;
    EXPECT_EQ(received, (std::vector<Bytes>{first, second, third}));
}

TEST_P(VeltraDriverTraffic, AReopenedDriverReadsIntoAClearedBuffer) {
    ASSERT_TRUE(driver.open("", ""));
    hid.deliver(Bytes(GetParam().reportSize, 0x22));
    ASSERT_TRUE(hid.waitUntilDrained());
    driver.close();
    ASSERT_TRUE(driver.open("", ""));
    hid.deliver({0x01});
    ASSERT_TRUE(hid.waitUntilDrained());
    ASSERT_EQ(received.size(), 2U);
    EXPECT_EQ(received.back(), GetParam().input({0x01}));
}

TEST_P(VeltraDriverTraffic, AReadThatTimesOutHandsNothingUp) {
    ASSERT_TRUE(driver.open("", ""));
    ASSERT_TRUE(hid.waitForReads(3));
    EXPECT_TRUE(received.empty());
}

TEST_P(VeltraDriverTraffic, ReportsWithoutAReceiverAreDropped) {
    VeltraDriver deaf;
    ASSERT_TRUE(deaf.open("", ""));
    hid.deliver(GetParam().input({0x01}));
    EXPECT_TRUE(hid.waitUntilDrained());
    EXPECT_TRUE(received.empty());
}

TEST_P(VeltraDriverTraffic, TheLastReceiverInstalledGetsTheReports) {
    driver.onResponse([](const Bytes&) { ADD_FAILURE() << "a replaced receiver was called"; });
    driver.onResponse([this](const Bytes& report) { received.push_back(report); });
    ASSERT_TRUE(driver.open("", ""));
    hid.deliver(GetParam().input({0x01}));
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received.size(), 1U);
}

// Read errors.

TEST_P(VeltraDriverTraffic, ReadingGoesOnAfterErrors) {
    ASSERT_TRUE(driver.open("", ""));
    hid.failReading(true);
    ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 5));
    EXPECT_TRUE(received.empty()) << "an error hands nothing up";
    hid.failReading(false);
    hid.deliver(GetParam().input({0x01}));
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, std::vector<Bytes>{GetParam().input({0x01})});
}

TEST_P(VeltraDriverTraffic, DestructionDuringThePauseAfterAReadErrorReturns) {
    hid.failReading(true);
    auto second = std::make_unique<VeltraDriver>();
    ASSERT_TRUE(second->open("", ""));
    ASSERT_TRUE(hid.waitForReads(10));
    second.reset();
    EXPECT_EQ(hid.openDevices(), 0U);
}

} // namespace
