// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/ScriptedHid.hpp"

#include <string>

namespace test_support {

/// A Common Command Code as one request packet with transaction identifier 1.
struct CccFrame {
    std::string name;
    Bytes packet;
};

/// Every Common Command Code that the library sends, in each of its forms and in the order of their
/// codes. Direct codes address target 0xFF and events have bits that the standard reserves, for the
/// library sends unchecked what it is given; no argument equals another of its call, so that none
/// can stand in the other's place. Broadcasts address 0x7E.
extern const std::vector<CccFrame> cccFrames;

} // namespace test_support
