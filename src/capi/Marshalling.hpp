// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// The most bytes that a C caller may give as a register or sub-address.
constexpr uint8_t maxSubAddressSize = 4;

/// Whether an input buffer is announced but not given.
inline bool isMissing(const void* buffer, size_t count) {
    return buffer == nullptr && count != 0;
}

inline bool isSubAddress(const uint8_t* bytes, uint8_t count) {
    return count <= maxSubAddressSize && !isMissing(bytes, count);
}

/// Copies an input buffer and returns the copy; the pointer of an empty one is not used.
std::vector<uint8_t>& copyIn(std::vector<uint8_t>& copy, const uint8_t* bytes, size_t count);

/// Copies a result into the caller's buffer, whose capacity is the caller's business.
inline void copyOut(const std::vector<uint8_t>& bytes, uint8_t* buffer) {
    std::copy(bytes.begin(), bytes.end(), buffer);
}

inline std::optional<uint8_t> optionalByte(bool present, uint8_t value) {
    return present ? std::optional<uint8_t>(value) : std::nullopt;
}
