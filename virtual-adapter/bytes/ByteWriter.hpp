// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

#include <cstddef>
#include <string>
#include <utility>

namespace virtual_adapter {

/// Builds a message field by field, and remembers which of its fields count what follows them.
class ByteWriter {
public:
    /// Where a field lies, and how many bytes it has.
    struct Field {
        size_t offset;
        size_t size;
    };

    explicit ByteWriter(ByteOrder byteOrder = ByteOrder::LittleEndian) : order(byteOrder) {}

    ByteWriter& u8(uint8_t value);
    ByteWriter& u16(uint16_t value);
    ByteWriter& u32(uint32_t value);
    ByteWriter& bytes(const Bytes& values) { return range(values.begin(), values.end()); }
    template <typename Iterator>
    ByteWriter& range(Iterator first, Iterator last) {
        written.insert(written.end(), first, last);
        return *this;
    }
    ByteWriter& zeros(size_t count);
    /// The text, cut or filled up with zeros to @p size bytes.
    ByteWriter& text(const std::string& value, size_t size);
    /// What another writer has written, its counts among it.
    ByteWriter& append(const ByteWriter& other);

    /// A field that counts what follows it.
    ByteWriter& countU8(uint8_t count);
    ByteWriter& countU16(uint16_t count);

    [[nodiscard]] size_t size() const { return written.size(); }
    [[nodiscard]] const std::vector<Field>& counts() const { return countFields; }
    /// Hands the bytes out.
    Bytes take() { return std::move(written); }

private:
    Bytes written;
    std::vector<Field> countFields;
    ByteOrder order;
};

} // namespace virtual_adapter
