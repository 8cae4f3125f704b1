// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/RecordingBuses.hpp"
#include "devices/SpiDevice.hpp"

#include <linux/spi/spidev.h>

#include <gtest/gtest.h>

using devices::Bytes;
using virtual_adapter::ByteWriter;

namespace {

using Requests = std::vector<std::string>;

/// A transfer that sends, receives or both; of nothing else than that.
struct Transfer {
    uint32_t length;
    Bytes sent;
    bool receives;
    uint32_t clock = 0;
    uint16_t delay = 0;
    uint8_t bits = 0;
    uint8_t changesChipSelect = 0;
    uint8_t wires = 0;
    uint8_t delayOfWord = 0;
};

class SpiDeviceTest : public testing::Test {
protected:
    RecordingBuses buses;
    devices::SpiDevice device{buses, 2};
    OpenDevice opened{device};

    std::string transfer(const std::vector<Transfer>& transfers) {
        ByteWriter message;
        for (const Transfer& each : transfers) {
            message.u32(each.length).u32(each.clock).u16(each.delay).u8(each.bits);
            message.u8(each.changesChipSelect).u8(each.wires).u8(0).u8(each.delayOfWord);
            message.u8(static_cast<uint8_t>((each.sent.empty() ? 0 : 1) | (each.receives ? 2 : 0)));
            message.bytes(each.sent);
        }
        const auto size = static_cast<uint32_t>(transfers.size() * sizeof(spi_ioc_transfer));
        return opened.control(_IOC(_IOC_WRITE, SPI_IOC_MAGIC, 0, size), message.take());
    }
};

TEST_F(SpiDeviceTest, TheTransfersOfAMessageAreOneAssertionOfTheChipSelect) {
    EXPECT_EQ(transfer({{1, {0x9F}, false}, {3, {}, true}, {2, {1, 2}, true}}), "6 0203040506");
    EXPECT_EQ(buses.requests, Requests{"spi 2 mode 0 bits 8 clock 1000000 [9f0000000102] 6"});
}

TEST_F(SpiDeviceTest, NothingIsReceivedThatNobodyWants) {
    EXPECT_EQ(transfer({{2, {1, 2}, false}}), "2 ");
    EXPECT_EQ(opened.write({3, 4}), "2 ");
    EXPECT_EQ(opened.read(2), "2 0102");
    EXPECT_EQ(opened.read(0), "0 ");
    EXPECT_EQ(buses.requests, (Requests{"spi 2 mode 0 bits 8 clock 1000000 [0102] 0",
                                        "spi 2 mode 0 bits 8 clock 1000000 [0304] 0",
                                        "spi 2 mode 0 bits 8 clock 1000000 [0000] 2"}));
}

TEST_F(SpiDeviceTest, AChangeOfTheChipSelectMakesTwoAssertionsAndADelayAPauseBehindOne) {
    EXPECT_EQ(transfer({{1, {1}, true, 500000, 20, 0, 1}, {1, {2}, true, 0, 0, 0, 1}}), "2 0101");
    EXPECT_EQ(buses.requests, (Requests{"spi 2 mode 0 bits 8 clock 500000 [01] 1", "pause 20",
                                        "spi 2 mode 0 bits 8 clock 1000000 [02] 1"}));
}

TEST_F(SpiDeviceTest, TheSlowestClockOfAnAssertionHolds) {
    transfer({{1, {1}, false, 900000}, {1, {2}, false, 100000}});
    transfer({{1, {1}, false, 4000000000U}});
    EXPECT_EQ(buses.requests, (Requests{"spi 2 mode 0 bits 8 clock 100000 [0102] 0",
                                        "spi 2 mode 0 bits 8 clock 50000000 [01] 0"}));
}

TEST_F(SpiDeviceTest, AMessageThatCannotBeIsRefusedBeforeAnythingIsSent) {
    EXPECT_EQ(transfer({{1, {1}, false, 0, 5}, {1, {2}, false}}), "errno 22") << "a pause inside";
    EXPECT_EQ(transfer({{1, {1}, false, 0, 0, 7}}), "errno 22") << "words of 7 bits";
    EXPECT_EQ(transfer({{1, {1}, false, 0, 0, 16}}), "errno 22") << "half a word";
    EXPECT_EQ(transfer({{2, {1, 2}, false, 0, 0, 16}, {1, {2}, false, 0, 0, 8}}), "errno 22");
    EXPECT_EQ(transfer({{1, {1}, false, 0, 0, 0, 0, 4}}), "errno 22") << "four wires";
    EXPECT_EQ(transfer({{1, {1}, false, 0, 0, 0, 0, 0, 1}}), "errno 22") << "a pause between words";
    EXPECT_EQ(transfer({{1, {1}, false, 9999}}), "errno 22") << "slower than can be";
    EXPECT_EQ(transfer({{2, {1}, false}}), "errno 22") << "a byte is missing";
    EXPECT_EQ(transfer({{65535, {}, true}, {1, {}, true}}), "errno 90");
    EXPECT_EQ(opened.control(_IOC(_IOC_WRITE, SPI_IOC_MAGIC, 0, 31), Bytes()), "errno 22");
    EXPECT_EQ(opened.read(65536), "errno 90");
    EXPECT_EQ(opened.write(Bytes(65536)), "errno 90");
    EXPECT_EQ(buses.requests, Requests{});
}

TEST_F(SpiDeviceTest, SettingsAreTheDevicesWhoeverHasItOpen) {
    OpenDevice other(device);
    EXPECT_EQ(opened.control(SPI_IOC_WR_MODE, SPI_MODE_3 | SPI_CS_HIGH), "0 ");
    EXPECT_EQ(other.control(SPI_IOC_WR_LSB_FIRST, 1), "0 ");
    EXPECT_EQ(other.control(SPI_IOC_WR_BITS_PER_WORD, 16), "0 ");
    EXPECT_EQ(other.control(SPI_IOC_WR_MAX_SPEED_HZ, 2000000), "0 ");
    EXPECT_EQ(opened.control(SPI_IOC_RD_MODE, Bytes()), "0 0f000000");
    EXPECT_EQ(opened.control(SPI_IOC_RD_LSB_FIRST, Bytes()), "0 01000000");
    EXPECT_EQ(opened.control(SPI_IOC_RD_BITS_PER_WORD, Bytes()), "0 10000000");
    EXPECT_EQ(opened.control(SPI_IOC_RD_MAX_SPEED_HZ, Bytes()), "0 80841e00");
    opened.write({1, 2});
    EXPECT_EQ(buses.requests, Requests{"spi 2 mode 3 high lsb bits 16 clock 2000000 [0102] 0"});
}

TEST_F(SpiDeviceTest, ASettingThatCannotBeChangesNothing) {
    EXPECT_EQ(opened.control(SPI_IOC_WR_MODE32, SPI_3WIRE | SPI_MODE_1), "errno 22");
    EXPECT_EQ(opened.control(SPI_IOC_WR_BITS_PER_WORD, 9), "errno 22");
    EXPECT_EQ(opened.control(SPI_IOC_WR_MAX_SPEED_HZ, 0), "errno 22");
    EXPECT_EQ(opened.control(0x5401, 0), "errno 25");
    EXPECT_EQ(opened.control(SPI_IOC_RD_MODE32, Bytes()), "0 00000000");
    EXPECT_EQ(opened.control(SPI_IOC_RD_BITS_PER_WORD, Bytes()), "0 08000000");
}

TEST(SpiDevice, OnlyTheClockGoesBackWhenTheLastOneCloses) {
    RecordingBuses buses;
    devices::SpiDevice device(buses, 0);
    {
        OpenDevice opened(device);
        opened.control(SPI_IOC_WR_MODE, SPI_MODE_2);
        opened.control(SPI_IOC_WR_MAX_SPEED_HZ, 8000000);
    }
    OpenDevice(device).write({1});
    EXPECT_EQ(buses.requests, Requests{"spi 0 mode 2 bits 8 clock 1000000 [01] 0"});
}

} // namespace
