// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

#include <cstddef>

namespace virtual_adapter {

/// Reads bytes from front to back. A read past the end yields zeros and is remembered, so that a
/// parser reads all its fields first and asks once whether they were there.
class ByteReader {
public:
    /// The reader keeps the pointer: the bytes must outlive it.
    ByteReader(const uint8_t* data, size_t size, ByteOrder byteOrder = ByteOrder::LittleEndian)
        : next(data), left(size), order(byteOrder) {}

    /// For vectors and arrays of bytes, which must outlive the reader.
    template <typename Container>
    explicit ByteReader(const Container& container, ByteOrder byteOrder = ByteOrder::LittleEndian)
        : next(container.data()), left(container.size()), order(byteOrder) {}
    template <typename Container>
    explicit ByteReader(const Container&& container,
                        ByteOrder byteOrder = ByteOrder::LittleEndian) = delete;

    // In the header, since what is loaded into foreign programs has no C++ runtime to link.
    uint8_t u8() {
        if (available(1) == 0) {
            return 0;
        }
        --left;
        return *next++;
    }
    uint16_t u16() {
        const unsigned first = u8();
        const unsigned second = u8();
        return static_cast<uint16_t>(order == ByteOrder::LittleEndian ? first | second << 8U
                                                                      : first << 8U | second);
    }
    uint32_t u32() {
        const uint32_t first = u16();
        const uint32_t second = u16();
        return order == ByteOrder::LittleEndian ? first | second << 16U : first << 16U | second;
    }
    /// Where the next bytes lie; `skip` passes over them.
    [[nodiscard]] const uint8_t* position() const { return next; }
    void skip(size_t count) {
        const size_t present = available(count);
        next += present;
        left -= present;
    }
    /// As many bytes as asked for, zeros in place of those that are missing.
    Bytes bytes(size_t count);
    /// Everything not read yet.
    Bytes rest() { return bytes(left); }

    [[nodiscard]] size_t remaining() const { return left; }
    /// Whether a read went past the end.
    [[nodiscard]] bool overran() const { return overrun; }
    /// Whether every read lay inside the bytes and none of them is left.
    [[nodiscard]] bool consumedExactly() const { return !overrun && left == 0; }

private:
    /// How many of @p count bytes there are.
    size_t available(size_t count) {
        overrun = overrun || count > left;
        return count < left ? count : left;
    }

    const uint8_t* next;
    size_t left;
    ByteOrder order;
    bool overrun = false;
};

} // namespace virtual_adapter
