// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "bytes/ByteWriter.hpp"

#include <algorithm>

namespace virtual_adapter {

ByteWriter& ByteWriter::u8(uint8_t value) {
    written.push_back(value);
    return *this;
}

ByteWriter& ByteWriter::u16(uint16_t value) {
    return order == ByteOrder::LittleEndian ? u8(lowByte(value)).u8(highByte(value))
                                            : u8(highByte(value)).u8(lowByte(value));
}

ByteWriter& ByteWriter::u32(uint32_t value) {
    const auto low = static_cast<uint16_t>(value & 0xFFFFU);
    const auto high = static_cast<uint16_t>(value >> 16U);
    return order == ByteOrder::LittleEndian ? u16(low).u16(high) : u16(high).u16(low);
}

ByteWriter& ByteWriter::zeros(size_t count) {
    written.resize(written.size() + count);
    return *this;
}

ByteWriter& ByteWriter::text(const std::string& value, size_t size) {
    const size_t present = std::min(value.size(), size);
    written.insert(written.end(), value.data(), value.data() + present);
    return zeros(size - present);
}

ByteWriter& ByteWriter::append(const ByteWriter& other) {
    for (const Field& field : other.countFields) {
        countFields.push_back({size() + field.offset, field.size});
    }
    return bytes(other.written);
}

ByteWriter& ByteWriter::countU8(uint8_t count) {
    countFields.push_back({size(), sizeof count});
    return u8(count);
}

ByteWriter& ByteWriter::countU16(uint16_t count) {
    countFields.push_back({size(), sizeof count});
    return u16(count);
}

} // namespace virtual_adapter
