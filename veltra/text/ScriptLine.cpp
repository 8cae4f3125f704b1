// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "text/ScriptLine.hpp"

#include "Failure.hpp"
#include "Words.hpp"

#include <algorithm>
#include <cctype>

namespace veltra {

namespace {

bool isOfName(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_';
}

/// Splits one line, letter by letter.
class Splitter {
public:
    Splitter(const std::string& text, const Variables& known) : line(text), variables(known) {}

    std::vector<std::string> split() {
        while (at < line.size() && !(line[at] == '#' && !inWord)) {
            const char letter = line[at++];
            if (letter == ' ' || letter == '\t' || letter == '\r') {
                endWord();
            } else {
                inWord = true;
                take(letter);
            }
        }
        endWord();
        return words;
    }

private:
    void take(char letter) {
        if (letter == '\'') {
            word += upTo('\'');
        } else if (letter == '"') {
            takeQuoted();
        } else if (letter == '$') {
            word += variable();
        } else {
            word += letter == '\\' ? escaped() : letter;
        }
    }

    void takeQuoted() {
        while (at < line.size() && line[at] != '"') {
            const char letter = line[at++];
            if (letter == '$') {
                word += variable();
            } else {
                word += letter == '\\' ? escaped() : letter;
            }
        }
        if (at++ >= line.size()) {
            throw Failure::ofUsage("a \" is missing at the end");
        }
    }

    char escaped() {
        if (at >= line.size()) {
            throw Failure::ofUsage("nothing is behind the \\ at the end");
        }
        return line[at++];
    }

    std::string upTo(char end) {
        const size_t found = line.find(end, at);
        if (found == std::string::npos) {
            throw Failure::ofUsage(std::string("a ") + end + " is missing at the end");
        }
        const std::string text = line.substr(at, found - at);
        at = found + 1;
        return text;
    }

    std::string variable() {
        std::string name;
        if (at < line.size() && line[at] == '{') {
            ++at;
            name = upTo('}');
        } else {
            const auto begin = line.begin() + static_cast<ptrdiff_t>(at);
            const auto end = std::find_if_not(begin, line.end(), isOfName);
            name.assign(begin, end);
            at += name.size();
        }
        const auto found = variables.find(name);
        if (found == variables.end()) {
            throw Failure::ofUsage("'" + name + "' has not been set: set " +
                                   (name.empty() ? "NAME" : name) + "=VALUE");
        }
        return found->second;
    }

    void endWord() {
        if (inWord) {
            words.push_back(word);
            word.clear();
            inWord = false;
        }
    }

    const std::string& line;
    const Variables& variables;
    size_t at = 0;
    bool inWord = false;
    std::string word;
    std::vector<std::string> words;
};

/// The pattern's pairs; a wildcard is kept as it is.
std::vector<std::string> pairsOf(const std::string& pattern) {
    std::vector<std::string> pairs;
    std::string digits;
    for (const char letter : pattern) {
        if (letter != ' ') {
            digits += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
        }
    }
    for (size_t at = 0; at < digits.size(); at += 2) {
        pairs.push_back(digits.substr(at, 2));
        if (pairs.back() != "??") {
            parseHex(pairs.back());
        }
    }
    return pairs;
}

} // namespace

std::vector<std::string> splitLine(const std::string& line, const Variables& variables) {
    return Splitter(line, variables).split();
}

std::string differenceOf(const std::string& pattern, const std::vector<unsigned char>& bytes) {
    const std::vector<std::string> expected = pairsOf(pattern);
    std::vector<std::string> read;
    for (const unsigned char byte : bytes) {
        read.push_back(hexDigits({byte}));
    }
    const auto fits = [](const std::string& wanted, const std::string& seen) {
        return wanted == "??" || wanted == seen;
    };
    const auto [wanted, seen] =
        std::mismatch(expected.begin(), expected.end(), read.begin(), read.end(), fits);
    if (wanted == expected.end() && seen == read.end()) {
        return "";
    }
    std::string what;
    if (wanted != expected.end() && seen != read.end()) {
        what = "byte " + std::to_string(wanted - expected.begin()) + " is " + *seen +
               " and should be " + *wanted;
    } else {
        what = "the lengths differ: " + std::to_string(expected.size()) + " expected, " +
               std::to_string(read.size()) + " read";
    }
    return what + "\n  expected: " + join(expected, " ") + "\n  read:     " + join(read, " ");
}

} // namespace veltra
