// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Words.hpp"

#include "Failure.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace veltra {

namespace {

int digitOf(char letter) {
    if (letter >= '0' && letter <= '9') {
        return letter - '0';
    }
    if (letter >= 'a' && letter <= 'f') {
        return letter - 'a' + 10;
    }
    return letter >= 'A' && letter <= 'F' ? letter - 'A' + 10 : 16;
}

bool startsWith(const std::string& text, const char* beginning) {
    return text.rfind(beginning, 0) == 0;
}

[[noreturn]] void refuse(const std::string& what, const std::string& text,
                         const std::string& reason) {
    throw Failure::ofUsage(what + " '" + text + "' " + reason);
}

/// Digits of a base; false when there are none, others, or more than 64 bits hold.
bool readDigits(const std::string& digits, unsigned base, uint64_t& value) {
    value = 0;
    for (const char letter : digits) {
        const auto digit = static_cast<unsigned>(digitOf(letter));
        if (digit >= base || value > (UINT64_MAX - digit) / base) {
            return false;
        }
        value = value * base + digit;
    }
    return !digits.empty();
}

/// A decimal fraction, times 10 to the power of `decimals`; false when it has more decimals.
bool readFraction(const std::string& text, size_t decimals, uint64_t& value) {
    const size_t point = text.find('.');
    std::string digits = text.substr(0, point);
    if (digits.empty() || (digits.size() > 1 && digits[0] == '0')) {
        return false;
    }
    std::string behind = point == std::string::npos ? "0" : text.substr(point + 1);
    if (behind.empty() || behind.size() > decimals) {
        return false;
    }
    behind.resize(decimals, '0');
    return readDigits(digits + behind, 10, value);
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

} // namespace

uint64_t parseNumber(const std::string& what, const std::string& text, uint64_t min, uint64_t max) {
    uint64_t value = 0;
    bool understood = false;
    if (startsWith(text, "0x") || startsWith(text, "0X")) {
        understood = readDigits(text.substr(2), 16, value);
    } else if (startsWith(text, "0b") || startsWith(text, "0B")) {
        understood = readDigits(text.substr(2), 2, value);
    } else if (text.size() > 1 && text[0] == '0') {
        refuse(what, text, "begins with 0: write 0x for hexadecimal, or leave the 0 out");
    } else {
        understood = readDigits(text, 10, value);
    }
    if (!understood) {
        refuse(what, text, "is no number: 31, 0x1f and 0b11111 are");
    }
    if (value < min || value > max) {
        refuse(what, text,
               "is out of range: " + std::to_string(min) + " to " + std::to_string(max));
    }
    return value;
}

uint8_t parseAddress(const std::string& text) {
    const uint64_t address = parseNumber("address", text, 0, UINT64_MAX);
    if (address > 0x7F && address <= 0xFF) {
        refuse("address", text,
               "has 8 bits, which count the read/write bit: the 7-bit address is " +
                   hexNumber(address >> 1U, 2));
    }
    return static_cast<uint8_t>(parseNumber("address", text, 0, 0x7F));
}

Bytes parseRegister(const std::string& text, unsigned width) {
    const uint64_t value =
        parseNumber("register", text, 0, width >= 4 ? UINT32_MAX : (1ULL << (8 * width)) - 1);
    Bytes bytes;
    for (unsigned byte = width; byte > 0; --byte) {
        bytes.push_back(static_cast<uint8_t>(value >> (8 * (byte - 1))));
    }
    return bytes;
}

uint32_t parseFrequency(const std::string& text) {
    std::string digits = text;
    size_t decimals = 0;
    if (!digits.empty() && (digits.back() == 'k' || digits.back() == 'M')) {
        decimals = digits.back() == 'k' ? 3 : 6;
        digits.pop_back();
    }
    uint64_t hertz = 0;
    const bool understood =
        decimals == 0 ? readDigits(digits, 10, hertz) : readFraction(digits, decimals, hertz);
    if (!understood || hertz == 0 || hertz > UINT32_MAX) {
        refuse("clock", text, "is no clock rate: 100k, 1M and 400000 are");
    }
    return static_cast<uint32_t>(hertz);
}

uint16_t parseVolts(const std::string& text) {
    uint64_t millivolts = 0;
    if (!readFraction(text, 3, millivolts) || millivolts == 0 || millivolts > UINT16_MAX) {
        refuse("voltage", text, "is no voltage: 1.8 and 3.3 are, in volts");
    }
    return static_cast<uint16_t>(millivolts);
}

int parseSeconds(const std::string& text) {
    uint64_t milliseconds = 0;
    if (!readFraction(text, 3, milliseconds) || milliseconds > INT32_MAX) {
        refuse("time", text, "is no number of seconds: 2 and 0.5 are");
    }
    return static_cast<int>(milliseconds);
}

Bytes parseHex(const std::string& text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char letter) { return letter != ' '; });
    if (digits.size() % 2 != 0 ||
        std::any_of(digits.begin(), digits.end(), [](char c) { return digitOf(c) > 15; })) {
        refuse("bytes", text, "are no pairs of hexadecimal digits");
    }
    Bytes bytes;
    for (size_t at = 0; at < digits.size(); at += 2) {
        bytes.push_back(static_cast<uint8_t>(digitOf(digits[at]) * 16 + digitOf(digits[at + 1])));
    }
    return bytes;
}

