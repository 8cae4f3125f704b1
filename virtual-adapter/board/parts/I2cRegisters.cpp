// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I2cRegisters.hpp"

namespace virtual_adapter {

bool I2cRegisters::start(I2cDirection direction) {
    if (direction == I2cDirection::Write) {
        addressBytesSeen = 0;
        address = 0;
    }
    return true;
}

bool I2cRegisters::write(uint8_t byte) {
    if (addressBytesSeen == registers.addressBytes()) {
        registers.write(byte);
        return true;
    }
    address = address << 8U | byte;
    if (++addressBytesSeen < registers.addressBytes()) {
        return true;
    }
    if (address >= registers.registerCount()) {
        // What follows would be taken for the address again.
        addressBytesSeen = 0;
        address = 0;
        return false;
    }
    registers.select(address);
    return true;
}

} // namespace virtual_adapter
