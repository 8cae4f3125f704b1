#pragma once

#include "bytes/Bytes.hpp"

namespace virtual_adapter {

/// A whole message between host and adapter, header included.
using Frame = Bytes;

/// Appends @p value, low byte first.
inline void appendU16(Bytes& bytes, uint16_t value) {
    bytes.push_back(lowByte(value));
    bytes.push_back(highByte(value));
}

} // namespace virtual_adapter
