// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

namespace virtual_adapter {

/// What tells the two adapters apart. Users call a variant a model.
struct AdapterVariant {
    const char* name;
    /// The length of a HID report in bytes.
    size_t reportSize;
};

inline constexpr AdapterVariant fullSpeedVariant{"full-speed", 64};
inline constexpr AdapterVariant highSpeedVariant{"high-speed", 1024};

} // namespace virtual_adapter
