// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/spi/SpiBus.hpp"

#include <utility>

namespace virtual_adapter {

void SpiBus::attach(SpiChipSelect chipSelect, std::unique_ptr<SpiTarget> target) {
    targets.at(chipSelect) = std::move(target);
}

Bytes SpiBus::transfer(SpiChipSelect chipSelect, SpiMode mode, SpiChipSelectPolarity polarity,
                       const Bytes& sent) {
    Bytes received(sent.size(), undrivenByte);
    const auto& target = targets.at(chipSelect);
    if (target != nullptr && target->understands(mode, polarity)) {
        received = target->transfer(sent);
    }
    return received;
}

} // namespace virtual_adapter
