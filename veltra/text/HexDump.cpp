// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "text/HexDump.hpp"

#include <algorithm>

namespace veltra {

namespace {

constexpr size_t lineBytes = 16;
constexpr size_t hexColumns = lineBytes * 3 - 1;

char shown(uint8_t byte) {
    return byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
}

int digitsFor(uint64_t last) {
    return last <= 0xFF ? 2 : last <= 0xFFFF ? 4 : 8;
}

} // namespace

std::string hexDump(const Bytes& bytes, uint64_t first) {
    const int digits = digitsFor(first + bytes.size() - (bytes.empty() ? 0 : 1));
    std::string text;
    for (size_t at = 0; at < bytes.size(); at += lineBytes) {
        const auto begin = bytes.begin() + static_cast<ptrdiff_t>(at);
        const Bytes line(begin,
                         begin + static_cast<ptrdiff_t>(std::min(lineBytes, bytes.size() - at)));
        std::string hex = hexWords(line);
        hex.resize(hexColumns, ' ');
        std::string letters;
        std::transform(line.begin(), line.end(), std::back_inserter(letters), shown);
        text.append(text.empty() ? "" : "\n")
            .append(hexNumber(first + at, digits).substr(2))
            .append(": ")
            .append(hex)
            .append("  ")
            .append(letters);
    }
    return text;
}

} // namespace veltra
