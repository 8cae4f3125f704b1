// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Hints.hpp"

#include "Words.hpp"

#include <veltrasdk/status.h>

#include <algorithm>

namespace veltra {

namespace {

std::string ofInitialisation(const Operation& operation) {
    if (concerns(operation, "i3c")) {
        return "Initialise it first: veltra -V 1.8 i3c init";
    }
    return concerns(operation, "gpio") ? "Configure it first: veltra gpio mode PIN=in" : "";
}

} // namespace

std::string typedWith(const Options& options, const std::string& inFront,
                      const std::string& behind) {
    std::vector<std::string> words;
    if (!inFront.empty()) {
        words.push_back(inFront);
    }
    for (const std::string& word : options.typed) {
        words.push_back(quoted(word));
    }
    if (!behind.empty()) {
        // What follows -- is of another program.
        words.insert(std::find(words.begin(), words.end(), "--"), behind);
    }
    return options.typedBehind + join(words, " ");
}

std::string hintFor(uint16_t status, const Operation& operation, const Options& options) {
    switch (status) {
    case VeltraStatus_NoVoltage:
        return "Say which your board takes: " +
               typedWith(options, concerns(operation, "i3c") ? "-V 1.8" : "-V 3.3", "");
    case VeltraStatus_NoPullUp:
        return "Switch the adapter's on: " + typedWith(options, "", "--pull-up 4k7");
    case VeltraStatus_BusStuck:
        return "A line is held low; the same again first tries to free it: " +
               typedWith(options, "", "");
    case VeltraStatus_NotInitialised:
        return ofInitialisation(operation);
    default:
        return "";
    }
}

} // namespace veltra
