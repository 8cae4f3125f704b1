// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capture/Blocks.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace capture;

namespace {

using Bytes = std::vector<uint8_t>;

Bytes bytesOf(const Blocks& blocks) {
    return {blocks.data(), blocks.data() + blocks.size()};
}

TEST(Blocks, ASectionNamesItsByteOrderAndTheApplication) {
    Blocks blocks;
    blocks.section("veltra");
    EXPECT_EQ(bytesOf(blocks), (Bytes{
                                   0x0A, 0x0D, 0x0D, 0x0A, 0x2C, 0x00, 0x00, 0x00, // type, length
                                   0x4D, 0x3C, 0x2B, 0x1A, 0x01, 0x00, 0x00, 0x00, // order, 1.0
                                   0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, // length unknown
                                   0x04, 0x00, 0x06, 0x00, 'v',  'e',  'l',  't',  // application
                                   'r',  'a',  0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // end of options
                                   0x2C, 0x00, 0x00, 0x00,                         // length
                               }));
}

TEST(Blocks, TheInterfaceCountsNanoseconds) {
    Blocks blocks;
    blocks.usbInterface("demo");
    EXPECT_EQ(bytesOf(blocks), (Bytes{
                                   0x01, 0x00, 0x00, 0x00, 0x28, 0x00, 0x00, 0x00, // type, length
                                   0xDC, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // 220, no limit
                                   0x03, 0x00, 0x04, 0x00, 'd',  'e',  'm',  'o',  // description
                                   0x09, 0x00, 0x01, 0x00, 0x09, 0x00, 0x00, 0x00, // resolution
                                   0x00, 0x00, 0x00, 0x00, 0x28, 0x00, 0x00, 0x00, // end, length
                               }));
}

TEST(Blocks, ASubmittedReportIsAHeaderAndItsData) {
    UsbRecord record;
    record.id = 0x0807060504030201;
    record.endpoint = 0x01;
    record.device = 0x11;
    record.bus = 0x2221;
    record.time = 0x0000000500000006;
    record.length = 3;
    const Bytes data{0xD1, 0xD2, 0xD3};
    Blocks blocks;
    blocks.record(record, data.data(), data.size());
    EXPECT_EQ(bytesOf(blocks),
              (Bytes{
                  0x06, 0x00, 0x00, 0x00, 0x64, 0x00, 0x00, 0x00, // type, length
                  0x00, 0x00, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00, // interface 0, time
                  0x06, 0x00, 0x00, 0x00, 0x43, 0x00, 0x00, 0x00, // time, captured
                  0x43, 0x00, 0x00, 0x00,                         // original
                  0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, // identifier
                  'S',  0x01, 0x01, 0x11, 0x21, 0x22, '-',  0x00, // interrupt out, data follow
                  0x15, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // 21 seconds
                  0xD4, 0x3E, 0x07, 0x00, 0x8D, 0xFF, 0xFF, 0xFF, // 474,836 us, in progress
                  0x03, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, // length, captured
                  0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // no setup bytes
                  0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // interval
                  0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // flags
                  0xD1, 0xD2, 0xD3, 0x00,                         // data, filled up
                  0x64, 0x00, 0x00, 0x00,                         // length
              }));
}

TEST(Blocks, ACompletionCarriesItsStatus) {
    UsbRecord record;
    record.event = UsbEvent::Complete;
    record.status = -5;
    record.endpoint = 0x01;
    Blocks blocks;
    blocks.record(record, nullptr, 0);
    const Bytes bytes = bytesOf(blocks);
    ASSERT_EQ(bytes.size(), 96U);
    EXPECT_EQ(bytes[36], 'C');
    EXPECT_EQ(bytes[43], '>') << "no data of the outgoing direction";
    EXPECT_EQ(Bytes(bytes.begin() + 56, bytes.begin() + 60), (Bytes{0xFB, 0xFF, 0xFF, 0xFF}));
}

TEST(Blocks, AControlTransferCarriesItsSetupBytes) {
    UsbRecord record;
    record.transfer = UsbTransfer::Control;
    record.endpoint = 0x80;
    record.hasSetup = true;
    record.setup = {0x80, 0x06, 0x00, 0x01, 0x00, 0x00, 0x12, 0x00};
    Blocks blocks;
    blocks.record(record, nullptr, 0);
    const Bytes bytes = bytesOf(blocks);
    ASSERT_EQ(bytes.size(), 96U);
    EXPECT_EQ(bytes[37], 2);
    EXPECT_EQ(bytes[42], 0) << "setup bytes follow";
    EXPECT_EQ(bytes[43], '<') << "no data of the incoming direction";
    EXPECT_EQ(Bytes(bytes.begin() + 68, bytes.begin() + 76),
              (Bytes{0x80, 0x06, 0x00, 0x01, 0x00, 0x00, 0x12, 0x00}));
}

TEST(Blocks, DataBeyondTheMostAreCutAndCounted) {
    Blocks blocks;
    const Bytes data(Blocks::maxData + 1, 0x55);
    blocks.record(UsbRecord(), data.data(), data.size());
    const Bytes bytes = bytesOf(blocks);
    ASSERT_EQ(bytes.size(), 96 + Blocks::maxData);
    EXPECT_EQ(Bytes(bytes.begin() + 20, bytes.begin() + 28),
              (Bytes{0x40, 0x08, 0x00, 0x00, 0x41, 0x08, 0x00, 0x00}));
}

TEST(Blocks, ABlockThatDoesNotFitIsLeftOutWhole) {
    Blocks blocks;
    const Bytes data(Blocks::maxData, 0x55);
    blocks.record(UsbRecord(), data.data(), data.size());
    const size_t one = blocks.size();
    blocks.record(UsbRecord(), data.data(), data.size());
    EXPECT_EQ(blocks.size(), one);
    blocks.record(UsbRecord(), data.data(), 4);
    EXPECT_EQ(blocks.size(), one + 100);
}

TEST(Blocks, ALongTextIsCut) {
    Blocks blocks;
    blocks.usbInterface(std::string(5000, 'x').c_str());
    EXPECT_EQ(blocks.size(), 8 + 8 + 4 + 200 + 8 + 4 + 4);
}

} // namespace
