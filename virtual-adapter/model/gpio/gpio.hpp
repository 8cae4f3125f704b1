// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Outbox.hpp"
#include "model/gpio/GpioBank.hpp"
#include "model/system/voltage.hpp"

#include <array>
#include <optional>

namespace virtual_adapter {

/// The commands of the GPIO pins, and their interrupts.
class Gpio {
public:
    /// The lines must outlive the pins.
    Gpio(const IoVoltage& ioVoltage, GpioLines& wiring, Outbox& toHost)
        : voltage(ioVoltage), outbox(toHost), lines(wiring), bank(wiring) {}

    Answer configurePin(ByteReader& request);
    Answer digitalWrite(ByteReader& request);
    Answer digitalRead(ByteReader& request);
    Answer configureInterrupt(ByteReader& request);
    Answer disableInterrupt(ByteReader& request);

    /// The world outside drives the line of a pin, or lets go of it.
    void driveLine(GpioPinNumber pin, std::optional<GpioLogicLevel> level);

private:
    /// Sends the interrupts of the armed pins whose levels have changed since @p before.
    void sendInterrupts(const GpioBank::Levels& before);
    void sendInterrupt(size_t pin);

    const IoVoltage& voltage;
    Outbox& outbox;
    GpioLines& lines;
    GpioBank bank;
    /// Empty for a pin that is not armed.
    std::array<std::optional<GpioTriggerType>, GpioBank::pinCount> triggers;
};

} // namespace virtual_adapter
