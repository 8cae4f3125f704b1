// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/AdapterLink.hpp"

#include "virtual-adapter/settings.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using virtual_adapter::AdapterLink;
using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;
using virtual_adapter::withFault;

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
    AdapterLink link{AdapterSettings()};
    EXPECT_EQ(reportsAfter(link, 4),
              (std::vector<Bytes>{response(1), response(2), response(3), response(4)}));
}

TEST_F(FaultyLink, ALateResponseHoldsBackWhatIsBehindIt) {
    AdapterLink link(withFault("late-response", 40ms));
    EXPECT_EQ(reportsAfter(link, 4, start + 39ms), (std::vector<Bytes>{response(1), response(2)}));
    EXPECT_EQ(link.nextInputDue(), start + 40ms);
    EXPECT_EQ(reportsUntil(link, start + 40ms), (std::vector<Bytes>{response(3)}));
    EXPECT_EQ(reportsUntil(link, start + 90ms), (std::vector<Bytes>{response(4)}));
}

TEST_F(FaultyLink, ALateResponseIsOneAndAHalfSecondsLateUnlessToldOtherwise) {
    AdapterLink link(withFault("late-response"));
    EXPECT_EQ(reportsAfter(link, 3).size(), 2U);
    EXPECT_EQ(link.nextInputDue(), start + 1500ms);
}

TEST_F(FaultyLink, ALostResponseIsTheThirdAndOnlyTheThird) {
    AdapterLink link(withFault("lost-response"));
    EXPECT_EQ(reportsAfter(link, 4), (std::vector<Bytes>{response(1), response(2), response(4)}));
}

TEST_F(FaultyLink, AWrongIdentifierIsOneHigher) {
    AdapterLink link(withFault("wrong-identifier"));
    EXPECT_EQ(reportsAfter(link, 4),
              (std::vector<Bytes>{response(1), response(2), response(4), response(4)}));
}

TEST_F(FaultyLink, AShortFrameEndsInsideItsHeader) {
    AdapterLink link(withFault("short-frame"));
    EXPECT_EQ(
        reportsAfter(link, 4),
        (std::vector<Bytes>{response(1), response(2),
                            padded({0x17, 0x00, 0x03, 0x00, 0x07, 0x04, 0x00}), response(4)}));
}

TEST_F(FaultyLink, UnpluggingOnTheThirdRequestIsForGood) {
    AdapterLink link(withFault("unplug"));
    EXPECT_EQ(reportsAfter(link, 2), (std::vector<Bytes>{response(1), response(2)}));
    EXPECT_TRUE(link.isOnBus());
    EXPECT_FALSE(link.writeReport(request(3), start));
    EXPECT_FALSE(link.isOnBus());
    EXPECT_FALSE(link.writeReport(request(4), start));
    EXPECT_TRUE(reportsUntil(link, start).empty());
}

TEST_F(FaultyLink, BootModeLeavesNothingToComeLater) {
    const Bytes enterBootMode{0x13, 0x00, 0x04, 0x00, 0x02, 0x04};
    AdapterLink link(withFault("late-response", 40ms));
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
    AdapterLink link(withFault("stall"));
    EXPECT_EQ(reportsAfter(link, 2), (std::vector<Bytes>{response(1), response(2)}));
    EXPECT_FALSE(link.writeReport(request(3), start));
    EXPECT_FALSE(link.writeReport(request(4), start));
    EXPECT_TRUE(link.isOnBus());
}

TEST_F(FaultyLink, AStallStrikesTheFirstReportOfALongRequest) {
    AdapterLink link(withFault("stall"));
    reportsAfter(link, 2);
    EXPECT_FALSE(link.writeReport({0x11, 0x00, 0x03, 0x00, 0x07, 0x04}, start));
}

TEST_F(FaultyLink, AnOverLongCountStaysFromTheThirdResponseOn) {
    AdapterLink link(withFault("over-long-count"));
    Bytes third = response(3);
    Bytes fourth = response(4);
    third[8] = fourth[8] = 0xFF;
    EXPECT_EQ(reportsAfter(link, 4), (std::vector<Bytes>{response(1), response(2), third, fourth}));
}

