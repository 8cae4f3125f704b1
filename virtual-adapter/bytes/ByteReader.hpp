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

    uint8_t u8();
    uint16_t u16();
    uint32_t u32();
    /// As many bytes as asked for, zeros in place of those that are missing.
    Bytes bytes(size_t count);
    /// Everything not read yet.
    Bytes rest() { return bytes(left); }
    void skip(size_t count);

    [[nodiscard]] size_t remaining() const { return left; }
    /// Whether a read went past the end.
    [[nodiscard]] bool overran() const { return overrun; }
    /// Whether every read lay inside the bytes and none of them is left.
    [[nodiscard]] bool consumedExactly() const { return !overrun && left == 0; }

private:
    /// How many of @p count bytes there are.
    size_t available(size_t count);

    const uint8_t* next;
    size_t left;
    ByteOrder order;
    bool overrun = false;
};

} // namespace virtual_adapter
