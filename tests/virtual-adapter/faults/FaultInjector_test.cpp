#include "device/AdapterLink.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using virtual_adapter::AdapterLink;
using virtual_adapter::Bytes;
using virtual_adapter::Fault;
using virtual_adapter::FaultInjector;
using virtual_adapter::FaultKind;
using virtual_adapter::Frame;
using virtual_adapter::fullSpeedVariant;
using virtual_adapter::OutgoingFrame;

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

/// What an injector makes of the third answer.
std::vector<Frame> thirdAnswer(FaultKind kind, const std::vector<Frame>& answer) {
    FaultInjector faults(Fault{kind});
    faults.apply({{0x01, 0x00, 0x07, 0x04, 0x00, 0x00}});
    faults.apply({{0x02, 0x00, 0x07, 0x04, 0x00, 0x00}});
    std::vector<Frame> frames;
    for (const OutgoingFrame& outgoing : faults.apply(answer)) {
        frames.push_back(outgoing.frame);
    }
    return frames;
}

TEST(FaultInjector, ASpoiltIdentifierNeverTurnsIntoZero) {
    EXPECT_EQ(thirdAnswer(FaultKind::WrongIdentifier, {{0xFF, 0xFF, 0x02, 0x14, 0x00, 0x00}}),
              (std::vector<Frame>{{0x01, 0x00, 0x02, 0x14, 0x00, 0x00}}));
    EXPECT_EQ(thirdAnswer(FaultKind::WrongIdentifier, {{0xFF, 0x00, 0x02, 0x14, 0x00, 0x00}}),
              (std::vector<Frame>{{0x00, 0x01, 0x02, 0x14, 0x00, 0x00}}));
}

TEST(FaultInjector, ALostResponseLeavesTheNotificationsBehindIt) {
    const Frame gpio{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x01};
    EXPECT_EQ(thirdAnswer(FaultKind::LostResponse, {{0x03, 0x00, 0x02, 0x14, 0x00, 0x00}, gpio}),
              std::vector<Frame>{gpio});
}

TEST(FaultInjector, EveryCountIsMadeTooLong) {
    const std::vector<std::pair<Frame, Frame>> cases{
        // Identity string
        {{3, 0, 0x07, 0x04, 0, 0, 0x02, 'x'}, {3, 0, 0x07, 0x04, 0, 0, 0xFF, 'x'}},
        // I2C read
        {{3, 0, 0x05, 0x09, 0, 0, 0, 1, 0, 0xAA}, {3, 0, 0x05, 0x09, 0, 0, 0, 0xFF, 0xFF, 0xAA}},
        // I2C scan: two counts
        {{3, 0, 0x06, 0x09, 0, 0, 0, 1, 0, 0x50}, {3, 0, 0x06, 0x09, 0, 0, 0, 0xFF, 0xFF, 0x50}},
        // SPI transfer
        {{3, 0, 0x04, 0x0D, 0, 0, 1, 0, 0xAA}, {3, 0, 0x04, 0x0D, 0, 0, 0xFF, 0xFF, 0xAA}},
        // I3C device table
        {{3, 0, 0x06, 0x19, 0, 0, 0}, {3, 0, 0x06, 0x19, 0, 0, 0xFF}},
        // I3C private read
        {{3, 0, 0x08, 0x19, 0, 0, 0, 0, 1, 0, 0xAA},
         {3, 0, 0x08, 0x19, 0, 0, 0, 0, 0xFF, 0xFF, 0xAA}},
        // I3C CCC
        {{3, 0, 0x09, 0x19, 0, 0, 0, 0, 0, 1, 0xAA}, {3, 0, 0x09, 0x19, 0, 0, 0, 0, 0, 0xFF, 0xAA}},
        // UART notification
        {{0, 0, 0x81, 0x10, 0, 0, 1, 0, 'x'}, {0, 0, 0x81, 0x10, 0, 0, 0xFF, 0xFF, 'x'}},
        // I3C in-band interrupt
        {{0, 0, 0x81, 0x19, 0, 0, 8, 1, 0xAA}, {0, 0, 0x81, 0x19, 0, 0, 8, 0xFF, 0xAA}},
        // A response that ends before its count
        {{3, 0, 0x08, 0x19, 0, 0, 0, 0}, {3, 0, 0x08, 0x19, 0, 0, 0, 0}},
        // A response without a count
        {{3, 0, 0x03, 0x14, 0, 0, 1}, {3, 0, 0x03, 0x14, 0, 0, 1}},
    };
    for (const auto& [sent, expected] : cases) {
        EXPECT_EQ(thirdAnswer(FaultKind::OverLongCount, {sent}), std::vector<Frame>{expected});
    }
}

TEST(FaultInjector, AStormSurroundsTheResponseWithNotificationsOfEveryKind) {
    const Frame answer{0x03, 0x00, 0x02, 0x14, 0x00, 0x00};
    const std::vector<Frame> frames = thirdAnswer(FaultKind::NotificationStorm, {answer});
    ASSERT_EQ(frames.size(), 2001U);
    EXPECT_EQ(frames[1000], answer);

    EXPECT_EQ(frames[0], (Frame{0x00, 0x00, 0x82, 0x19, 0x00, 0x00, 0x04, 0x6A, 0x00, 0x00, 0x00,
                                0x01, 0x06, 0xC6, 0x08}));
    EXPECT_EQ(frames[1], (Frame{0x00, 0x00, 0x81, 0x19, 0x00, 0x00, 0x08, 0x02, 0xAB, 0xCD}));
    EXPECT_EQ(frames[2], (Frame{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x01}));
    Frame uart{0x00, 0x00, 0x81, 0x10, 0x00, 0x00, 0x60, 0x00};
    uart.resize(104, 'U');
    EXPECT_EQ(frames[3], uart);
    EXPECT_EQ(frames[4], (Frame{0x00, 0x00, 0xFF, 0x7F, 0x00, 0x00}));
    for (size_t i = 5; i < 1000; ++i) {
        EXPECT_EQ(frames[i], frames[i % 5]);
        EXPECT_EQ(frames[1001 + i], frames[i % 5]);
    }
}

TEST(FaultInjector, TheFourthAnswerIsSoundAgain) {
    const Frame answer{0x04, 0x00, 0x02, 0x14, 0x00, 0x00};
    for (const FaultKind kind :
         {FaultKind::LateResponse, FaultKind::LostResponse, FaultKind::WrongIdentifier,
          FaultKind::ShortFrame, FaultKind::NotificationStorm}) {
        FaultInjector faults(Fault{kind});
        for (int i = 0; i < 3; ++i) {
            faults.apply({answer});
        }
        const std::vector<OutgoingFrame> frames = faults.apply({answer});
        ASSERT_EQ(frames.size(), 1U);
        EXPECT_EQ(frames.front().frame, answer);
        EXPECT_EQ(frames.front().delay, 0ms);
    }
}

TEST(FaultInjector, ARequestWithoutAnAnswerHasNothingToSpoil) {
    for (const auto& fault : virtual_adapter::faultNames()) {
        EXPECT_TRUE(thirdAnswer(fault.kind, {}).empty()) << fault.name;
    }
}

} // namespace
