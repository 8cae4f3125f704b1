// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/spi/SpiTarget.hpp"

namespace virtual_adapter {

/// A wire from the controller's output to its input.
class SpiLoopback : public SpiTarget {
public:
    [[nodiscard]] bool understands(SpiMode /*mode*/,
                                   SpiChipSelectPolarity /*polarity*/) const override {
        return true;
    }
    Bytes transfer(const Bytes& sent) override { return sent; }
};

} // namespace virtual_adapter
