// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I2cEeprom.hpp"

#include <algorithm>

namespace virtual_adapter {

I2cEeprom::I2cEeprom(const Geometry& layout, const std::string& contents)
    : geometry(layout), memory(layout.size, 0xFF) {
    std::copy(contents.begin(), contents.end(), memory.begin());
}

bool I2cEeprom::start(I2cDirection direction) {
    // A START in place of the STOP gives the running write up.
    pendingBytes.clear();
    if (attemptsUntilReady > 0) {
        --attemptsUntilReady;
        return false;
    }
    if (direction == I2cDirection::Write) {
        registerAddressBytesSeen = 0;
        registerAddress = 0;
    }
    return true;
}

bool I2cEeprom::write(uint8_t byte) {
    if (registerAddressBytesSeen < geometry.registerAddressBytes) {
        registerAddress = registerAddress << 8U | byte;
        if (++registerAddressBytesSeen == geometry.registerAddressBytes) {
            position = registerAddress % geometry.size;
        }
        return true;
    }
    pendingBytes[position] = byte;
    const size_t page = position - position % geometry.pageSize;
    position = page + (position + 1) % geometry.pageSize;
    return true;
}

uint8_t I2cEeprom::read() {
    const uint8_t byte = memory[position];
    position = (position + 1) % geometry.size;
    return byte;
}

void I2cEeprom::stop() {
    if (pendingBytes.empty()) {
        return;
    }
    for (const auto& [address, byte] : pendingBytes) {
        memory[address] = byte;
    }
    attemptsUntilReady = attemptsPerWriteCycle;
}

void I2cEeprom::cyclePower() {
    pendingBytes.clear();
    attemptsUntilReady = 0;
    position = 0;
}

} // namespace virtual_adapter
