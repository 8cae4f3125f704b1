// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The one reader of what people type: numbers, bytes, names. Whatever it does not understand it
/// refuses with a Failure that says what would be understood; nothing is clamped or cut.
namespace veltra {

using Bytes = std::vector<uint8_t>;

/// 0x1f, 31 or 0b11111; a leading 0 without x or b is refused, as it means octal elsewhere.
uint64_t parseNumber(const std::string& what, const std::string& text, uint64_t min, uint64_t max);

/// An I2C or I3C address of 7 bits, unshifted.
uint8_t parseAddress(const std::string& text);

/// A number in as many bytes as told, most significant first.
Bytes parseRegister(const std::string& text, unsigned width);

/// 100k, 1M, 12.5M or plain hertz.
uint32_t parseFrequency(const std::string& text);

/// Volts with up to three decimals, in millivolts.
uint16_t parseVolts(const std::string& text);

/// Seconds with up to three decimals, in milliseconds.
int parseSeconds(const std::string& text);

/// Numbers up to 0xFF, hex:0011ff, str:text, @file, and - for the standard input.
Bytes parseBytes(const std::vector<std::string>& words, size_t max);

/// The whole file, or the standard input for "-".
Bytes readFile(const std::string& name, size_t max);

/// Replaces the file.
void writeFile(const std::string& name, const Bytes& contents);

/// Pairs of hexadecimal digits; blanks between them are skipped.
Bytes parseHex(const std::string& text);

struct Range {
    uint32_t first;
    uint32_t last;
};

/// FIRST-LAST, both included.
Range parseRange(const std::string& text, uint32_t max);

/// What stands in front of and behind the first =.
struct Assignment {
    std::string name;
    std::string value;
};
Assignment parseAssignment(const std::string& text, const std::string& form);

/// A name with the value that it stands for.
template <typename Value>
struct Named {
    const char* name;
    Value value;
};

[[noreturn]] void refuseName(const std::string& what, const std::string& text,
                             const std::vector<std::string>& names);

template <typename Value, size_t count>
Value parseName(const std::string& what, const std::string& text,
                const Named<Value> (&names)[count]) {
    std::vector<std::string> known;
    for (const Named<Value>& candidate : names) {
        if (text == candidate.name) {
            return candidate.value;
        }
        known.emplace_back(candidate.name);
    }
    refuseName(what, text, known);
}

std::string hexNumber(uint64_t value, int digits);
/// Without blanks, as JSON has bytes.
std::string hexDigits(const Bytes& bytes);
/// With blanks, as people read bytes.
std::string hexWords(const Bytes& bytes);
/// What an adapter says, as a terminal may have it: control characters become \xNN.
std::string printable(const std::string& text);
std::string join(const std::vector<std::string>& words, const std::string& between);
/// A word that a shell takes for that word.
std::string quoted(const std::string& word);

} // namespace veltra
