#pragma once

#include "model/Frame.hpp"

#include <cstddef>

namespace virtual_adapter {

/// Reads a request's payload from front to back. A read past the end yields zero and is
/// remembered, so that a handler reads all its fields first and asks `consumedExactly` once.
class PayloadReader {
public:
    PayloadReader(const Frame& request, size_t offset) : frame(request), position(offset) {}

    uint8_t u8();
    /// Little-endian.
    uint16_t u16();
    /// Little-endian.
    uint32_t u32();
    Bytes bytes(size_t count);
    /// Everything not read yet.
    Bytes rest();

    /// Whether every read lay inside the payload and nothing of it is left.
    [[nodiscard]] bool consumedExactly() const { return !overrun && position == frame.size(); }

private:
    [[nodiscard]] size_t remaining() const;

    const Frame& frame;
    size_t position;
    bool overrun = false;
};

} // namespace virtual_adapter
