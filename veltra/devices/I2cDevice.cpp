// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/I2cDevice.hpp"

#include "devices/Smbus.hpp"
#include "devices/messages.hpp"

#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <vector>

namespace devices {

namespace {

/// What is announced is what works: no block read, whose length comes from the target, no PEC, no
/// addresses of ten bits.
constexpr uint32_t functions = I2C_FUNC_I2C | I2C_FUNC_SMBUS_QUICK | I2C_FUNC_SMBUS_BYTE |
                               I2C_FUNC_SMBUS_BYTE_DATA | I2C_FUNC_SMBUS_WORD_DATA |
                               I2C_FUNC_SMBUS_PROC_CALL | I2C_FUNC_SMBUS_WRITE_BLOCK_DATA |
                               I2C_FUNC_SMBUS_I2C_BLOCK;

/// The kernel puts the second one there itself, for buffers of its own.
constexpr unsigned understoodFlags = I2C_M_RD | I2C_M_DMA_SAFE;

constexpr uint32_t maxAddress = 0x7F;

/// Reads the messages of an I2C_RDWR. Returns an error number, or 0.
int readMessages(ByteReader& arguments, std::vector<I2cMessage>& messages) {
    const uint32_t count = arguments.u32();
    if (count == 0 || count > maxI2cMessages) {
        return EINVAL;
    }
    for (uint32_t i = 0; i < count; ++i) {
        const uint16_t address = arguments.u16();
        const unsigned flags = arguments.u16();
        const uint16_t length = arguments.u16();
        if (length > maxI2cLength) {
            return EINVAL;
        }
        if ((flags & ~understoodFlags) != 0) {
            return EOPNOTSUPP;
        }
        if (address > maxAddress) {
            return EINVAL;
        }
        const bool isRead = (flags & I2C_M_RD) != 0;
        messages.push_back({static_cast<uint8_t>(address), isRead, length,
                            isRead ? Bytes() : arguments.bytes(length)});
    }
    return arguments.consumedExactly() ? 0 : EINVAL;
}

class OpenedI2cDevice : public OpenedDevice {
public:
    OpenedI2cDevice(Buses& itsBuses, int itsBus) : buses(itsBuses), bus(itsBus) {}

    Answer control(uint32_t request, ByteReader& arguments) override {
        switch (request) {
        case I2C_FUNCS:
            return numberAnswer(functions);
        case I2C_RDWR:
            return transfer(arguments);
        case I2C_SMBUS:
            return smbus(arguments);
        default:
            return set(request, arguments.u32());
        }
    }

    Answer read(uint32_t count) override {
        Answer answer;
        const auto length = static_cast<uint16_t>(std::min<size_t>(count, maxI2cLength));
        const int error = buses.i2cRead(bus, target, {}, length, false, answer.data);
        if (error != 0) {
            return refusal(error);
        }
        answer.result = length;
        return answer;
    }

    Answer write(const Bytes& data) override {
        const size_t length = std::min(data.size(), maxI2cLength);
        const auto end = data.begin() + static_cast<Bytes::difference_type>(length);
        const int error = buses.i2cWrite(bus, target, {data.begin(), end}, false);
        return error != 0 ? refusal(error) : Answer{static_cast<int32_t>(length), {}};
    }

private:
    Answer set(uint32_t request, uint32_t value) {
        switch (request) {
        case I2C_SLAVE:
        case I2C_SLAVE_FORCE:
            if (value > maxAddress) {
                return refusal(EINVAL);
            }
            target = static_cast<uint8_t>(value);
            return {};
        case I2C_TENBIT:
        case I2C_PEC:
            return value == 0 ? Answer() : refusal(EINVAL);
        case I2C_RETRIES:
        case I2C_TIMEOUT:
            // The adapter has its own; a program need not know.
            return value <= INT_MAX ? Answer() : refusal(EINVAL);
        default:
            return refusal(ENOTTY);
        }
    }

    Answer transfer(ByteReader& arguments) {
        std::vector<I2cMessage> messages;
        int error = readMessages(arguments, messages);
        Answer answer{static_cast<int32_t>(messages.size()), {}};
        if (error == 0) {
            error = i2cTransfer(buses, bus, messages, answer.data);
        }
        return error != 0 ? refusal(error) : answer;
    }

    Answer smbus(ByteReader& arguments) {
        const uint8_t readWrite = arguments.u8();
        const uint8_t command = arguments.u8();
        const uint32_t size = arguments.u32();
        Answer answer;
        answer.data = arguments.rest();
        const int error =
            smbusTransfer({buses, bus, target}, readWrite, command, size, answer.data);
        return error != 0 ? refusal(error) : answer;
    }

    Buses& buses;
    int bus;
    uint8_t target = 0;
};

} // namespace

std::unique_ptr<OpenedDevice> I2cDevice::open() {
    return std::make_unique<OpenedI2cDevice>(buses, bus);
}

} // namespace devices
