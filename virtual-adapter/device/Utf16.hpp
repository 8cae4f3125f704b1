// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>

namespace virtual_adapter {

/// The characters of @p text; each byte that belongs to no well-formed UTF-8 sequence becomes
/// U+FFFD.
std::u32string charactersOfUtf8(std::string_view text);

bool isUtf8(std::string_view text);

/// One unit, or a surrogate pair for a character beyond U+FFFF.
std::u16string utf16UnitsOf(char32_t character);

} // namespace virtual_adapter
