// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "model/Settable.hpp"

#include <veltrasdk/spi.h>

namespace virtual_adapter {

/// A device behind one of the SPI chip selects.
class SpiTarget : public Settable {
public:
    /// Whether the target understands such signals; if not, it takes no notice of a transfer.
    [[nodiscard]] virtual bool understands(SpiMode mode, SpiChipSelectPolarity polarity) const = 0;

    /// One transfer, from asserting the chip select to releasing it. Returns as many bytes as were
    /// @p sent: what the target drives while it receives them.
    virtual Bytes transfer(const Bytes& sent) = 0;
};

/// What is received while no target drives the line, which floats high.
constexpr uint8_t undrivenByte = 0xFF;

} // namespace virtual_adapter
