// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

namespace virtual_adapter {

/// What is wrong with a board's file: lines of "FILE:LINE: what is wrong, what is allowed".
class BoardFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Collects what is wrong with a file, so that its author is told everything at once.
class Problems {
public:
    explicit Problems(std::string fileName) : file(std::move(fileName)) {}

    void add(size_t line, const std::string& problem) {
        if (++found <= maxTold) {
            text += (text.empty() ? "" : "\n") + at(line) + problem;
        }
    }

    [[nodiscard]] size_t count() const { return found; }

    /// Ends the reading, if there is anything to tell.
    void tell() const {
        if (found > maxTold) {
            throw BoardFileError(text + "\n" + file + ": and " + std::to_string(found - maxTold) +
                                 " more");
        }
        if (found > 0) {
            throw BoardFileError(text);
        }
    }

    /// Ends the reading at once.
    [[noreturn]] void fail(size_t line, const std::string& problem) {
        throw BoardFileError(at(line) + problem);
    }

private:
    static constexpr size_t maxTold = 20;

    [[nodiscard]] std::string at(size_t line) const {
        return file + ":" + std::to_string(line) + ": ";
    }

    std::string file;
    std::string text;
    size_t found = 0;
};

} // namespace virtual_adapter
