// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/spi/SpiTarget.hpp"

#include <cstddef>

namespace virtual_adapter {

/// A NOR flash of 256 KiB: bytes are programmed in pages of 256, which clears bits only, and
/// erased in sectors of 4 KiB. A command is carried out when the chip select is released.
class SpiFlash : public SpiTarget {
public:
    /// How often the flash is found busy after a program or an erase. The model has no clock: each
    /// status byte read and each command ignored stands for a part of the busy time.
    static constexpr unsigned pollsUntilReady = 2;

    SpiFlash();

    /// Modes 0 and 3, chip select active low.
    [[nodiscard]] bool understands(SpiMode mode, SpiChipSelectPolarity polarity) const override;
    Bytes transfer(const Bytes& sent) override;

private:
    uint8_t readStatus();
    void pageProgram(const Bytes& sent);
    void sectorErase(const Bytes& sent);
    void beginBusy();
    void poll();

    Bytes memory;
    bool writeEnabled = false;
    unsigned pollsLeft = 0;
};

} // namespace virtual_adapter
