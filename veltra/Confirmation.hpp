// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Options.hpp"

#include <string>

namespace veltra {

/// Asks before what cannot be undone; without a terminal to ask at, or without a yes, a Failure.
void confirm(const Options& options, const std::string& consequence);

} // namespace veltra
