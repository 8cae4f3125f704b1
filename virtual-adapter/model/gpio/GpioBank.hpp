#pragma once

#include <veltrasdk/gpio.h>

#include <array>
#include <cstddef>
#include <optional>

namespace virtual_adapter {

/// The eight pins and the lines they lie on: pins 0 and 1 share a line, pins 2 and 3 share
/// another, and each of the others has its own.
class GpioBank {
public:
    static constexpr size_t pinCount = 8;
    using Levels = std::array<GpioLogicLevel, pinCount>;

    [[nodiscard]] bool isConfigured(GpioPinNumber pin) const;
    [[nodiscard]] bool isOutput(GpioPinNumber pin) const;

    /// @p level is what an output drives from then on; an open-drain output releases a high line.
    void configure(GpioPinNumber pin, GpioFunctionality functionality, GpioLogicLevel level);
    void drive(GpioPinNumber pin, GpioLogicLevel level);

    /// The level of the pin's line: what outputs drive on it, low before high; else what resistors
    /// pull it to, low before high; else low.
    [[nodiscard]] GpioLogicLevel level(GpioPinNumber pin) const;
    [[nodiscard]] Levels levels() const;

private:
    struct Pin {
        std::optional<GpioFunctionality> functionality;
        GpioLogicLevel driven = GpioLogicLevel_Low;
    };

    std::array<Pin, pinCount> pins;
};

} // namespace virtual_adapter