Bytes readFile(const std::string& name, size_t max) {
    const File file(name == "-" ? stdin : std::fopen(name.c_str(), "rbe"),
                    [](std::FILE* open) { return open == stdin ? 0 : std::fclose(open); });
    Bytes bytes;
    Bytes block(65536);
    size_t count = 0;
    while (file && bytes.size() <= max &&
           (count = std::fread(block.data(), 1, block.size(), file.get())) > 0) {
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<ptrdiff_t>(count));
    }
    if (!file || std::ferror(file.get()) != 0) {
        throw Failure(ExitStatus::Refused, "file",
                      "cannot read " + name + ": " + std::strerror(errno));
    }
    if (bytes.size() > max) {
        throw Failure::ofUsage(name + " holds more than " + std::to_string(max) + " bytes");
    }
    return bytes;
}

void writeFile(const std::string& name, const Bytes& contents) {
    std::FILE* const file = std::fopen(name.c_str(), "wbe");
    const bool written = file != nullptr &&
                         std::fwrite(contents.data(), 1, contents.size(), file) == contents.size();
    if ((file != nullptr && std::fclose(file) != 0) || !written) {
        throw Failure(ExitStatus::Refused, "file",
                      "cannot write " + name + ": " + std::strerror(errno));
    }
}

Bytes parseBytes(const std::vector<std::string>& words, size_t max) {
    Bytes bytes;
    for (const std::string& word : words) {
        Bytes next;
        if (startsWith(word, "hex:")) {
            next = parseHex(word.substr(4));
        } else if (startsWith(word, "str:")) {
            next.assign(word.begin() + 4, word.end());
        } else if (startsWith(word, "@") || word == "-") {
            next = readFile(word == "-" ? word : word.substr(1), max);
        } else {
            next.push_back(static_cast<uint8_t>(parseNumber("byte", word, 0, 0xFF)));
        }
        bytes.insert(bytes.end(), next.begin(), next.end());
        if (bytes.size() > max) {
            throw Failure::ofUsage("more than " + std::to_string(max) + " bytes");
        }
    }
    return bytes;
}

Range parseRange(const std::string& text, uint32_t max) {
    const size_t dash = text.find('-');
    if (dash == std::string::npos) {
        refuse("range", text, "is no range: 0x00-0x1f is");
    }
    Range range{};
    range.first = static_cast<uint32_t>(parseNumber("range's", text.substr(0, dash), 0, max));
    range.last =
        static_cast<uint32_t>(parseNumber("range's", text.substr(dash + 1), range.first, max));
    return range;
}

Assignment parseAssignment(const std::string& text, const std::string& form) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw Failure::ofUsage("'" + text + "' is not of the form " + form);
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

void refuseName(const std::string& what, const std::string& text,
                const std::vector<std::string>& names) {
    refuse(what, text, "is unknown: " + join(names, ", "));
}

std::string hexNumber(uint64_t value, int digits) {
    char text[32];
    (void)std::snprintf(text, sizeof text, "0x%0*llx", digits,
                        static_cast<unsigned long long>(value));
    return text;
}

std::string hexDigits(const Bytes& bytes) {
    static const char* const digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const uint8_t byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 0x0FU];
    }
    return text;
}

std::string hexWords(const Bytes& bytes) {
    const std::string digits = hexDigits(bytes);
    std::string text;
    text.reserve(digits.size() + bytes.size());
    for (size_t at = 0; at < digits.size(); at += 2) {
        text.append(at == 0 ? "" : " ").append(digits, at, 2);
    }
    return text;
}

std::string printable(const std::string& text) {
    std::string shown;
    for (const char letter : text) {
        const auto byte = static_cast<uint8_t>(letter);
        shown += byte < 0x20 || byte == 0x7F ? "\\x" + hexDigits({byte}) : std::string(1, letter);
    }
    return shown;
}

std::string join(const std::vector<std::string>& words, const std::string& between) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : between) + word;
    }
    return text;
}

std::string quoted(const std::string& word) {
    const char* const harmless =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=:,./@%";
    if (!word.empty() && word.find_first_not_of(harmless) == std::string::npos) {
        return word;
    }
    std::string text = "'";
    for (const char letter : word) {
        text += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return text + "'";
}

} // namespace veltra
