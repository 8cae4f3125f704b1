// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/Protocol.hpp"

#include "usbip/EchoDevice.hpp"

#include <gtest/gtest.h>

using namespace usbip;

namespace {

class ReaderTest : public testing::Test {
protected:
    void append(const Bytes& bytes) { reader.append(bytes.data(), bytes.size()); }

    Reader reader;
};

/// A submit command of the interrupt endpoints: direction, endpoint and length are its 15th, 19th
/// and 26th byte.
Bytes submitHeader() {
    return {0, 0, 0, 1,    0, 0, 0x12, 0x34, 0, 1, 0, 2, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 2, 0,
            0, 0, 0, 0x40, 0, 0, 0,    0,    0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0};
}

TEST_F(ReaderTest, AListRequestIsEightBytes) {
    append({0x01, 0x11, 0x80, 0x05, 0, 0, 0});
    EXPECT_FALSE(reader.nextRequest().has_value());
    append({0});
    const auto request = reader.nextRequest();
    ASSERT_TRUE(request.has_value());
    EXPECT_TRUE(std::holds_alternative<ListRequest>(*request));
    EXPECT_FALSE(reader.nextRequest().has_value());
    EXPECT_FALSE(reader.isMalformed());
}

TEST_F(ReaderTest, AnImportRequestNamesItsDevice) {
    Bytes bytes{0x01, 0x11, 0x80, 0x03, 0, 0, 0, 0, '1', '-', '1'};
    bytes.resize(8 + 31);
    append(bytes);
    EXPECT_FALSE(reader.nextRequest().has_value());
    append({0});
    const auto request = reader.nextRequest();
    ASSERT_TRUE(request.has_value());
    ASSERT_TRUE(std::holds_alternative<ImportRequest>(*request));
    EXPECT_EQ(std::get<ImportRequest>(*request).busId, "1-1");
}

TEST_F(ReaderTest, ABusIdentifierNeedsNoTerminator) {
    append({0x01, 0x11, 0x80, 0x03, 0, 0, 0, 0});
    append(Bytes(32, 'x'));
    EXPECT_EQ(std::get<ImportRequest>(reader.nextRequest().value()).busId, std::string(32, 'x'));
}

TEST_F(ReaderTest, AnotherVersionIsRefused) {
    append({0x01, 0x06, 0x80, 0x05, 0, 0, 0, 0});
    EXPECT_FALSE(reader.nextRequest().has_value());
    EXPECT_TRUE(reader.isMalformed());
}

TEST_F(ReaderTest, AnUnknownRequestIsRefused) {
    append({0x01, 0x11, 0x80, 0x04, 0, 0, 0, 0});
    EXPECT_FALSE(reader.nextRequest().has_value());
    EXPECT_TRUE(reader.isMalformed());
}

TEST_F(ReaderTest, AReadIsASubmitTowardsTheHost) {
    append(submitHeader());
    const auto command = reader.nextCommand();
    ASSERT_TRUE(command.has_value());
    const auto& submit = std::get<Submit>(*command);
    EXPECT_EQ(submit.sequence, 0x1234U);
    EXPECT_EQ(submit.transfer.id, 0x1234U);
    EXPECT_EQ(submit.transfer.endpointAddress, 0x81);
    EXPECT_EQ(submit.transfer.length, 64U);
    EXPECT_TRUE(submit.transfer.data.empty());
}

TEST_F(ReaderTest, AWriteCarriesItsData) {
    Bytes bytes = submitHeader();
    bytes.at(15) = 0;
    bytes.at(27) = 3;
    append(bytes);
    EXPECT_FALSE(reader.nextCommand().has_value());
    append({7, 8, 9});
    const auto command = reader.nextCommand();
    ASSERT_TRUE(command.has_value());
    const auto& submit = std::get<Submit>(*command);
    EXPECT_EQ(submit.transfer.endpointAddress, 0x01);
    EXPECT_EQ(submit.transfer.length, 0U);
    EXPECT_EQ(submit.transfer.data, (Bytes{7, 8, 9}));
}

TEST_F(ReaderTest, TheSetupPacketStaysAsItIs) {
    Bytes bytes = submitHeader();
    const Bytes setup{0x80, 0x06, 0x02, 0x03, 0x09, 0x04, 0xFF, 0x00};
    std::copy(setup.begin(), setup.end(), bytes.begin() + 40);
    append(bytes);
    const Command command = reader.nextCommand().value();
    EXPECT_EQ(std::get<Submit>(command).transfer.setup,
              (std::array<uint8_t, 8>{0x80, 0x06, 0x02, 0x03, 0x09, 0x04, 0xFF, 0x00}));
}

TEST_F(ReaderTest, AnUnlinkNamesTheCommandToTakeBack) {
    Bytes bytes{0, 0, 0, 2, 0, 0, 0, 9, 0, 1, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8};
    bytes.resize(48);
    append(bytes);
    const Command command = reader.nextCommand().value();
    EXPECT_EQ(std::get<Unlink>(command).sequence, 9U);
    EXPECT_EQ(std::get<Unlink>(command).unlinked, 8U);
}

TEST_F(ReaderTest, CommandsMayArriveByteByByteAndTogether) {
    Bytes two = submitHeader();
    const Bytes one = two;
    two.insert(two.end(), one.begin(), one.end());
    for (const uint8_t byte : two) {
        append({byte});
    }
    EXPECT_TRUE(reader.nextCommand().has_value());
    EXPECT_TRUE(reader.nextCommand().has_value());
    EXPECT_FALSE(reader.nextCommand().has_value());
}

TEST_F(ReaderTest, WhatIsNotACommandIsRefusedForGood) {
    Bytes bytes = submitHeader();
    bytes.at(3) = 3;
    append(bytes);
    EXPECT_FALSE(reader.nextCommand().has_value());
    EXPECT_TRUE(reader.isMalformed());
    append(submitHeader());
    EXPECT_FALSE(reader.nextCommand().has_value());
}

struct Malformation {
    size_t offset;
    uint8_t value;
    const char* what;
};

TEST(Reader, AFieldOutOfItsRangeIsRefused) {
    for (const Malformation& spoilt :
         {Malformation{15, 2, "direction"}, Malformation{19, 16, "endpoint"},
          Malformation{35, 1, "isochronous packets"}}) {
        Reader reader;
        Bytes bytes = submitHeader();
        bytes.at(spoilt.offset) = spoilt.value;
        reader.append(bytes.data(), bytes.size());
        EXPECT_FALSE(reader.nextCommand().has_value()) << spoilt.what;
        EXPECT_TRUE(reader.isMalformed()) << spoilt.what;
    }
}

TEST(Reader, AWriteOf65536BytesIsTheLongest) {
    Reader reader;
    Bytes bytes = submitHeader();
    bytes.at(15) = 0;
    bytes.at(25) = 1;
    bytes.at(27) = 0;
    bytes.resize(bytes.size() + 65'536, 0xA5);
    reader.append(bytes.data(), bytes.size());
    const auto command = reader.nextCommand();
    ASSERT_TRUE(command.has_value());
    EXPECT_EQ(std::get<Submit>(*command).transfer.data, Bytes(65'536, 0xA5));
}

TEST(Reader, ALongerWriteIsRefusedBeforeItsDataArrive) {
    Reader reader;
    Bytes bytes = submitHeader();
    bytes.at(15) = 0;
    bytes.at(25) = 1;
    bytes.at(27) = 1;
    reader.append(bytes.data(), bytes.size());
    EXPECT_FALSE(reader.nextCommand().has_value());
    EXPECT_TRUE(reader.isMalformed());
}

TEST(Reader, MinusOneMeansNoIsochronousPacketsToo) {
    Reader reader;
    Bytes bytes = submitHeader();
    std::fill_n(bytes.begin() + 32, 4, uint8_t{0xFF});
    reader.append(bytes.data(), bytes.size());
    EXPECT_TRUE(reader.nextCommand().has_value());
}

TEST(Reply, TheListDescribesTheDeviceAndItsInterfaces) {
    Description highSpeed = fullSpeedDescription();
    highSpeed.speed = Speed::High;
    highSpeed.productId = 0x0002;
    highSpeed.deviceClass = {0xEF, 2, 1};
    highSpeed.configuration = 4;
    highSpeed.interfaces = {{3, 5, 6}, {0xFF, 0, 0}};
    const ListedDevice device{"1-1", 1, 2, highSpeed};
    const Bytes reply = listReply(&device);
    ASSERT_EQ(reply.size(), 12U + 312U + 8U);
    const std::string path = "/sys/devices/tests/1-1";
    EXPECT_EQ(Bytes(reply.begin() + 12, reply.begin() + 12 + 23),
              Bytes(path.c_str(), path.c_str() + 23));
    EXPECT_EQ(Bytes(reply.begin(), reply.begin() + 12),
              (Bytes{0x01, 0x11, 0x00, 0x05, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(Bytes(reply.begin() + 12 + 256, reply.begin() + 12 + 260), (Bytes{'1', '-', '1', 0}));
    EXPECT_EQ(Bytes(reply.begin() + 12 + 288, reply.end()),
              (Bytes{0,    0,    0,    1,    // bus
                     0,    0,    0,    2,    // device
                     0,    0,    0,    3,    // high speed
                     0x12, 0x09, 0x00, 0x02, // identifiers
                     0x01, 0x00,             // release
                     0xEF, 2,    1,          // class
                     4,    1,    2,          // configuration, counts
                     3,    5,    6,    0,    // interfaces
                     0xFF, 0,    0,    0}));
}

TEST(Reply, AnEmptyListHasNoDevice) {
    EXPECT_EQ(listReply(nullptr), (Bytes{0x01, 0x11, 0x00, 0x05, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(Reply, AnImportIsAnsweredWithTheDevice) {
    const Bytes reply = importReply({"1-1", 1, 2, fullSpeedDescription()});
    ASSERT_EQ(reply.size(), 8U + 312U);
    EXPECT_EQ(Bytes(reply.begin(), reply.begin() + 8), (Bytes{0x01, 0x11, 0x00, 0x03, 0, 0, 0, 0}));
    EXPECT_EQ(reply.at(8 + 288 + 11), 2) << "full speed";
}

TEST(Reply, ARefusalSaysWhy) {
    EXPECT_EQ(importRefusal(Refusal::DeviceBusy), (Bytes{0x01, 0x11, 0x00, 0x03, 0, 0, 0, 2}));
    EXPECT_EQ(importRefusal(Refusal::NoSuchDevice), (Bytes{0x01, 0x11, 0x00, 0x03, 0, 0, 0, 4}));
}

TEST(Reply, AResultCarriesWhatTheDeviceSent) {
    const Bytes reply = returnSubmit(0x1234, {0x1234, Status::Completed, 2, {0xAA, 0xBB}});
    Bytes expected{0, 0, 0, 3, 0, 0, 0x12, 0x34, 0, 0, 0, 0, 0, 0,
                   0, 0, 0, 0, 0, 0, 0,    0,    0, 0, 0, 0, 0, 2};
    expected.resize(48);
    expected.insert(expected.end(), {0xAA, 0xBB});
    EXPECT_EQ(reply, expected);
}

TEST(Reply, FailuresAreTheKernelsErrorNumbers) {
    const auto status = [](Status ended) {
        const Bytes reply = returnSubmit(1, {1, ended, 0, {}});
        return Bytes(reply.begin() + 20, reply.begin() + 24);
    };
    EXPECT_EQ(status(Status::Stalled), (Bytes{0xFF, 0xFF, 0xFF, 0xE0}));
    EXPECT_EQ(status(Status::Overflowed), (Bytes{0xFF, 0xFF, 0xFF, 0xB5}));
    EXPECT_EQ(status(Status::Unplugged), (Bytes{0xFF, 0xFF, 0xFF, 0x94}));
}

TEST(Reply, AnUnlinkTellsWhetherItCameInTime) {
    Bytes expected{0, 0, 0, 4, 0, 0, 0, 9};
    expected.resize(48);
    EXPECT_EQ(returnUnlink(9, false), expected);
    const Bytes connectionReset{0xFF, 0xFF, 0xFF, 0x98};
    std::copy(connectionReset.begin(), connectionReset.end(), expected.begin() + 20);
    EXPECT_EQ(returnUnlink(9, true), expected);
}

} // namespace
