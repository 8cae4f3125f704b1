// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/Utf16.hpp"

#include <cstddef>
#include <optional>

namespace virtual_adapter {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;
constexpr char32_t lastCharacter = 0x10FFFF;

struct Sequence {
    size_t length;
    char32_t leadBits;
    /// Anything smaller has a shorter sequence, which is the only one allowed.
    char32_t smallest;
};

Sequence sequenceStartedBy(unsigned char lead) {
    if (lead < 0x80) {
        return {1, lead, 0};
    }
    if ((lead & 0xE0U) == 0xC0) {
        return {2, lead & 0x1FU, 0x80};
    }
    if ((lead & 0xF0U) == 0xE0) {
        return {3, lead & 0x0FU, 0x800};
    }
    if ((lead & 0xF8U) == 0xF0) {
        return {4, lead & 0x07U, 0x10000};
    }
    return {0, 0, 0};
}

bool isSurrogate(char32_t character) {
    return character >= 0xD800 && character <= 0xDFFF;
}

/// Takes the first character off @p text, or its first byte and nothing when no well-formed
/// sequence starts there.
std::optional<char32_t> takeCharacter(std::string_view& text) {
    const Sequence sequence = sequenceStartedBy(static_cast<unsigned char>(text.front()));
    char32_t character = sequence.leadBits;
    bool wellFormed = sequence.length != 0 && sequence.length <= text.size();
    for (size_t i = 1; wellFormed && i < sequence.length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        wellFormed = (byte & 0xC0U) == 0x80;
        character = character << 6U | (byte & 0x3FU);
    }
    wellFormed = wellFormed && character >= sequence.smallest && character <= lastCharacter &&
                 !isSurrogate(character);
    text.remove_prefix(wellFormed ? sequence.length : 1);
    return wellFormed ? std::optional(character) : std::nullopt;
}

} // namespace

std::u32string charactersOfUtf8(std::string_view text) {
    std::u32string characters;
    while (!text.empty()) {
        characters.push_back(takeCharacter(text).value_or(replacementCharacter));
    }
    return characters;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        if (!takeCharacter(text)) {
            return false;
        }
    }
    return true;
}

std::u16string utf16UnitsOf(char32_t character) {
    if (character <= 0xFFFF) {
        return {static_cast<char16_t>(character)};
    }
    const char32_t offset = character - 0x10000;
    return {static_cast<char16_t>(0xD800 + (offset >> 10U)),
            static_cast<char16_t>(0xDC00 + (offset & 0x3FFU))};
}

} // namespace virtual_adapter
