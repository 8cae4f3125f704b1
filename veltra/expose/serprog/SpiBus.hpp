// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace serprog {

using Bytes = std::vector<uint8_t>;

/// The bus on which a client's flash stands. Whatever is refused has no value, and no effect that a
/// client could rely on.
class SpiBus {
public:
    SpiBus() = default;
    virtual ~SpiBus() = default;
    SpiBus(const SpiBus&) = delete;
    SpiBus& operator=(const SpiBus&) = delete;

    /// How many bytes one transfer sends and reads at most, both together.
    static constexpr size_t maxBytes = 0xFFFF;

    /// A client comes: whatever the one before has set is as at the start.
    virtual void begin() = 0;
    /// One assertion of the chip select: sends, then returns as many bytes as asked for.
    virtual std::optional<Bytes> transfer(const Bytes& send, size_t count) = 0;
    /// Sets the fastest clock not above the wish, else the slowest, and returns it in hertz.
    virtual std::optional<uint32_t> setClock(uint32_t hertz) = 0;
    /// The chip select of the transfers that follow; false where there is no such.
    virtual bool select(uint8_t chipSelect) = 0;
};

} // namespace serprog
