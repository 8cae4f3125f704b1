// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/ScriptedHid.hpp"

#include <veltrasdk/i3c.h>

#include <iterator>

namespace test_support {

/// A target record in which no two fields look alike.
constexpr I3cTargetInfo sensor{
    0x48, 0x0A, {0x02, 0x46, 0x13, 0x57, 0x9B, 0xDF}, 0x27, 0x63, 0x0100, 0x0280, 0x10, 0x01};

/// A list whose records tell themselves apart by their static addresses.
inline std::vector<I3cTargetInfo> sensors(size_t count) {
    std::vector<I3cTargetInfo> list(count, sensor);
    for (size_t i = 0; i < count; ++i) {
        list[i].staticAddress = static_cast<uint8_t>(i);
    }
    return list;
}

/// Records as they travel.
inline Bytes recordBytes(const std::vector<I3cTargetInfo>& records) {
    Bytes bytes;
    const auto append16 = [&bytes](unsigned value) {
        bytes.push_back(static_cast<uint8_t>(value & 0xFFU));
        bytes.push_back(static_cast<uint8_t>(value >> 8U));
    };
    for (const I3cTargetInfo& record : records) {
        bytes.insert(bytes.end(), {record.staticAddress, record.dynamicAddress});
        bytes.insert(bytes.end(), std::begin(record.pid), std::end(record.pid));
        bytes.insert(bytes.end(), {record.bcr, record.dcr});
        append16(record.maxWriteLength);
        append16(record.maxReadLength);
        bytes.insert(bytes.end(), {record.maxIbiPayloadSize, record.configuration});
    }
    return bytes;
}

} // namespace test_support
