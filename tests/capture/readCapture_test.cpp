// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capture/readCapture.hpp"

#include "capture/Blocks.hpp"

#include <gtest/gtest.h>

#include <string>

using namespace capture;
using virtual_adapter::Bytes;

namespace {

Bytes operator+(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string complaintAbout(const Bytes& file) {
    try {
        readCapture(file);
        return "";
    } catch (const InvalidCapture& error) {
        return error.what();
    }
}

const Bytes section{0x0A, 0x0D, 0x0D, 0x0A, 0x1C, 0,    0,    0,    0x4D, 0x3C, 0x2B, 0x1A, 1, 0,
                    0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x1C, 0,    0, 0};
const Bytes bigEndianSection{0x0A, 0x0D, 0x0D, 0x0A, 0, 0, 0,    0x1C, 0x1A, 0x2B,
                             0x3C, 0x4D, 0,    1,    0, 0, 0xFF, 0xFF, 0xFF, 0xFF,
                             0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0,    0x1C};
/// Link type 220, in microseconds.
const Bytes usbInterface{1, 0, 0, 0, 0x14, 0, 0, 0, 0xDC, 0, 0, 0, 0, 0, 0, 0, 0x14, 0, 0, 0};
/// Link type 189.
const Bytes bigEndianInterface{0, 0, 0, 1, 0, 0, 0, 0x14, 0, 0xBD, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x14};

/// The completion of a read of two bytes.
const Bytes packet{
    6,    0,    0,    0,    0x64, 0, 0,   0,             // type, length
    0,    0,    0,    0,    0,    0, 0,   0, 7, 0, 0, 0, // usbInterface 0, 7 us
    0x42, 0,    0,    0,    0x42, 0, 0,   0,             // captured, original
    9,    0,    0,    0,    0,    0, 0,   1,             // identifier
    'C',  1,    0x81, 5,    3,    0, '-', 0,             // interrupt in, device 5, bus 3
    0,    0,    0,    0,    0,    0, 0,   0, 0, 0, 0, 0, // time
    0xFB, 0xFF, 0xFF, 0xFF, 2,    0, 0,   0, 2, 0, 0, 0, // status -5, length, captured
    0,    0,    0,    0,    0,    0, 0,   0, 0, 0, 0, 0,
    0,    0,    0,    0,    0,    0, 0,   0, 0, 0, 0, 0, // setup, padding
    0xD1, 0xD2, 0,    0,                                 // data
    0x64, 0,    0,    0,
};
/// The same from the header of 48 bytes, most significant byte first, at 8 us.
const Bytes bigEndianPacket{
    0,   0, 0,    6, 0, 0, 0,    0x54, 0, 0, 0, 0, 0, 0,    0,    0,    0,    0,    0, 8, 0,
    0,   0, 0x32, 0, 0, 0, 0x32, 1,    0, 0, 0, 0, 0, 0,    9,    'C',  1,    0x81, 5, 0, 3,
    '-', 0, 0,    0, 0, 0, 0,    0,    0, 0, 0, 0, 0, 0,    0xFF, 0xFF, 0xFF, 0xFB, 0, 0, 0,
    2,   0, 0,    0, 2, 0, 0,    0,    0, 0, 0, 0, 0, 0xD1, 0xD2, 0,    0,    0,    0, 0, 0x54,
};

void expectTheRecord(const CapturedRecord& captured) {
    EXPECT_EQ(captured.record.id, 0x0100000000000009U);
    EXPECT_EQ(captured.record.event, UsbEvent::Complete);
    EXPECT_EQ(captured.record.transfer, UsbTransfer::Interrupt);
    EXPECT_EQ(captured.record.endpoint, 0x81);
    EXPECT_TRUE(captured.record.isIn());
    EXPECT_EQ(captured.record.device, 5);
    EXPECT_EQ(captured.record.bus, 3);
    EXPECT_FALSE(captured.record.hasSetup);
    EXPECT_EQ(captured.record.status, -5);
    EXPECT_EQ(captured.record.length, 2U);
    EXPECT_EQ(captured.data, (Bytes{0xD1, 0xD2}));
}

TEST(ReadCapture, ARecordIsReadFieldByField) {
    const Capture capture = readCapture(section + usbInterface + packet);
    EXPECT_FALSE(capture.isCut);
    ASSERT_EQ(capture.records.size(), 1U);
    expectTheRecord(capture.records[0]);
    EXPECT_EQ(capture.records[0].record.time, 7'000U);
}

TEST(ReadCapture, EverySectionHasAByteOrderAndInterfacesOfItsOwn) {
    const Capture capture =
        readCapture(section + usbInterface + packet + bigEndianSection + bigEndianInterface +
                    bigEndianPacket + section + usbInterface + packet);
    ASSERT_EQ(capture.records.size(), 3U);
    for (const CapturedRecord& record : capture.records) {
        expectTheRecord(record);
    }
    EXPECT_EQ(capture.records[1].record.time, 8'000U);
}

TEST(ReadCapture, TimeIsInTheUnitOfTheInterface) {
    const auto timeOf = [](uint8_t resolution) {
        const Bytes interfaceWithUnit{1, 0, 0, 0, 0x1C, 0, 0,          0, 0xDC, 0, 0,    0, 0, 0,
                                      0, 0, 9, 0, 1,    0, resolution, 0, 0,    0, 0x1C, 0, 0, 0};
        Bytes late = packet;
        late[17] = 0x10; // 0x1007 units
        return readCapture(section + interfaceWithUnit + late).records.at(0).record.time;
    };
    EXPECT_EQ(timeOf(0), 4'103'000'000'000U);
    EXPECT_EQ(timeOf(9), 4'103U);
    EXPECT_EQ(timeOf(10), 410U);
    EXPECT_EQ(timeOf(0x8C), 1'001'708'984U) << "in 4096ths of a second";
}

TEST(ReadCapture, WhatBlocksWriteIsRead) {
    UsbRecord record;
    record.id = 0x0100000000000009;
    record.event = UsbEvent::Complete;
    record.endpoint = 0x81;
    record.device = 5;
    record.bus = 3;
    record.status = -5;
    record.length = 2;
    record.time = 1'700'000'000'123'456'789;
    const Bytes data{0xD1, 0xD2};
    Blocks blocks;
    blocks.section("test");
    blocks.usbInterface("test");
    blocks.record(record, data.data(), data.size());
    const Capture capture = readCapture(Bytes(blocks.data(), blocks.data() + blocks.size()));
    ASSERT_EQ(capture.records.size(), 1U);
    expectTheRecord(capture.records[0]);
    EXPECT_EQ(capture.records[0].record.time, 1'700'000'000'123'456'789U);
}

TEST(ReadCapture, WhatItDoesNotKnowIsPassedOver) {
    Bytes unknown = packet;
    unknown[0] = 0x99;
    Bytes ethernet = usbInterface;
    ethernet[8] = 1;
    Bytes second = packet;
    second[8] = 1;
    const Capture capture =
        readCapture(section + unknown + ethernet + usbInterface + packet + second);
    EXPECT_EQ(capture.records.size(), 1U);
}

TEST(ReadCapture, AFileIsCutWhereverAProgramWasKilled) {
    const Bytes file = section + usbInterface + packet + packet;
    const size_t firstThree = section.size() + usbInterface.size() + packet.size();
    for (size_t size = firstThree + 1; size < file.size(); ++size) {
        const Capture capture = readCapture(Bytes(file.begin(), file.begin() + int(size)));
        EXPECT_TRUE(capture.isCut) << size;
        EXPECT_EQ(capture.records.size(), 1U) << size;
    }
}

TEST(ReadCapture, WhatIsNoCaptureIsNamed) {
    const std::string notOne = "this is not a pcapng capture";
    EXPECT_EQ(complaintAbout({}), notOne);
    EXPECT_EQ(complaintAbout({0x0A, 0x0D, 0x0D, 0x0A}), notOne);
    EXPECT_EQ(complaintAbout(Bytes(40, 0)), notOne);
    EXPECT_EQ(complaintAbout(packet), notOne);
}

TEST(ReadCapture, DamageIsNamedWithItsPlace) {
    const auto damaged = [](size_t place, uint8_t value) {
        Bytes file = section + usbInterface + packet;
        file[place] = value;
        return complaintAbout(file);
    };
    EXPECT_EQ(damaged(8, 0), "no byte order in the block at byte 0");
    EXPECT_EQ(damaged(52, 0x65), "impossible length 101 in the block at byte 48");
    EXPECT_EQ(damaged(52, 0x08), "impossible length 8 in the block at byte 48");
    EXPECT_EQ(damaged(55, 0x40), "impossible length 1073741924 in the block at byte 48");
    EXPECT_EQ(damaged(144, 0x60), "two different lengths in the block at byte 48");
    EXPECT_EQ(damaged(56, 1), "no interface 1 in the block at byte 48");
    EXPECT_EQ(damaged(68, 0x3F), "a USB record of 63 bytes in the block at byte 48");
    EXPECT_EQ(damaged(68, 0x45), "too few bytes in the block at byte 48");
    const Bytes longOption{1, 0, 0, 0, 0x18, 0, 0, 0,    0xDC, 0, 0, 0,
                           0, 0, 0, 0, 9,    0, 1, 0x01, 0x18, 0, 0, 0};
    EXPECT_EQ(complaintAbout(section + longOption),
              "an option that is too long in the block at byte 28");
}

} // namespace
