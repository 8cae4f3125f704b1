// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/utf8.hpp"

#include <codecvt>
#include <locale>

std::string utf8(const wchar_t* text) {
    // The default facet has 0x10FFFF as its largest code point and knows no byte-order mark.
    std::wstring_convert<std::codecvt_utf8<wchar_t>> converter;
    return converter.to_bytes(text);
}
