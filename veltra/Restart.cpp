// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Restart.hpp"

#include "Words.hpp"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace veltra {

namespace {

/// Each followed by a blank, quoted where a shell needs it.
const char* const wordsVariable = "VELTRA_TYPED_WORDS";

std::string remembered() {
    const char* const words = std::getenv(wordsVariable);
    return words == nullptr ? "" : words;
}

} // namespace

std::string thisProgram() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

std::vector<std::string> withoutOption(const std::vector<std::string>& words,
                                       const std::string& option, bool hasValue) {
    std::vector<std::string> others;
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (*word == "--") {
            others.insert(others.end(), word, words.end());
            break;
        }
        if (*word == option) {
            word += hasValue && word + 1 != words.end() ? 1 : 0;
        } else if (word->rfind(option + "=", 0) != 0) {
            others.push_back(*word);
        }
    }
    return others;
}

void rememberTyped(const std::vector<std::string>& words) {
    std::string all = remembered();
    for (const std::string& word : words) {
        all += quoted(word) + " ";
    }
    setenv(wordsVariable, all.c_str(), 1);
}

void forgetTyped() {
    unsetenv(wordsVariable);
}

std::string typedBefore() {
    return "veltra " + remembered();
}

} // namespace veltra
