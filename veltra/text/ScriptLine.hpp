// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <map>
#include <string>
#include <vector>

namespace veltra {

using Variables = std::map<std::string, std::string>;

/// The words of a script's line, as a shell would split it: blanks between them, 'as it is',
/// "with $NAME", \ in front of a letter that would mean something else, # for the rest of the
/// line. Nothing else of a shell.
std::vector<std::string> splitLine(const std::string& line, const Variables& variables);

/// Compares bytes with pairs of hexadecimal digits, ?? for any byte; empty when they are equal,
/// else what differs and both, one above the other.
std::string differenceOf(const std::string& pattern, const std::vector<unsigned char>& bytes);

} // namespace veltra
