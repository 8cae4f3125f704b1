// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

namespace veltra {

// What commands need that start this very program again, with other words.

/// Where this program lies.
std::string thisProgram();

/// The words without an option and its value, which is the next word unless it stands behind =.
/// Behind -- words are somebody else's.
std::vector<std::string> withoutOption(const std::vector<std::string>& words,
                                       const std::string& option, bool hasValue);

/// Keeps words that the program which is started loses, for its hints.
void rememberTyped(const std::vector<std::string>& words);

/// Of a program that somebody else has named.
void forgetTyped();

/// What stands in front of a hint's words because of that: "veltra --virtual ".
std::string typedBefore();

} // namespace veltra
