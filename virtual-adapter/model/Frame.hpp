#pragma once

#include <cstdint>
#include <vector>

namespace virtual_adapter {

/// A whole message between host and adapter, header included.
using Frame = std::vector<uint8_t>;

using Bytes = std::vector<uint8_t>;

/// Appends @p value, low byte first.
inline void appendU16(Bytes& bytes, uint16_t value) {
    bytes.push_back(static_cast<uint8_t>(value & 0xFFU));
    bytes.push_back(static_cast<uint8_t>(value >> 8U));
}

} // namespace virtual_adapter
