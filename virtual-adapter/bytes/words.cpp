// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "bytes/words.hpp"

#include <algorithm>
#include <charconv>

namespace virtual_adapter {

namespace {

constexpr std::string_view hexWord = "hex:";
constexpr std::string_view textWord = "str:";

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool areDigits(std::string_view word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), isDigit);
}

bool startsWith(std::string_view word, std::string_view start) {
    return word.substr(0, start.size()) == start;
}

template <typename Number, typename... Format>
std::optional<Number> converted(std::string_view digits, Format... format) {
    Number number{};
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number, format...);
    if (digits.empty() || error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return number;
}

std::optional<unsigned> hexDigit(char character) {
    return converted<unsigned>({&character, 1}, 16);
}

} // namespace

std::optional<uint64_t> numberOf(std::string_view word) {
    if (startsWith(word, "0x") || startsWith(word, "0X")) {
        return converted<uint64_t>(word.substr(2), 16);
    }
    if (startsWith(word, "0b") || startsWith(word, "0B")) {
        return converted<uint64_t>(word.substr(2), 2);
    }
    if (word.size() > 1 && word.front() == '0') {
        return std::nullopt;
    }
    return converted<uint64_t>(word, 10);
}

std::optional<double> decimalOf(std::string_view word) {
    const std::string_view digits = word.substr(startsWith(word, "-") ? 1 : 0);
    const size_t point = std::min(digits.find('.'), digits.size());
    const bool whole = point == digits.size();
    if (!areDigits(digits.substr(0, point)) || (!whole && !areDigits(digits.substr(point + 1)))) {
        return std::nullopt;
    }
    return converted<double>(word, std::chars_format::fixed);
}

std::optional<bool> flagOf(std::string_view word) {
    if (word != "true" && word != "false") {
        return std::nullopt;
    }
    return word == "true";
}

std::optional<Bytes> bytesOfHex(std::string_view digits) {
    if (digits.size() % 2 != 0) {
        return std::nullopt;
    }
    Bytes bytes;
    bytes.reserve(digits.size() / 2);
    for (size_t i = 0; i < digits.size(); i += 2) {
        const std::optional<unsigned> high = hexDigit(digits[i]);
        const std::optional<unsigned> low = hexDigit(digits[i + 1]);
        if (!high || !low) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<uint8_t>(*high << 4U | *low));
    }
    return bytes;
}

std::optional<Bytes> bytesOf(std::string_view word) {
    if (startsWith(word, hexWord)) {
        return bytesOfHex(word.substr(hexWord.size()));
    }
    if (startsWith(word, textWord)) {
        word.remove_prefix(textWord.size());
        return Bytes(word.begin(), word.end());
    }
    const std::optional<uint64_t> number = numberOf(word);
    if (!number || *number > 0xFF) {
        return std::nullopt;
    }
    return Bytes{static_cast<uint8_t>(*number)};
}

std::string hexOf(const Bytes& bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const uint8_t byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 0x0FU];
    }
    return text;
}

std::string hexNumber(uint64_t number) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    do {
        text.insert(text.begin(), digits[number & 0x0FU]);
        number >>= 4U;
    } while (number != 0);
    return "0x" + std::string(text.size() < 2 ? 2 - text.size() : 0, '0') + text;
}

} // namespace virtual_adapter
