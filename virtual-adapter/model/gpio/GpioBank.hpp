// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/gpio/GpioLines.hpp"

#include <array>
#include <cstddef>
#include <optional>

namespace virtual_adapter {

/// The eight pins and what they do to the lines that they lie on.
class GpioBank {
public:
    static constexpr size_t pinCount = GpioLines::pinCount;
    using Levels = std::array<GpioLogicLevel, pinCount>;

    explicit GpioBank(const GpioLines& wiring) : lines(wiring) {}

    [[nodiscard]] bool isConfigured(GpioPinNumber pin) const;
    [[nodiscard]] bool isOutput(GpioPinNumber pin) const;

    /// @p level is what an output drives from then on; an open-drain output releases a high line.
    void configure(GpioPinNumber pin, GpioFunctionality functionality, GpioLogicLevel level);
    void drive(GpioPinNumber pin, GpioLogicLevel level);

    /// The level of the pin's line: what outputs and the world outside drive on it, low before
    /// high; else what resistors pull it to, low before high; else low.
    [[nodiscard]] GpioLogicLevel level(GpioPinNumber pin) const;
    [[nodiscard]] Levels levels() const;

private:
    struct Pin {
        std::optional<GpioFunctionality> functionality;
        GpioLogicLevel driven = GpioLogicLevel_Low;
    };

    const GpioLines& lines;
    std::array<Pin, pinCount> pins;
};

} // namespace virtual_adapter
