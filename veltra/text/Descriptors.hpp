// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Words.hpp"

#include <string>
#include <vector>

namespace veltra {

/// One message of an I2C transaction.
struct I2cMessage {
    bool isRead;
    uint8_t address;
    uint16_t length;
    Bytes data; ///< Of a write: as many as its length.
};

/// Reads i2ctransfer's grammar: {r|w}LENGTH[@ADDR], behind a write its bytes, the last of which
/// may have the suffix = (repeated) or + (counted up) to fill the message.
std::vector<I2cMessage> parseDescriptors(const std::vector<std::string>& words);

} // namespace veltra
