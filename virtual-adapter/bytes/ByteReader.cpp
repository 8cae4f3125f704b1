// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "bytes/ByteReader.hpp"

namespace virtual_adapter {

Bytes ByteReader::bytes(size_t count) {
    const size_t present = available(count);
    Bytes result(next, next + present);
    result.resize(count);
    next += present;
    left -= present;
    return result;
}

} // namespace virtual_adapter
