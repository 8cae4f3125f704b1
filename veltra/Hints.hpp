// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Failure.hpp"
#include "Options.hpp"

#include <string>

namespace veltra {

/// What to type after a status, as far as anybody can know; empty otherwise.
std::string hintFor(uint16_t status, const Operation& operation, const Options& options);

/// The command as it was typed, with more options in front of it and words behind it.
std::string typedWith(const Options& options, const std::string& inFront,
                      const std::string& behind);

} // namespace veltra
