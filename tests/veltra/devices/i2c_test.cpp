// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/I2cDevice.hpp"
#include "devices/RecordingBuses.hpp"

#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include <gtest/gtest.h>

using devices::Bytes;
using virtual_adapter::ByteWriter;

namespace {

using Requests = std::vector<std::string>;

class I2cDeviceTest : public testing::Test {
protected:
    RecordingBuses buses;
    devices::I2cDevice device{buses, 1};
    OpenDevice opened{device};

    /// One message after the other: address, flags, length, the bytes of writes.
    static ByteWriter messages(uint32_t count) { return ByteWriter().u32(count); }
    std::string transfer(ByteWriter messages) { return opened.control(I2C_RDWR, messages.take()); }

    std::string smbus(uint8_t readWrite, uint8_t command, uint32_t size, const Bytes& data) {
        return opened.control(I2C_SMBUS,
                              ByteWriter().u8(readWrite).u8(command).u32(size).bytes(data).take());
    }
    static Bytes block(const Bytes& start) {
        Bytes data = start;
        data.resize(devices::maxSmbusData);
        return data;
    }
};

TEST_F(I2cDeviceTest, AShortWriteAndAReadOfTheSameTargetAreOneRequest) {
    EXPECT_EQ(
        transfer(messages(2).u16(0x50).u16(0).u16(2).u8(0xAB).u8(0xCD).u16(0x50).u16(1).u16(3)),
        "2 010203");
    EXPECT_EQ(buses.requests, Requests{"read 1:0x50 behind [abcd] 3"});
}

TEST_F(I2cDeviceTest, OnlyTheLastMessageOfATransactionEndsWithAStop) {
    ByteWriter all = messages(4);
    all.u16(0x50).u16(0).u16(5).bytes({1, 2, 3, 4, 5}).u16(0x50).u16(1).u16(1);
    all.u16(0x48).u16(0).u16(1).u8(7).u16(0x50).u16(1).u16(2);
    EXPECT_EQ(transfer(std::move(all)), "4 010102");
    EXPECT_EQ(buses.requests,
              (Requests{"write 1:0x50 [0102030405] hold", "read 1:0x50 behind [] 1 hold",
                        "write 1:0x48 [07] hold", "read 1:0x50 behind [] 2"}));
}

TEST_F(I2cDeviceTest, ATransactionThatCannotBeIsRefusedBeforeAnythingIsSent) {
    EXPECT_EQ(transfer(messages(0)), "errno 22");
    EXPECT_EQ(transfer(messages(43)), "errno 22");
    EXPECT_EQ(transfer(messages(1).u16(0x50).u16(1).u16(8193)), "errno 22");
    EXPECT_EQ(transfer(messages(1).u16(0x80).u16(1).u16(1)), "errno 22");
    EXPECT_EQ(transfer(messages(1).u16(0x50).u16(0).u16(2).u8(1)), "errno 22")
        << "a byte is missing";
    EXPECT_EQ(transfer(messages(1).u16(0x50).u16(I2C_M_TEN).u16(0)), "errno 95");
    EXPECT_EQ(transfer(messages(1).u16(0x50).u16(I2C_M_RD | I2C_M_RECV_LEN).u16(1)), "errno 95");
    EXPECT_EQ(buses.requests, Requests{});
}

TEST_F(I2cDeviceTest, WhatTheBusRefusesEndsTheTransaction) {
    buses.error = ENXIO;
    EXPECT_EQ(transfer(messages(2).u16(0x50).u16(0).u16(0).u16(0x51).u16(0).u16(0)), "errno 6");
    EXPECT_EQ(buses.requests, Requests{"write 1:0x50 [] hold"});
}

TEST_F(I2cDeviceTest, EverySmbusTransactionIsWhatTheStandardHas) {
    opened.control(I2C_SLAVE, 0x50);
    EXPECT_EQ(smbus(0, 0, I2C_SMBUS_QUICK, {}), "0 ");
    EXPECT_EQ(smbus(1, 0, I2C_SMBUS_QUICK, {}), "0 ");
    EXPECT_EQ(smbus(0, 9, I2C_SMBUS_BYTE, {}), "0 ");
    EXPECT_EQ(smbus(1, 9, I2C_SMBUS_BYTE, {0}), "0 01");
    EXPECT_EQ(smbus(0, 9, I2C_SMBUS_BYTE_DATA, {0xEE}), "0 ");
    EXPECT_EQ(smbus(1, 9, I2C_SMBUS_BYTE_DATA, {0}), "0 01");
    EXPECT_EQ(smbus(0, 9, I2C_SMBUS_BLOCK_DATA, block({2, 0xAA, 0xBB})), "0 ");
    EXPECT_EQ(smbus(0, 9, I2C_SMBUS_I2C_BLOCK_DATA, block({2, 0xAA, 0xBB})), "0 ");
    EXPECT_EQ(smbus(1, 9, I2C_SMBUS_I2C_BLOCK_DATA, block({2})), "0 020102");
    EXPECT_EQ(buses.requests,
              (Requests{"write 1:0x50 []", "read 1:0x50 behind [] 0", "write 1:0x50 [09]",
                        "read 1:0x50 behind [] 1", "write 1:0x50 [09ee]",
                        "read 1:0x50 behind [09] 1", "write 1:0x50 [0902aabb]",
                        "write 1:0x50 [09aabb]", "read 1:0x50 behind [09] 2"}));
}

TEST_F(I2cDeviceTest, AnSmbusTransactionThatCannotBeIsRefused) {
    EXPECT_EQ(smbus(2, 0, I2C_SMBUS_QUICK, {}), "errno 22");
    EXPECT_EQ(smbus(0, 0, 9, block({})), "errno 22");
    EXPECT_EQ(smbus(1, 0, I2C_SMBUS_BYTE, {}), "errno 22") << "nowhere to put it";
    EXPECT_EQ(smbus(0, 0, I2C_SMBUS_BLOCK_DATA, block({33})), "errno 22");
    EXPECT_EQ(smbus(1, 0, I2C_SMBUS_I2C_BLOCK_DATA, block({33})), "errno 22");
    EXPECT_EQ(smbus(1, 0, I2C_SMBUS_BLOCK_DATA, block({})), "errno 95");
    EXPECT_EQ(smbus(0, 0, I2C_SMBUS_BLOCK_PROC_CALL, block({1})), "errno 95");
    EXPECT_EQ(buses.requests, Requests{});
}

TEST_F(I2cDeviceTest, NumbersAreThoseOfTheKernelsDriver) {
    EXPECT_EQ(opened.control(I2C_FUNCS, Bytes()), "0 0100ff0e");
    EXPECT_EQ(opened.control(I2C_SLAVE, 0x80), "errno 22");
    EXPECT_EQ(opened.control(I2C_TENBIT, 0), "0 ");
    EXPECT_EQ(opened.control(I2C_TENBIT, 1), "errno 22");
    EXPECT_EQ(opened.control(I2C_PEC, 1), "errno 22");
    EXPECT_EQ(opened.control(I2C_TIMEOUT, 100), "0 ");
    EXPECT_EQ(opened.control(I2C_RETRIES, 0xFFFFFFFF), "errno 22");
    EXPECT_EQ(opened.control(0x5401, 0), "errno 25");
}

TEST_F(I2cDeviceTest, EachOpeningHasATargetOfItsOwn) {
    OpenDevice other(device);
    opened.control(I2C_SLAVE, 0x50);
    other.control(I2C_SLAVE_FORCE, 0x48);
    EXPECT_EQ(opened.write({1, 2}), "2 ");
    EXPECT_EQ(other.read(2), "2 0102");
    EXPECT_EQ(opened.read(9000).substr(0, 5), "8192 ");
    EXPECT_EQ(buses.requests, (Requests{"write 1:0x50 [0102]", "read 1:0x48 behind [] 2",
                                        "read 1:0x50 behind [] 8192"}));
}

} // namespace
