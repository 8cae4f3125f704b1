// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/Smbus.hpp"

#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace devices {

namespace {

/// What goes with a read in one request of the adapter.
constexpr size_t maxRegisterBytes = 4;

bool isRegisterOf(const I2cMessage& write, const I2cMessage& read) {
    return !write.isRead && read.isRead && write.address == read.address && !write.data.empty() &&
           write.data.size() <= maxRegisterBytes;
}

/// The union holds words in the order of the processor, the bus carries the low byte first.
Bytes lowByteFirst(const Bytes& data) {
    uint16_t word = 0;
    std::memcpy(&word, data.data(), sizeof word);
    return {virtual_adapter::lowByte(word), virtual_adapter::highByte(word)};
}

Bytes asProcessorHasIt(const Bytes& received) {
    const auto word = static_cast<uint16_t>(received[0] | received[1] << 8U);
    Bytes data(sizeof word);
    std::memcpy(data.data(), &word, sizeof word);
    return data;
}

I2cMessage write(uint8_t address, const Bytes& data) {
    return {address, false, static_cast<uint16_t>(data.size()), data};
}

I2cMessage read(uint8_t address, size_t count) {
    return {address, true, static_cast<uint16_t>(count), {}};
}

/// The command and what follows it.
Bytes behind(uint8_t command, const Bytes& rest) {
    Bytes bytes(1 + rest.size(), command);
    std::copy(rest.begin(), rest.end(), bytes.begin() + 1);
    return bytes;
}

/// How many bytes of i2c_smbus_data go with a size. Unknown ones have none.
size_t dataSize(uint32_t size) {
    switch (size) {
    case I2C_SMBUS_BYTE:
    case I2C_SMBUS_BYTE_DATA:
        return 1;
    case I2C_SMBUS_WORD_DATA:
    case I2C_SMBUS_PROC_CALL:
        return 2;
    case I2C_SMBUS_BLOCK_DATA:
    case I2C_SMBUS_I2C_BLOCK_BROKEN:
    case I2C_SMBUS_I2C_BLOCK_DATA:
    case I2C_SMBUS_BLOCK_PROC_CALL:
        return I2C_SMBUS_BLOCK_MAX + 2;
    default:
        return 0;
    }
}

/// What can be said of a transaction before it is sent.
int whatIsWrong(bool isRead, uint32_t size, const Bytes& data) {
    const bool isQuick = size == I2C_SMBUS_QUICK;
    if (dataSize(size) == 0 && !isQuick) {
        return EINVAL;
    }
    const bool needsData = !isQuick && !(size == I2C_SMBUS_BYTE && !isRead);
    if (needsData && data.size() != dataSize(size)) {
        return EINVAL;
    }
    // The target says how long the answer is, and the adapter cannot wait for it.
    const bool isReceivingLength =
        size == I2C_SMBUS_BLOCK_PROC_CALL || (size == I2C_SMBUS_BLOCK_DATA && isRead);
    if (isReceivingLength) {
        return EOPNOTSUPP;
    }
    const bool isBlock = data.size() > 2;
    const bool hasFixedLength = size == I2C_SMBUS_I2C_BLOCK_BROKEN && isRead;
    return isBlock && !hasFixedLength && data[0] > I2C_SMBUS_BLOCK_MAX ? EINVAL : 0;
}

std::vector<I2cMessage> messagesOf(uint8_t address, bool isRead, uint8_t command, uint32_t size,
                                   const Bytes& data) {
    const I2cMessage asking = write(address, {command});
    const size_t blockLength = data.empty() ? 0 : data[0];
    switch (size) {
    case I2C_SMBUS_QUICK:
        return {isRead ? read(address, 0) : write(address, {})};
    case I2C_SMBUS_BYTE:
        return {isRead ? read(address, 1) : asking};
    case I2C_SMBUS_BYTE_DATA:
        return isRead ? std::vector{asking, read(address, 1)}
                      : std::vector{write(address, behind(command, data))};
    case I2C_SMBUS_WORD_DATA:
        return isRead ? std::vector{asking, read(address, 2)}
                      : std::vector{write(address, behind(command, lowByteFirst(data)))};
    case I2C_SMBUS_PROC_CALL:
        return {write(address, behind(command, lowByteFirst(data))), read(address, 2)};
    case I2C_SMBUS_I2C_BLOCK_BROKEN:
    case I2C_SMBUS_I2C_BLOCK_DATA:
        if (isRead) {
            return {asking, read(address, size == I2C_SMBUS_I2C_BLOCK_BROKEN ? I2C_SMBUS_BLOCK_MAX
                                                                             : blockLength)};
        }
        return {write(
            address,
            behind(command, {data.begin() + 1, data.begin() + 1 + static_cast<int>(blockLength)}))};
    default: // I2C_SMBUS_BLOCK_DATA, whose length goes over the bus too
        return {write(address, behind(command, {data.begin(), data.begin() + 1 +
                                                                  static_cast<int>(blockLength)}))};
    }
}

} // namespace

int i2cTransfer(Buses& buses, int bus, const std::vector<I2cMessage>& messages, Bytes& received) {
    int error = 0;
    for (size_t i = 0; i < messages.size() && error == 0; ++i) {
        const bool isCombined =
            i + 1 < messages.size() && isRegisterOf(messages[i], messages[i + 1]);
        const Bytes written = isCombined ? messages[i].data : Bytes();
        i += isCombined ? 1 : 0;
        const I2cMessage& message = messages[i];
        const bool hold = i + 1 < messages.size();
        if (message.isRead) {
            Bytes data;
            error = buses.i2cRead(bus, message.address, written, message.length, hold, data);
            received.insert(received.end(), data.begin(), data.end());
        } else {
            error = buses.i2cWrite(bus, message.address, message.data, hold);
        }
    }
    return error;
}

int smbusTransfer(const SmbusTarget& target, uint8_t readWrite, uint8_t command, uint32_t size,
                  Bytes& data) {
    if (readWrite > I2C_SMBUS_READ) {
        return EINVAL;
    }
    const bool isRead = readWrite == I2C_SMBUS_READ;
    if (const int error = whatIsWrong(isRead, size, data)) {
        return error;
    }
    Bytes received;
    const int error =
        i2cTransfer(target.buses, target.bus,
                    messagesOf(target.address, isRead, command, size, data), received);
    const bool isWord = size == I2C_SMBUS_WORD_DATA || size == I2C_SMBUS_PROC_CALL;
    if (!received.empty() && isWord) {
        data = asProcessorHasIt(received);
    } else if (!received.empty() && dataSize(size) > 2) {
        data = behind(static_cast<uint8_t>(received.size()), received);
    } else {
        data = received;
    }
    return error;
}

} // namespace devices
