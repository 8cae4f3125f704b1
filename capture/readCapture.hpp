// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "capture/UsbRecord.hpp"

#include <stdexcept>
#include <vector>

namespace capture {

struct CapturedRecord {
    UsbRecord record;
    virtual_adapter::Bytes data;
};

struct Capture {
    /// In the file's order.
    std::vector<CapturedRecord> records;
    /// Whether the file ends within a block, as that of a killed program does.
    bool isCut = false;
};

/// Says what is wrong with a file, and where.
class InvalidCapture : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

/// The USB records of a file, of link types 189 and 220, in sections of either byte order; other
/// interfaces and blocks are passed over. Throws InvalidCapture.
Capture readCapture(const virtual_adapter::Bytes& file);

} // namespace capture
