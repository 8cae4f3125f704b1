// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// A message to be sent: a short head, and data that stays where it is, so that nobody copies it to
/// put a few bytes before it.
// Written field by field: clearing the head would cost every operation.
struct Message { // NOLINT(cppcoreguidelines-pro-type-member-init)
    /// Less than every report holds.
    static constexpr size_t maxHeadSize = 16;

    [[nodiscard]] size_t size() const { return headSize + dataSize; }

    // Only the first headSize bytes have a value.
    std::array<uint8_t, maxHeadSize> head;
    size_t headSize = 0;
    const uint8_t* data = nullptr;
    size_t dataSize = 0;
};
