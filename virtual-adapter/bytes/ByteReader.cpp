// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "bytes/ByteReader.hpp"

#include <algorithm>

namespace virtual_adapter {

uint8_t ByteReader::u8() {
    if (available(1) == 0) {
        return 0;
    }
    --left;
    return *next++;
}

uint16_t ByteReader::u16() {
    const unsigned first = u8();
    const unsigned second = u8();
    return static_cast<uint16_t>(order == ByteOrder::LittleEndian ? first | second << 8U
                                                                  : first << 8U | second);
}

uint32_t ByteReader::u32() {
    const uint32_t first = u16();
    const uint32_t second = u16();
    return order == ByteOrder::LittleEndian ? first | second << 16U : first << 16U | second;
}

Bytes ByteReader::bytes(size_t count) {
    const size_t present = available(count);
    Bytes result(next, next + present);
    result.resize(count);
    next += present;
    left -= present;
    return result;
}

void ByteReader::skip(size_t count) {
    const size_t present = available(count);
    next += present;
    left -= present;
}

size_t ByteReader::available(size_t count) {
    overrun = overrun || count > left;
    return std::min(count, left);
}

} // namespace virtual_adapter
