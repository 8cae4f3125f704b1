// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Words.hpp"

#include <string>

namespace veltra {

/// The 7-bit addresses that a scan asks, 16 a line, as i2cdetect shows them.
std::string addressGrid(const Bytes& found);

} // namespace veltra
