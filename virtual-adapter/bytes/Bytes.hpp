// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <vector>

namespace virtual_adapter {

using Bytes = std::vector<uint8_t>;

enum class ByteOrder { LittleEndian, BigEndian };

constexpr uint8_t lowByte(uint16_t value) {
    return static_cast<uint8_t>(value & 0xFFU);
}

constexpr uint8_t highByte(uint16_t value) {
    return static_cast<uint8_t>(value >> 8U);
}

} // namespace virtual_adapter
