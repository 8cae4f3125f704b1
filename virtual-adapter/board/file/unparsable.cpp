// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/unparsable.hpp"

#include <algorithm>
#include <string>

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

/// Where the check is: whether a key or a value may begin there. Anywhere else the parser takes for
/// letters of a bare value what looks like a text, a list or an assignment.
class Place {
public:
    [[nodiscard]] bool takesText() const {
        return isBehind("\n=[,{") || (isInKey && isBehind("."));
    }
    [[nodiscard]] bool takesBracket() const { return isBehind("\n=[,"); }
    [[nodiscard]] bool takesValue() const { return isInKey; }
    [[nodiscard]] size_t depth() const { return open.size(); }

    /// Goes on behind a character that is no part of a text or a comment.
    void pass(char character) {
        switch (character) {
        case '[':
            // A heading holds a key.
            open += isInKey && (open.empty() || open.back() == heading) ? heading : character;
            isInKey = open.back() == heading;
            break;
        case '{':
            open += character;
            isInKey = true;
            break;
        case ']':
        case '}':
            open.resize(open.size() - (open.empty() ? 0 : 1));
            isInKey = false;
            break;
        case '=':
            isInKey = false;
            break;
        case ',':
            isInKey = !open.empty() && open.back() == '{';
            break;
        case '\n':
            isInKey = open.empty() || open.back() == '{';
            break;
        default:
            break;
        }
        previous = character;
    }

    void passText() { previous = '"'; }

private:
    [[nodiscard]] bool isBehind(std::string_view characters) const {
        return characters.find(previous) != std::string_view::npos;
    }

    static constexpr char heading = 'h';

    std::string open;
    bool isInKey = true;
    /// The last one that is neither white space within a line nor of a comment.
    char previous = '\n';
};

bool isBeyondAscii(char byte) {
    return static_cast<unsigned char>(byte) >= 0x80;
}

/// Whether a letter beyond ASCII stands where the parser looks for the end of white space: behind a
/// backslash at the end of a line.
bool continuesBeyondAscii(std::string_view string) {
    if (string.substr(0, 3) != R"(""")") {
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
    size_t dots = 0;
    Place place;
    for (size_t i = 0; i < text.size();) {
        size_t length = 1;
        switch (text[i]) {
        case '"':
        case '\'':
            if (!place.takesText()) {
                return Unparsable{line, "no text begins here"};
            }
            length = lengthOfString(text.substr(i));
            if (continuesBeyondAscii(text.substr(i, length))) {
                return Unparsable{line,
                                  "a text does not go on behind a backslash with this letter"};
            }
            place.passText();
            break;
        case '#':
            length = std::min(text.find('\n', i), text.size()) - i;
            break;
        case ' ':
        case '\t':
            break;
        case '[':
        case '{':
            if (!place.takesBracket()) {
                return Unparsable{line, "no list and no table begins here"};
            }
            dots = 0;
            place.pass(text[i]);
            break;
        case '=':
            if (!place.takesValue()) {
                return Unparsable{line, "no value begins here"};
            }
            dots = 0;
            place.pass(text[i]);
            break;
        case '\n':
        case ',':
            dots = 0;
            place.pass(text[i]);
            break;
        default:
            if (isBeyondAscii(text[i])) {
                return Unparsable{line, "letters beyond ASCII stand in texts and comments only"};
            }
            dots += text[i] == '.' ? 1U : 0U;
            place.pass(text[i]);
            break;
        }
        if (place.depth() > maxBrackets || dots > maxDots) {
            return Unparsable{line, "this nests deeper than a board does"};
        }
        const std::string_view passed = text.substr(i, length);
        line += static_cast<size_t>(std::count(passed.begin(), passed.end(), '\n'));
        i += length;
    }
    return std::nullopt;
}

} // namespace virtual_adapter
