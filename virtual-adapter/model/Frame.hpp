#pragma once

#include <cstdint>
#include <vector>

namespace virtual_adapter {

/// A whole message between host and adapter, header included.
using Frame = std::vector<uint8_t>;

using Bytes = std::vector<uint8_t>;

} // namespace virtual_adapter
