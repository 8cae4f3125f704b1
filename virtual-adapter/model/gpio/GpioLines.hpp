// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <veltrasdk/gpio.h>

#include <array>
#include <cstddef>
#include <optional>

namespace virtual_adapter {

/// The lines that the eight pins lie on: each its own, until pins are joined.
class GpioLines {
public:
    static constexpr size_t pinCount = 8;

    /// Wires two pins together, and with them whatever each is wired to already.
    void join(GpioPinNumber one, GpioPinNumber other);

    /// What the world outside drives on the pin's line; nothing when it lets go.
    void drive(GpioPinNumber pin, std::optional<GpioLogicLevel> level) {
        outside.at(lineOf.at(pin)) = level;
    }
    [[nodiscard]] std::optional<GpioLogicLevel> drivenFromOutside(size_t pin) const {
        return outside.at(lineOf.at(pin));
    }

    [[nodiscard]] bool areJoined(size_t one, size_t other) const {
        return lineOf.at(one) == lineOf.at(other);
    }

private:
    std::array<size_t, pinCount> lineOf{0, 1, 2, 3, 4, 5, 6, 7};
    /// By line.
    std::array<std::optional<GpioLogicLevel>, pinCount> outside;
};

} // namespace virtual_adapter
