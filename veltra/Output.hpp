// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Failure.hpp"
#include "Json.hpp"
#include "Options.hpp"
#include "Words.hpp"

#include <string>

namespace veltra {

/// What the program tells: results on the standard output, for people, as one JSON object a line,
/// or as bare bytes; everything else on the standard error output.
class Output {
public:
    explicit Output(const Options& given);

    /// A result; `text` is printed for people, with a line end behind it unless it is empty.
    void result(const Json& object, const std::string& text);
    /// A result that is bytes; `object` receives them as its member "data".
    void bytes(Json object, const Bytes& data, const std::string& text);
    /// Bytes as they are, for whoever reads them as text.
    void verbatim(const Bytes& data);
    /// What the queue had no room for.
    void lost(uint64_t count);
    /// A line for people that belongs to no result.
    void line(const std::string& text);
    /// What would be sent, where nothing is.
    void rehearse(const std::string& request);
    /// What goes over the wire, where the user wants to know.
    void trace(const std::string& text);
    /// A remark that is no result; silent with -q.
    void remark(const std::string& text);
    /// A number of bytes out of a total, on a terminal only.
    void progress(const std::string& what, size_t done, size_t total);
    void failure(const Failure& failure);

    [[nodiscard]] bool isJson() const { return options->json; }
    /// The bytes of the last result that had any, for whoever compares them.
    Bytes lastBytes;

private:
    void print(const std::string& text);

    const Options* options;
    bool showsProgress;
    bool progressShown = false;
};

/// What goes in front of a failure: nothing, or a place such as a batch's line.
std::string describe(const Failure& failure);

} // namespace veltra
