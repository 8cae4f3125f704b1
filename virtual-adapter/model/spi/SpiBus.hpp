// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/spi/SpiTarget.hpp"

#include <array>
#include <memory>

namespace virtual_adapter {

/// The wires of the SPI bus and the targets behind its chip selects.
class SpiBus {
public:
    void attach(SpiChipSelect chipSelect, std::unique_ptr<SpiTarget> target);

    /// The target behind the chip select, or null.
    [[nodiscard]] SpiTarget* targetAt(SpiChipSelect chipSelect) const {
        return targets.at(chipSelect).get();
    }

    /// What is received while @p sent goes out to the target behind @p chipSelect.
    Bytes transfer(SpiChipSelect chipSelect, SpiMode mode, SpiChipSelectPolarity polarity,
                   const Bytes& sent);

private:
    std::array<std::unique_ptr<SpiTarget>, SpiChipSelect_3 + 1> targets;
};

} // namespace virtual_adapter
