// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Failure.hpp"

#include <string>

namespace veltra {

/// What a call refuses its words with; empty when it accepts them.
template <typename Call>
std::string refusal(const Call& call) {
    try {
        (void)call();
        return "";
    } catch (const Failure& failure) {
        return failure.text;
    }
}

} // namespace veltra