// --- Aimed faults -------------------------------------------------------------------------------

/// A read of bus 0, which nobody has initialised.
const Bytes i2cRead{0x3B, 0x00, 0x20, 0x00, 0x05, 0x09, 0, 1, 0, 0x50, 0, 0, 0, 0, 0, 0};
const Bytes i2cReadRefused = padded({0x1B, 0x00, 0x20, 0x00, 0x05, 0x09, 0x04, 0x00});

TEST_F(FaultyLink, AnAimedFaultStrikesTheNextRequestOfItsCommand) {
    AdapterLink link(withFault("lost-response@i2c-read"));
    EXPECT_EQ(reportsAfter(link, 3).size(), 3U);
    EXPECT_TRUE(link.writeReport(i2cRead, start));
    EXPECT_TRUE(reportsUntil(link, start).empty());
    EXPECT_TRUE(link.writeReport(i2cRead, start));
    EXPECT_EQ(reportsUntil(link, start), (std::vector<Bytes>{i2cReadRefused}));
}

TEST_F(FaultyLink, AnAimedFaultCountsTheRequestsOfItsCommandOnly) {
    AdapterLink link(withFault("wrong-identifier@i2c-read:2"));
    EXPECT_TRUE(link.writeReport(i2cRead, start));
    EXPECT_EQ(reportsAfter(link, 3),
              (std::vector<Bytes>{i2cReadRefused, response(1), response(2), response(3)}));
    EXPECT_TRUE(link.writeReport(i2cRead, start));
    EXPECT_EQ(reportsUntil(link, start),
              (std::vector<Bytes>{padded({0x1B, 0x00, 0x21, 0x00, 0x05, 0x09, 0x04, 0x00})}));
}

TEST_F(FaultyLink, AnAimedUnplugKeepsTheFirstReportOfItsRequestFromTheAdapter) {
    AdapterLink link(withFault("unplug@i2c-read"));
    EXPECT_EQ(reportsAfter(link, 3).size(), 3U);
    EXPECT_FALSE(link.writeReport({0x11, 0x00, 0x20, 0x00, 0x05, 0x09}, start));
    EXPECT_FALSE(link.isOnBus());
}

TEST_F(FaultyLink, AnAimedStallKnowsACommandThatTheSecondReportTells) {
    AdapterLink link(withFault("stall@get-usb-string:2"));
    EXPECT_TRUE(link.writeReport(request(1), start));
    EXPECT_TRUE(link.writeReport({0x09, 0x00, 0x02, 0x00}, start));
    EXPECT_FALSE(link.writeReport({0x0E, 0x00, 0x07, 0x04, 0x01}, start));
    EXPECT_FALSE(link.writeReport(request(3), start));
    EXPECT_EQ(reportsUntil(link, start), (std::vector<Bytes>{response(1)}));
}

TEST_F(FaultyLink, SeveralFaultsStrikeEachAtItsPlace) {
    AdapterSettings settings = withFault("lost-response@2");
    settings.faults.push_back(virtual_adapter::parseFault("short-frame@4"));
    settings.faults.push_back(virtual_adapter::parseFault("wrong-identifier@4"));
    AdapterLink link(settings);
    EXPECT_EQ(
        reportsAfter(link, 5),
        (std::vector<Bytes>{response(1), response(3),
                            padded({0x17, 0x00, 0x05, 0x00, 0x07, 0x04, 0x00}), response(5)}));
}

TEST_F(FaultyLink, AFaultOfTheHostLeavesTheLinkAlone) {
    for (const char* const fault : {"no-permission", "lost-reports"}) {
        AdapterLink link(withFault(fault));
        EXPECT_EQ(reportsAfter(link, 3),
                  (std::vector<Bytes>{response(1), response(2), response(3)}));
    }
}

} // namespace
