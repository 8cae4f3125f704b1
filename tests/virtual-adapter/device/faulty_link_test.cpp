// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/AdapterLink.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using virtual_adapter::AdapterLink;
using virtual_adapter::Bytes;
using virtual_adapter::FaultKind;
using virtual_adapter::fullSpeedVariant;

namespace {

const AdapterLink::Time start{};

/// A request for identity string 1 under the given transaction identifier, and its response.
Bytes request(uint8_t identifier) {
    return {0x17, 0x00, identifier, 0x00, 0x07, 0x04, 0x01};
}

Bytes padded(Bytes packet) {
    packet.resize(64);
    return packet;
}

Bytes response(uint8_t identifier) {
    return padded(
        {0x37, 0x00, identifier, 0x00, 0x07, 0x04, 0x00, 0x00, 0x07, 'V', 'e', 'l', 't', 'r', 'a'});
}

class FaultyLink : public testing::Test {
protected:
    /// Sends requests with the identifiers 1 to @p count and returns the reports that came.
    std::vector<Bytes> reportsAfter(AdapterLink& link, uint8_t count,
                                    AdapterLink::Time now = start) {
        for (uint8_t identifier = 1; identifier <= count; ++identifier) {
            EXPECT_TRUE(link.writeReport(request(identifier), start));
        }
        return reportsUntil(link, now);
    }

    static std::vector<Bytes> reportsUntil(AdapterLink& link, AdapterLink::Time now) {
        std::vector<Bytes> reports;
        while (auto report = link.takeInputReport(now)) {
            reports.push_back(*report);
        }
        return reports;
    }
};

TEST_F(FaultyLink, WithoutAFaultEveryResponseComesAtOnce) {
    AdapterLink link(fullSpeedVariant, "VA-0001");
    EXPECT_EQ(reportsAfter(link, 4),
              (std::vector<Bytes>{response(1), response(2), response(3), response(4)}));
}

TEST_F(FaultyLink, ALateResponseHoldsBackWhatIsBehindIt) {
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::LateResponse, 40ms});
    EXPECT_EQ(reportsAfter(link, 4, start + 39ms), (std::vector<Bytes>{response(1), response(2)}));
    EXPECT_EQ(link.nextInputDue(), start + 40ms);
    EXPECT_EQ(reportsUntil(link, start + 40ms), (std::vector<Bytes>{response(3), response(4)}));
}

TEST_F(FaultyLink, ALateResponseIsOneAndAHalfSecondsLateUnlessToldOtherwise) {
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::LateResponse});
    EXPECT_EQ(reportsAfter(link, 3).size(), 2U);
    EXPECT_EQ(link.nextInputDue(), start + 1500ms);
}

TEST_F(FaultyLink, ALostResponseIsTheThirdAndOnlyTheThird) {
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::LostResponse});
    EXPECT_EQ(reportsAfter(link, 4), (std::vector<Bytes>{response(1), response(2), response(4)}));
}

TEST_F(FaultyLink, AWrongIdentifierIsOneHigher) {
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::WrongIdentifier});
    EXPECT_EQ(reportsAfter(link, 4),
              (std::vector<Bytes>{response(1), response(2), response(4), response(4)}));
}

TEST_F(FaultyLink, AShortFrameEndsInsideItsHeader) {
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::ShortFrame});
    EXPECT_EQ(
        reportsAfter(link, 4),
        (std::vector<Bytes>{response(1), response(2),
                            padded({0x17, 0x00, 0x03, 0x00, 0x07, 0x04, 0x00}), response(4)}));
}

TEST_F(FaultyLink, UnpluggingOnTheThirdRequestIsForGood) {
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::Unplug});
    EXPECT_EQ(reportsAfter(link, 2), (std::vector<Bytes>{response(1), response(2)}));
    EXPECT_TRUE(link.isOnBus());
    EXPECT_FALSE(link.writeReport(request(3), start));
    EXPECT_FALSE(link.isOnBus());
    EXPECT_FALSE(link.writeReport(request(4), start));
    EXPECT_TRUE(reportsUntil(link, start).empty());
}

TEST_F(FaultyLink, BootModeLeavesNothingToComeLater) {
    const Bytes enterBootMode{0x13, 0x00, 0x04, 0x00, 0x02, 0x04};
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::LateResponse, 40ms});
    for (uint8_t identifier = 1; identifier <= 3; ++identifier) {
        EXPECT_TRUE(link.writeReport(request(identifier), start));
    }
    EXPECT_TRUE(link.writeReport(enterBootMode, start));
    EXPECT_FALSE(link.isOnBus());
    EXPECT_EQ(reportsUntil(link, start), (std::vector<Bytes>{response(1), response(2)}));
    EXPECT_EQ(link.nextInputDue(), std::nullopt);
    EXPECT_TRUE(reportsUntil(link, start + 40ms).empty());
}

TEST_F(FaultyLink, AStallRefusesReportsFromTheThirdRequestOn) {
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::Stall});
    EXPECT_EQ(reportsAfter(link, 2), (std::vector<Bytes>{response(1), response(2)}));
    EXPECT_FALSE(link.writeReport(request(3), start));
    EXPECT_FALSE(link.writeReport(request(4), start));
    EXPECT_TRUE(link.isOnBus());
}

TEST_F(FaultyLink, AStallStrikesTheFirstReportOfALongRequest) {
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::Stall});
    reportsAfter(link, 2);
    EXPECT_FALSE(link.writeReport({0x0D, 0x00, 0x03, 0x00, 0x07}, start));
}

TEST_F(FaultyLink, AnOverLongCountStaysFromTheThirdResponseOn) {
    AdapterLink link(fullSpeedVariant, "VA-0001", {FaultKind::OverLongCount});
    Bytes third = response(3);
    Bytes fourth = response(4);
    third[8] = fourth[8] = 0xFF;
    EXPECT_EQ(reportsAfter(link, 4), (std::vector<Bytes>{response(1), response(2), third, fourth}));
}

TEST_F(FaultyLink, AFaultOfTheHostLeavesTheLinkAlone) {
    for (const FaultKind kind : {FaultKind::NoPermission, FaultKind::LostReports}) {
        AdapterLink link(fullSpeedVariant, "VA-0001", {kind});
        EXPECT_EQ(reportsAfter(link, 3),
                  (std::vector<Bytes>{response(1), response(2), response(3)}));
    }
}

} // namespace
