// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace virtual_adapter {

// Numbers and bytes as users write them, on command lines, in stimuli and in board files. Nothing
// is guessed and nothing cut: what is not wholly such a word is none.

/// `255`, `0xFF` or `0b11111111`. A leading 0 without x or b is refused: it might mean octal.
std::optional<uint64_t> numberOf(std::string_view word);

/// `25`, `-10.5`: digits, with a decimal point between some of them.
std::optional<double> decimalOf(std::string_view word);

/// `true` or `false`.
std::optional<bool> flagOf(std::string_view word);

/// `hex:0011ff` (an even number of digits), `str:text`, or a number from 0 to 255 as one byte.
std::optional<Bytes> bytesOf(std::string_view word);

/// `0011ff`.
std::optional<Bytes> bytesOfHex(std::string_view digits);
/// In lower case.
std::string hexOf(const Bytes& bytes);

/// `0x2A`: upper case, at least two digits.
std::string hexNumber(uint64_t number);

} // namespace virtual_adapter
