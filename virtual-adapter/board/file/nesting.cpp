// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/nesting.hpp"

#include <algorithm>

namespace virtual_adapter {

namespace {

constexpr size_t maxBrackets = 16;
constexpr size_t maxDots = 16;

/// The length of the string that the text begins with, quotes and all. One that does not end
/// reaches to the end of its line, or of the text: the parser goes no further either.
size_t lengthOfString(std::string_view text) {
    const char quote = text.front();
    const bool severalLines = text.size() >= 3 && text[1] == quote && text[2] == quote;
    const size_t quotes = severalLines ? 3 : 1;
    for (size_t i = quotes; i < text.size(); ++i) {
        if (text[i] == '\\' && quote == '"') {
            ++i;
        } else if (text[i] == '\n' && !severalLines) {
            return i;
        } else if (text[i] == quote &&
                   (!severalLines || text.substr(i, quotes) == text.substr(0, quotes))) {
            return i + quotes;
        }
    }
    return text.size();
}

} // namespace

std::optional<size_t> lineOfDeepNesting(std::string_view text) {
    size_t line = 1;
    size_t brackets = 0;
    size_t dots = 0;
    for (size_t i = 0; i < text.size();) {
        size_t length = 1;
        switch (text[i]) {
        case '"':
        case '\'':
            length = lengthOfString(text.substr(i));
            break;
        case '#':
            length = std::min(text.find('\n', i), text.size()) - i;
            break;
        case '[':
        case '{':
            ++brackets;
            dots = 0;
            break;
        case ']':
        case '}':
            brackets -= brackets > 0 ? 1 : 0;
            break;
        case '.':
            ++dots;
            break;
        case '\n':
        case ',':
        case '=':
            dots = 0;
            break;
        default:
            break;
        }
        if (brackets > maxBrackets || dots > maxDots) {
            return line;
        }
        const std::string_view passed = text.substr(i, length);
        line += static_cast<size_t>(std::count(passed.begin(), passed.end(), '\n'));
        i += length;
    }
    return std::nullopt;
}

} // namespace virtual_adapter
