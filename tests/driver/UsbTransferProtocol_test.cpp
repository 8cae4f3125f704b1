// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/UsbTransferProtocol.hpp"
#include "support/Variant.hpp"

#include <gtest/gtest.h>

using namespace test_support;

namespace {

std::vector<Bytes> split(size_t reportSize, const Bytes& message) {
    std::vector<Bytes> packets;
    UsbTransferProtocol(reportSize).createUsbOutTransferPackets(packets, message);
    return packets;
}

/// The packet with this header and the bytes of @p message from @p offset on.
Bytes packet(uint8_t headerLow, uint8_t headerHigh, const Bytes& message, size_t offset,
             size_t length) {
    Bytes bytes{headerLow, headerHigh};
    const auto payload = message.begin() + static_cast<std::ptrdiff_t>(offset);
    bytes.insert(bytes.end(), payload, payload + static_cast<std::ptrdiff_t>(length));
    return bytes;
}

TEST(UsbTransferProtocol, ItKeepsTheReportSizeAndLeavesTwoBytesForTheHeader) {
    EXPECT_EQ(UsbTransferProtocol(64).getEndpointSize(), 64U);
    EXPECT_EQ(UsbTransferProtocol(64).getPacketPayloadLength(), 62U);
    EXPECT_EQ(UsbTransferProtocol(1024).getEndpointSize(), 1024U);
    EXPECT_EQ(UsbTransferProtocol(1024).getPacketPayloadLength(), 1022U);
}

TEST(UsbTransferProtocol, AnEmptyMessageHasNoPackets) {
    EXPECT_TRUE(split(64, {}).empty());
    EXPECT_TRUE(split(1024, {}).empty());
}

TEST(UsbTransferProtocol, AShortMessageIsOnePacketWithBothFlagsAndNoPadding) {
    const std::vector<Bytes> expected{{0x13, 0x00, 0x01, 0x00, 0x02, 0x04}};
    EXPECT_EQ(split(64, {0x01, 0x00, 0x02, 0x04}), expected);
    EXPECT_EQ(split(1024, {0x01, 0x00, 0x02, 0x04}), expected);
}

TEST(UsbTransferProtocol, AMessageThatFillsAFullSpeedReportIsOnePacket) {
    const Bytes message = counting(62);
    const std::vector<Bytes> expected{packet(0xFB, 0x00, message, 0, 62)};
    EXPECT_EQ(split(64, message), expected);
}

TEST(UsbTransferProtocol, OneByteMoreThanAFullSpeedReportHoldsMakesASecondPacket) {
    const Bytes message = counting(63);
    const std::vector<Bytes> expected{packet(0xF9, 0x00, message, 0, 62),
                                      packet(0x06, 0x00, message, 62, 1)};
    EXPECT_EQ(split(64, message), expected);
}

TEST(UsbTransferProtocol, AMultipleOfTheFullSpeedPayloadHasNoEmptyLastPacket) {
    const Bytes message = counting(124);
    const std::vector<Bytes> expected{packet(0xF9, 0x00, message, 0, 62),
                                      packet(0xFA, 0x00, message, 62, 62)};
    EXPECT_EQ(split(64, message), expected);
}

TEST(UsbTransferProtocol, APacketBetweenTheFirstAndTheLastHasNeitherFlag) {
    const Bytes message = counting(125);
    const std::vector<Bytes> expected{packet(0xF9, 0x00, message, 0, 62),
                                      packet(0xF8, 0x00, message, 62, 62),
                                      packet(0x06, 0x00, message, 124, 1)};
    EXPECT_EQ(split(64, message), expected);
}

TEST(UsbTransferProtocol, AMessageThatFillsAHighSpeedReportIsOnePacket) {
    const Bytes message = counting(1022);
    const std::vector<Bytes> expected{packet(0xFB, 0x0F, message, 0, 1022)};
    EXPECT_EQ(split(1024, message), expected);
}

TEST(UsbTransferProtocol, OneByteMoreThanAHighSpeedReportHoldsMakesASecondPacket) {
    const Bytes message = counting(1023);
    const std::vector<Bytes> expected{packet(0xF9, 0x0F, message, 0, 1022),
                                      packet(0x06, 0x00, message, 1022, 1)};
    EXPECT_EQ(split(1024, message), expected);
}

TEST(UsbTransferProtocol, PacketsAreAppendedToThoseAlreadyThere) {
    std::vector<Bytes> packets{{0xAA}};
    UsbTransferProtocol(64).createUsbOutTransferPackets(packets, {0x55});
    const std::vector<Bytes> expected{{0xAA}, {0x07, 0x00, 0x55}};
    EXPECT_EQ(packets, expected);
}

struct LongestRequest {
    size_t reportSize;
    size_t packets;
    uint8_t lastHeader[2];
    size_t lastLength;
};

class LongestRequestTest : public testing::TestWithParam<LongestRequest> {};

// 14 bytes of fields and 65,535 bytes of data.
INSTANTIATE_TEST_SUITE_P(BothReportSizes, LongestRequestTest,
                         testing::Values(LongestRequest{64, 1058, {0x3E, 0x00}, 15},
                                         LongestRequest{1024, 65, {0x36, 0x02}, 141}),
                         [](const auto& test) { return std::to_string(test.param.reportSize); });

TEST_P(LongestRequestTest, TheLongestRequestIsSplitAndJoinedWhole) {
    const Bytes message = counting(65'549);
    const std::vector<Bytes> packets = split(GetParam().reportSize, message);
    ASSERT_EQ(packets.size(), GetParam().packets);
    EXPECT_EQ(packets.back(),
              packet(GetParam().lastHeader[0], GetParam().lastHeader[1], message,
                     message.size() - GetParam().lastLength, GetParam().lastLength));

    UsbTransferProtocol protocol(GetParam().reportSize);
    Bytes joined;
    for (size_t i = 0; i + 1 < packets.size(); ++i) {
        ASSERT_FALSE(protocol.receiveUsbInTransferPackets(joined, packets[i])) << i;
    }
    EXPECT_TRUE(protocol.receiveUsbInTransferPackets(joined, packets.back()));
    EXPECT_TRUE(joined == message);
}

class Joining : public testing::Test {
protected:
    bool receive(const Bytes& received) {
        return protocol.receiveUsbInTransferPackets(message, received);
    }

    UsbTransferProtocol protocol{64};
    Bytes message;
};

TEST_F(Joining, APacketWithBothFlagsIsAWholeMessage) {
    EXPECT_TRUE(receive({0x0F, 0x00, 0x0A, 0x0B, 0x0C}));
    EXPECT_EQ(message, (Bytes{0x0A, 0x0B, 0x0C}));
}

TEST_F(Joining, PaddingBehindThePayloadIsIgnored) {
    EXPECT_TRUE(receive({0x0B, 0x00, 0x0A, 0x0B, 0xEE, 0xEE}));
    EXPECT_EQ(message, (Bytes{0x0A, 0x0B}));
}

TEST_F(Joining, ReservedHeaderBitsAreIgnored) {
    EXPECT_TRUE(receive({0x0B, 0xF0, 0x0A, 0x0B, 0xEE, 0xEE}));
    EXPECT_EQ(message, (Bytes{0x0A, 0x0B}));
}

TEST_F(Joining, AMessageIsCompleteWithItsLastPacket) {
    EXPECT_FALSE(receive({0x09, 0x00, 0x01, 0x02}));
    EXPECT_FALSE(receive({0x04, 0x00, 0x03}));
    EXPECT_TRUE(receive({0x0A, 0x00, 0x04, 0x05}));
    EXPECT_EQ(message, (Bytes{0x01, 0x02, 0x03, 0x04, 0x05}));
}

TEST_F(Joining, AFirstPacketDropsAHalfJoinedMessage) {
    EXPECT_FALSE(receive({0x09, 0x00, 0x01, 0x02}));
    EXPECT_FALSE(receive({0x05, 0x00, 0x03}));
    EXPECT_EQ(message, (Bytes{0x03}));
    EXPECT_TRUE(receive({0x06, 0x00, 0x04}));
    EXPECT_EQ(message, (Bytes{0x03, 0x04}));
}

TEST_F(Joining, AnEmptyFirstPacketDropsAHalfJoinedMessage) {
    EXPECT_FALSE(receive({0x09, 0x00, 0x01, 0x02}));
    EXPECT_FALSE(receive({0x01, 0x00}));
    EXPECT_TRUE(message.empty());
}

TEST_F(Joining, AContinuationWithoutAFirstPacketIsAppendedToWhatIsThere) {
    EXPECT_FALSE(receive({0x04, 0x00, 0x01}));
    EXPECT_EQ(message, (Bytes{0x01}));
    EXPECT_TRUE(receive({0x06, 0x00, 0x02}));
    EXPECT_EQ(message, (Bytes{0x01, 0x02}));
}

TEST_F(Joining, ACompletedMessageStaysUntilTheNextFirstPacket) {
    EXPECT_TRUE(receive({0x07, 0x00, 0x01}));
    EXPECT_TRUE(receive({0x06, 0x00, 0x02}));
    EXPECT_EQ(message, (Bytes{0x01, 0x02}));
    EXPECT_TRUE(receive({0x07, 0x00, 0x03}));
    EXPECT_EQ(message, (Bytes{0x03}));
}

TEST_F(Joining, AnEmptyLastPacketCompletesTheMessageAndLeavesItAsItIs) {
    EXPECT_FALSE(receive({0x05, 0x00, 0x01}));
    EXPECT_TRUE(receive({0x02, 0x00}));
    EXPECT_EQ(message, (Bytes{0x01}));
}

TEST_F(Joining, AnEmptyPacketWithoutFlagsChangesNothing) {
    EXPECT_FALSE(receive({0x05, 0x00, 0x01}));
    EXPECT_FALSE(receive({0x00, 0x00}));
    EXPECT_EQ(message, (Bytes{0x01}));
}

TEST_F(Joining, ALengthBeyondThePacketIsCutToWhatItCarries) {
    EXPECT_TRUE(receive({0xFF, 0x0F, 0x0A, 0x0B})); // 1023 bytes announced
    EXPECT_EQ(message, (Bytes{0x0A, 0x0B}));
}

TEST_F(Joining, ALengthBeyondTheReportIsCutToTheReport) {
    const Bytes payload = counting(62);
    EXPECT_TRUE(receive(packet(0xFF, 0x0F, payload, 0, 62)));
    EXPECT_EQ(message, payload);
}

TEST_F(Joining, APacketWithoutAWholeHeaderIsIgnored) {
    EXPECT_FALSE(receive({0x05, 0x00, 0x01}));
    EXPECT_FALSE(receive({}));
    EXPECT_FALSE(receive({0x03}));
    EXPECT_EQ(message, (Bytes{0x01}));
}

TEST_F(Joining, AMessageStopsGrowingAtOneMebibyteAndStillEnds) {
    const Bytes payload(62, 0x5A);
    const Bytes continuation = packet(0xF8, 0x00, payload, 0, 62);
    constexpr size_t packetsBeyondTheLimit = 1'048'576 / 62 + 2;
    for (size_t i = 0; i < packetsBeyondTheLimit; ++i) {
        ASSERT_FALSE(receive(continuation)) << i;
    }
    EXPECT_EQ(message.size(), 1'048'576U);
    EXPECT_TRUE(receive(packet(0xFA, 0x00, payload, 0, 62)));
    EXPECT_EQ(message.size(), 1'048'576U);
    EXPECT_TRUE(receive({0x07, 0x00, 0x01}));
    EXPECT_EQ(message, (Bytes{0x01}));
}

} // namespace
