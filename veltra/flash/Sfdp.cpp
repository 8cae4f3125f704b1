// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "flash/Sfdp.hpp"

#include "Failure.hpp"

#include <algorithm>

namespace veltra {

namespace {

constexpr size_t headerBytes = 8;
constexpr size_t minDoubleWords = 9;
constexpr size_t maxDoubleWords = 16;
constexpr uint64_t maxBytes = uint64_t{16} << 20U; // what three address bytes hold
constexpr size_t pageSizeWord = 11;

[[noreturn]] void refuse(const std::string& reason) {
    throw Failure(ExitStatus::Refused, "flash", "the flash's parameter table " + reason);
}

Bytes readExactly(const SfdpReader& read, uint32_t address, size_t count) {
    Bytes bytes = read(address, count);
    if (bytes.size() != count) {
        refuse("cannot be read");
    }
    return bytes;
}

/// The table's double words, numbered from 1 as the standard does.
class Table {
public:
    explicit Table(const Bytes& content) : bytes(content) {}

    [[nodiscard]] uint32_t word(size_t number) const {
        uint32_t value = 0;
        for (size_t byte = 0; byte < 4; ++byte) {
            value |= static_cast<uint32_t>(bytes.at((number - 1) * 4 + byte)) << (8 * byte);
        }
        return value;
    }
    [[nodiscard]] bool has(size_t number) const { return number * 4 <= bytes.size(); }

private:
    const Bytes& bytes;
};

uint64_t sizeOf(const Table& table) {
    const uint32_t word = table.word(2);
    const bool isExponent = (word >> 31U) != 0;
    const uint32_t exponent = word & 0x7FFFFFFFU;
    if (isExponent && exponent > 63) {
        refuse("names an absurd size");
    }
    const uint64_t bits = isExponent ? uint64_t{1} << exponent : uint64_t{word} + 1;
    if (bits % 8 != 0 || bits == 0) {
        refuse("names a size that is no number of bytes");
    }
    if (bits / 8 > maxBytes) {
        refuse(
            "names " + std::to_string(bits / 8) +
            " bytes; more than 16 MiB need four address bytes, which this program does not send");
    }
    return bits / 8;
}

/// The smallest block that can be erased.
void findErase(const Table& table, FlashGeometry& geometry) {
    for (const size_t number : {size_t{8}, size_t{9}}) {
        for (const unsigned shift : {0U, 16U}) {
            const uint32_t type = table.word(number) >> shift;
            const uint32_t exponent = type & 0xFFU;
            const bool smaller =
                exponent > 0 && exponent < 25 &&
                (geometry.eraseBytes == 0 || (uint32_t{1} << exponent) < geometry.eraseBytes);
            if (smaller) {
                geometry.eraseBytes = uint32_t{1} << exponent;
                geometry.eraseOpcode = static_cast<uint8_t>(type >> 8U);
            }
        }
    }
    if (geometry.eraseBytes == 0 || geometry.bytes % geometry.eraseBytes != 0) {
        refuse("names no block that can be erased");
    }
}

} // namespace

bool hasSfdp(const SfdpReader& read) {
    return read(0, 4) == Bytes({'S', 'F', 'D', 'P'});
}

FlashGeometry readSfdp(const SfdpReader& read) {
    const Bytes header = readExactly(read, headerBytes, headerBytes);
    const uint8_t major = header[2];
    const size_t doubleWords = header[3];
    if (header[0] != 0x00 || major != 1 || doubleWords < minDoubleWords) {
        refuse("is of a revision that nobody knows");
    }
    const uint32_t address = header[4] | static_cast<uint32_t>(header[5]) << 8U |
                             static_cast<uint32_t>(header[6]) << 16U;
    const Bytes content = readExactly(read, address, 4 * std::min(doubleWords, maxDoubleWords));
    const Table table(content);
    if (((table.word(1) >> 17U) & 3U) == 2) {
        refuse("asks for four address bytes, which this program does not send");
    }
    FlashGeometry geometry{sizeOf(table), 0, 0, 1};
    findErase(table, geometry);
    if (table.has(pageSizeWord)) {
        geometry.pageBytes = uint32_t{1} << ((table.word(pageSizeWord) >> 4U) & 0xFU);
    } else if ((table.word(1) & 4U) != 0) {
        geometry.pageBytes = 64;
    }
    return geometry;
}

} // namespace veltra
