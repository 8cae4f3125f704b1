#pragma once

#include <cstddef>

namespace virtual_adapter {

/// What tells the adapter's two models apart.
struct AdapterModel {
    const char* name;
    /// The length of a HID report in bytes.
    size_t reportSize;
};

inline constexpr AdapterModel fullSpeedModel{"full-speed", 64};
inline constexpr AdapterModel highSpeedModel{"high-speed", 1024};

} // namespace virtual_adapter
