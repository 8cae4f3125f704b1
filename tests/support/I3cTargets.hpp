#pragma once

#include "support/ScriptedHid.hpp"

#include <veltrasdk/i3c.h>

#include <cstring>

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

/// Records as they lie in memory.
inline Bytes memoryOf(const std::vector<I3cTargetInfo>& records) {
    Bytes memory(records.size() * sizeof(I3cTargetInfo));
    if (!records.empty()) {
        std::memcpy(memory.data(), records.data(), memory.size());
    }
    return memory;
}

} // namespace test_support
