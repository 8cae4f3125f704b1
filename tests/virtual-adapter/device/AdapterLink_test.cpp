// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/AdapterLink.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using virtual_adapter::AdapterLink;
using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;

namespace {

const AdapterLink::Time start{};

AdapterSettings highSpeed() {
    AdapterSettings settings;
    settings.identity = virtual_adapter::usbIdentities[1];
    return settings;
}

AdapterSettings withLatency(std::chrono::microseconds latency) {
    AdapterSettings settings;
    settings.latency = latency;
    return settings;
}

Bytes padded(Bytes packet, size_t reportSize) {
    packet.resize(reportSize);
    return packet;
}

/// Every report that has come until now.
std::vector<Bytes> inputReports(AdapterLink& link, AdapterLink::Time now = start) {
    std::vector<Bytes> reports;
    while (auto report = link.takeInputReport(now)) {
        reports.push_back(*report);
    }
    return reports;
}

const Bytes askForString3{0x17, 0x00, 0x05, 0x00, 0x07, 0x04, 0x03};
const Bytes string3{0x3B, 0x00, 0x05, 0x00, 0x07, 0x04, 0x00, 0x00,
                    0x08, 'V',  'A',  '-',  '0',  '0',  '0',  '1'};

TEST(AdapterLink, AFullSpeedRequestIsAnsweredWithA64ByteReport) {
    AdapterLink link{AdapterSettings()};
    EXPECT_TRUE(link.writeReport(padded(askForString3, 64), start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 64)});
}

TEST(AdapterLink, AHighSpeedRequestIsAnsweredWithA1024ByteReport) {
    AdapterLink link(highSpeed());
    EXPECT_TRUE(link.writeReport(padded(askForString3, 1024), start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 1024)});
}

TEST(AdapterLink, AShortReportIsAsGoodAsAPaddedOne) {
    AdapterLink link{AdapterSettings()};
    EXPECT_TRUE(link.writeReport(askForString3, start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 64)});
}

TEST(AdapterLink, ARequestIsJoinedFromSeveralReports) {
    AdapterLink link{AdapterSettings()};
    EXPECT_TRUE(link.writeReport({0x0D, 0x00, 0x05, 0x00, 0x07}, start));
    EXPECT_TRUE(inputReports(link).empty());
    EXPECT_TRUE(link.writeReport({0x0A, 0x00, 0x04, 0x03}, start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 64)});
}

TEST(AdapterLink, ATransferLongerThanAReportIsSeveralReports) {
    AdapterLink link{AdapterSettings()};
    Bytes transfer = padded({0x0D, 0x00, 0x05, 0x00, 0x07}, 64);
    transfer.insert(transfer.end(), {0x0A, 0x00, 0x04, 0x03});
    EXPECT_TRUE(link.writeReport(transfer, start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 64)});
}

TEST(AdapterLink, ALongResponseIsSplitIntoFullReports) {
    AdapterSettings settings;
    settings.serialNumber = std::string(60, 's');
    AdapterLink link(settings);
    EXPECT_TRUE(link.writeReport(askForString3, start));

    Bytes first{0xF9, 0x00, 0x05, 0x00, 0x07, 0x04, 0x00, 0x00, 0x3D};
    first.resize(64, 's');
    const Bytes last = padded({0x16, 0x00, 's', 's', 's', 's', 's'}, 64);
    EXPECT_EQ(inputReports(link), (std::vector<Bytes>{first, last}));
}

TEST(AdapterLink, EmptyAndZeroReportsAreTakenAndNotAnswered) {
    AdapterLink link{AdapterSettings()};
    EXPECT_TRUE(link.writeReport({}, start));
    EXPECT_TRUE(link.writeReport(Bytes(64, 0x00), start));
    EXPECT_FALSE(link.nextInputDue());
}

TEST(AdapterLink, ARequestDoesNotLeakIntoTheNextOne) {
    AdapterLink link{AdapterSettings()};
    EXPECT_TRUE(link.writeReport(askForString3, start));
    EXPECT_EQ(inputReports(link).size(), 1U);
    EXPECT_TRUE(link.writeReport({0x02, 0x00}, start)) << "last packet of nothing";
    EXPECT_FALSE(link.nextInputDue());
}

TEST(AdapterLink, BootModeLeavesTheBusAfterItsResponse) {
    AdapterLink link{AdapterSettings()};
    EXPECT_TRUE(link.isOnBus());
    EXPECT_TRUE(link.writeReport({0x13, 0x00, 0x01, 0x00, 0x02, 0x04}, start));
    EXPECT_FALSE(link.isOnBus());
    EXPECT_EQ(inputReports(link),
              std::vector<Bytes>{padded({0x1B, 0x00, 0x01, 0x00, 0x02, 0x04, 0x00, 0x00}, 64)});
    EXPECT_FALSE(link.writeReport(askForString3, start));
    EXPECT_FALSE(link.nextInputDue());
}

// --- The time that reports take -----------------------------------------------------------------

TEST(AdapterLink, WithALatencyARequestAndItsAnswerTakeItOnceEach) {
    AdapterLink link(withLatency(1ms));
    EXPECT_TRUE(link.writeReport(askForString3, start));
    EXPECT_EQ(link.outputArrival(), start + 1ms);
    EXPECT_EQ(link.nextInputDue(), start + 2ms);
    EXPECT_TRUE(inputReports(link, start + 1999us).empty());
    EXPECT_EQ(inputReports(link, start + 2ms), std::vector<Bytes>{padded(string3, 64)});
}

TEST(AdapterLink, TwoRequestsInFlightShareTheWay) {
    AdapterLink link(withLatency(125us));
    EXPECT_TRUE(link.writeReport(askForString3, start));
    EXPECT_TRUE(link.writeReport(askForString3, start));
    EXPECT_EQ(link.outputArrival(), start + 250us);
    EXPECT_EQ(inputReports(link, start + 250us).size(), 1U);
    EXPECT_EQ(link.nextInputDue(), start + 375us);
}

TEST(AdapterLink, EveryReportOfALongMessageTakesTheLatency) {
    AdapterSettings settings = withLatency(1ms);
    settings.serialNumber = std::string(60, 's');
    AdapterLink link(settings);
    EXPECT_TRUE(link.writeReport({0x0D, 0x00, 0x05, 0x00, 0x07}, start));
    EXPECT_TRUE(link.writeReport({0x0A, 0x00, 0x04, 0x03}, start));
    EXPECT_EQ(inputReports(link, start + 3ms).size(), 1U);
    EXPECT_EQ(inputReports(link, start + 4ms).size(), 1U);
}

TEST(AdapterLink, ARequestAfterAPauseStartsAtOnce) {
    AdapterLink link(withLatency(1ms));
    EXPECT_TRUE(link.writeReport(askForString3, start));
    EXPECT_TRUE(link.writeReport(askForString3, start + 10ms));
    EXPECT_EQ(inputReports(link, start + 2ms).size(), 1U);
    EXPECT_EQ(link.nextInputDue(), start + 12ms);
}

TEST(AdapterLink, TheResponseToBootModeNeedsNoTime) {
    AdapterLink link(withLatency(1ms));
    EXPECT_TRUE(link.writeReport(askForString3, start));
    EXPECT_TRUE(link.writeReport({0x13, 0x00, 0x01, 0x00, 0x02, 0x04}, start));
    EXPECT_EQ(inputReports(link, start).size(), 2U);
}

} // namespace
