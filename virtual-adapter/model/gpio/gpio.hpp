#pragma once

#include "model/Outbox.hpp"
#include "model/gpio/GpioBank.hpp"
#include "model/system/voltage.hpp"

#include <array>
#include <optional>

namespace virtual_adapter {

/// The commands of the GPIO pins, and their interrupts.
class Gpio {
public:
    Gpio(const IoVoltage& ioVoltage, Outbox& toHost) : voltage(ioVoltage), notifications(toHost) {}

    void registerCommands(Dispatcher& dispatcher);

private:
    Answer configurePin(ByteReader& request);
    Answer digitalWrite(ByteReader& request);
    Answer digitalRead(ByteReader& request);
    Answer configureInterrupt(ByteReader& request);
    Answer disableInterrupt(ByteReader& request);

    /// Sends the interrupts of the armed pins whose levels have changed since @p before.
    void sendInterrupts(const GpioBank::Levels& before);
    void sendInterrupt(size_t pin);

    const IoVoltage& voltage;
    Outbox& notifications;
    GpioBank bank;
    /// Empty for a pin that is not armed.
    std::array<std::optional<GpioTriggerType>, GpioBank::pinCount> triggers;
};

} // namespace virtual_adapter
