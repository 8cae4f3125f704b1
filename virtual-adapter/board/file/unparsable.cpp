// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/unparsable.hpp"

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
            // Those of several lines may end with quotes of their own.
            const size_t end = text.find_first_not_of(quote, i + quotes);
            return std::min({i + quotes + (severalLines ? 2 : 0), end, text.size()});
        }
    }
    return text.size();
}

/// Whether a string may begin behind this character: a value, or a key.
bool mayPrecedeString(char character) {
    return std::string_view("\n=[,{.").find(character) != std::string_view::npos;
}

bool isBeyondAscii(char byte) {
    return static_cast<unsigned char>(byte) >= 0x80;
}

/// Whether a letter beyond ASCII stands where the parser looks for the end of white space: behind a
/// backslash at the end of a line.
bool continuesBeyondAscii(std::string_view string) {
    if (string.substr(0, 3) != "\"\"\"") {
        return false;
    }
    for (size_t i = string.find('\\'); i < string.size(); i = string.find('\\', i + 2)) {
        const size_t next = string.find_first_not_of(" \t\r\n", i + 1);
        if (next < string.size() && isBeyondAscii(string[next])) {
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<Unparsable> findUnparsable(std::string_view text) {
    const std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark) {
        text.remove_prefix(byteOrderMark.size());
    }
    size_t line = 1;
    size_t brackets = 0;
    size_t dots = 0;
    char previous = '\n';
    for (size_t i = 0; i < text.size();) {
        size_t length = 1;
        switch (text[i]) {
        case '"':
        case '\'':
            if (!mayPrecedeString(previous)) {
                return Unparsable{line, "no text begins here"};
            }
            length = lengthOfString(text.substr(i));
            if (continuesBeyondAscii(text.substr(i, length))) {
                return Unparsable{line,
                                  "a text does not go on behind a backslash with this letter"};
            }
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
            if (isBeyondAscii(text[i])) {
                return Unparsable{line, "letters beyond ASCII stand in texts and comments only"};
            }
            break;
        }
        if (brackets > maxBrackets || dots > maxDots) {
            return Unparsable{line, "this nests deeper than a board does"};
        }
        const std::string_view passed = text.substr(i, length);
        if (passed.front() != ' ' && passed.front() != '\t' && passed.front() != '#') {
            previous = passed.back();
        }
        line += static_cast<size_t>(std::count(passed.begin(), passed.end(), '\n'));
        i += length;
    }
    return std::nullopt;
}

} // namespace virtual_adapter
