// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i2c/I2cTarget.hpp"

#include <algorithm>

namespace virtual_adapter {

size_t I2cTarget::writeMessage(const Bytes& bytes) {
    const auto refused =
        std::find_if_not(bytes.begin(), bytes.end(), [this](uint8_t byte) { return write(byte); });
    return static_cast<size_t>(refused - bytes.begin());
}

Bytes I2cTarget::readMessage(size_t count) {
    Bytes bytes(count);
    std::generate(bytes.begin(), bytes.end(), [this] { return read(); });
    return bytes;
}

} // namespace virtual_adapter
