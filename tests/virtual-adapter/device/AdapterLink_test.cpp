// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/AdapterLink.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using virtual_adapter::AdapterLink;
using virtual_adapter::Bytes;
using virtual_adapter::fullSpeedVariant;
using virtual_adapter::highSpeedVariant;

namespace {

const AdapterLink::Time start{};

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
    AdapterLink link(fullSpeedVariant, "VA-0001");
    EXPECT_TRUE(link.writeReport(padded(askForString3, 64), start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 64)});
}

TEST(AdapterLink, AHighSpeedRequestIsAnsweredWithA1024ByteReport) {
    AdapterLink link(highSpeedVariant, "VA-0001");
    EXPECT_TRUE(link.writeReport(padded(askForString3, 1024), start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 1024)});
}

TEST(AdapterLink, AShortReportIsAsGoodAsAPaddedOne) {
    AdapterLink link(fullSpeedVariant, "VA-0001");
    EXPECT_TRUE(link.writeReport(askForString3, start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 64)});
}

TEST(AdapterLink, ARequestIsJoinedFromSeveralReports) {
    AdapterLink link(fullSpeedVariant, "VA-0001");
    EXPECT_TRUE(link.writeReport({0x0D, 0x00, 0x05, 0x00, 0x07}, start));
    EXPECT_TRUE(inputReports(link).empty());
    EXPECT_TRUE(link.writeReport({0x0A, 0x00, 0x04, 0x03}, start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 64)});
}

TEST(AdapterLink, ATransferLongerThanAReportIsSeveralReports) {
    AdapterLink link(fullSpeedVariant, "VA-0001");
    Bytes transfer = padded({0x0D, 0x00, 0x05, 0x00, 0x07}, 64);
    transfer.insert(transfer.end(), {0x0A, 0x00, 0x04, 0x03});
    EXPECT_TRUE(link.writeReport(transfer, start));
    EXPECT_EQ(inputReports(link), std::vector<Bytes>{padded(string3, 64)});
}

TEST(AdapterLink, ALongResponseIsSplitIntoFullReports) {
    AdapterLink link(fullSpeedVariant, std::string(60, 's'));
    EXPECT_TRUE(link.writeReport(askForString3, start));

    Bytes first{0xF9, 0x00, 0x05, 0x00, 0x07, 0x04, 0x00, 0x00, 0x3D};
    first.resize(64, 's');
    const Bytes last = padded({0x16, 0x00, 's', 's', 's', 's', 's'}, 64);
    EXPECT_EQ(inputReports(link), (std::vector<Bytes>{first, last}));
}

TEST(AdapterLink, EmptyAndZeroReportsAreTakenAndNotAnswered) {
    AdapterLink link(fullSpeedVariant, "VA-0001");
    EXPECT_TRUE(link.writeReport({}, start));
    EXPECT_TRUE(link.writeReport(Bytes(64, 0x00), start));
    EXPECT_FALSE(link.nextInputDue());
}

TEST(AdapterLink, ARequestDoesNotLeakIntoTheNextOne) {
    AdapterLink link(fullSpeedVariant, "VA-0001");
    EXPECT_TRUE(link.writeReport(askForString3, start));
    EXPECT_EQ(inputReports(link).size(), 1U);
    EXPECT_TRUE(link.writeReport({0x02, 0x00}, start)) << "last packet of nothing";
    EXPECT_FALSE(link.nextInputDue());
}

TEST(AdapterLink, BootModeLeavesTheBusAfterItsResponse) {
    AdapterLink link(fullSpeedVariant, "VA-0001");
    EXPECT_TRUE(link.isOnBus());
    EXPECT_TRUE(link.writeReport({0x13, 0x00, 0x01, 0x00, 0x02, 0x04}, start));
    EXPECT_FALSE(link.isOnBus());
    EXPECT_EQ(inputReports(link),
              std::vector<Bytes>{padded({0x1B, 0x00, 0x01, 0x00, 0x02, 0x04, 0x00, 0x00}, 64)});
    EXPECT_FALSE(link.writeReport(askForString3, start));
    EXPECT_FALSE(link.nextInputDue());
}

} // namespace
