// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Words.hpp"

#include <optional>
#include <string>
#include <vector>

namespace veltra {

/// What follows a Common Command Code, as people write it.
enum class CccFields {
    None,        ///< Nothing.
    Read,        ///< A direct read.
    Byte,        ///< One byte.
    Limit,       ///< One number of two bytes.
    LimitAndIbi, ///< A number of two bytes, and perhaps one byte.
    Address,     ///< An address, which travels shifted.
    Any,         ///< Whatever bytes are given.
};

/// One Common Command Code of MIPI I3C.
struct CccName {
    const char* name; ///< As the standard has it, in lower case.
    std::optional<uint8_t> broadcast;
    std::optional<uint8_t> direct;
    CccFields fields;
    uint8_t readBytes; ///< Of a direct read, as many as the standard says it has at most.
};

/// Every code that has a name here.
const std::vector<CccName>& cccNames();

/// A request as it goes to the adapter.
struct CccRequest {
    std::string name; ///< As it was typed.
    uint8_t code;
    std::string target; ///< As it was typed; empty for a broadcast.
    bool isRead;
    uint8_t count; ///< Of a read.
    Bytes data;    ///< Of a write.
    std::optional<uint8_t> definingByte;
};

/// Makes a request of a name or a number, the words behind it, and the two options. Where a code
/// has both forms, one word more than it takes names the target; `all` is every target.
CccRequest parseCcc(const std::string& name, const std::vector<std::string>& words,
                    const std::string& definingByte, const std::string& count);

} // namespace veltra
