// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "devices/Buses.hpp"

#include <vector>

namespace devices {

/// One message of a transaction.
struct I2cMessage {
    uint8_t address;
    bool isRead;
    uint16_t length;
    Bytes data; ///< Of a write.
};

/// The messages of one transaction, with repeated STARTs between them and one STOP. @p received
/// grows by the bytes of all reads. Returns an error number, or 0.
int i2cTransfer(Buses& buses, int bus, const std::vector<I2cMessage>& messages, Bytes& received);

/// Who is meant by an SMBus transaction.
struct SmbusTarget {
    Buses& buses;
    int bus;
    uint8_t address;
};

/// An SMBus transaction in I2C messages. @p data holds the bytes of i2c_smbus_data that go with the
/// size; it becomes those that a read sets. Returns an error number, or 0.
int smbusTransfer(const SmbusTarget& target, uint8_t readWrite, uint8_t command, uint32_t size,
                  Bytes& data);

} // namespace devices
