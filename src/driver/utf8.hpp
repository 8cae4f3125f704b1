// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

/// A text of hidapi's in UTF-8. Throws std::range_error for a code point that UTF-8 cannot hold.
std::string utf8(const wchar_t* text);
