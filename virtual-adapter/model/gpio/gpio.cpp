// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/gpio/gpio.hpp"

#include "model/checks.hpp"

namespace virtual_adapter {

namespace {

GpioPinNumber readPin(ByteReader& request) {
    return static_cast<GpioPinNumber>(request.u8());
}

bool isPin(GpioPinNumber pin) {
    return within(pin, GpioPinNumber_0, GpioPinNumber_7);
}

bool isLevel(GpioLogicLevel level) {
    return within(level, GpioLogicLevel_Low, GpioLogicLevel_High);
}

bool firesOnChange(GpioTriggerType trigger, GpioLogicLevel reached) {
    switch (trigger) {
    case GpioTriggerType_RisingEdge:
    case GpioTriggerType_HighLevel:
        return reached == GpioLogicLevel_High;
    case GpioTriggerType_FallingEdge:
    case GpioTriggerType_LowLevel:
        return reached == GpioLogicLevel_Low;
    case GpioTriggerType_BothEdges:
        break;
    }
    return true;
}

bool firesOnArming(GpioTriggerType trigger, GpioLogicLevel present) {
    return (trigger == GpioTriggerType_HighLevel && present == GpioLogicLevel_High) ||
           (trigger == GpioTriggerType_LowLevel && present == GpioLogicLevel_Low);
}

} // namespace

Answer Gpio::configurePin(ByteReader& request) {
    const GpioPinNumber pin = readPin(request);
    const auto functionality = static_cast<GpioFunctionality>(request.u8());
    // Only a push-pull output takes a level along; an open-drain output starts released.
    const auto level = functionality == GpioFunctionality_Output
                           ? static_cast<GpioLogicLevel>(request.u8())
                           : GpioLogicLevel_High;
    const Status status = voltage.check(request, isPin(pin) && isLevel(level) &&
                                                     within(functionality, GpioFunctionality_Input,
                                                            GpioFunctionality_OpenDrainOutput));
    if (status == Status::Success) {
        const GpioBank::Levels before = bank.levels();
        bank.configure(pin, functionality, level);
        sendInterrupts(before);
    }
    return status;
}

Answer Gpio::digitalWrite(ByteReader& request) {
    const GpioPinNumber pin = readPin(request);
    const auto level = static_cast<GpioLogicLevel>(request.u8());
    const Status status = voltage.check(request, isPin(pin) && isLevel(level));
    if (status != Status::Success) {
        return status;
    }
    if (!bank.isConfigured(pin)) {
        return Status::NotInitialised;
    }
    if (!bank.isOutput(pin)) {
        return Status::InvalidParameter;
    }
    const GpioBank::Levels before = bank.levels();
    bank.drive(pin, level);
    sendInterrupts(before);
    return Status::Success;
}

Answer Gpio::digitalRead(ByteReader& request) {
    const GpioPinNumber pin = readPin(request);
    const Status status = voltage.check(request, isPin(pin));
    if (status != Status::Success) {
        return status;
    }
    if (!bank.isConfigured(pin)) {
        return Status::NotInitialised;
    }
    return {Status::Success, ByteWriter().u8(bank.level(pin))};
}

Answer Gpio::configureInterrupt(ByteReader& request) {
    const GpioPinNumber pin = readPin(request);
    const auto trigger = static_cast<GpioTriggerType>(request.u8());
    const Status status =
        voltage.check(request, isPin(pin) && within(trigger, GpioTriggerType_RisingEdge,
                                                    GpioTriggerType_HighLevel));
    if (status != Status::Success) {
        return status;
    }
    if (!bank.isConfigured(pin)) {
        return Status::NotInitialised;
    }
    triggers.at(pin) = trigger;
    if (firesOnArming(trigger, bank.level(pin))) {
        sendInterrupt(pin);
    }
    return Status::Success;
}

Answer Gpio::disableInterrupt(ByteReader& request) {
    const GpioPinNumber pin = readPin(request);
    const Status status = voltage.check(request, isPin(pin));
    if (status != Status::Success) {
        return status;
    }
    if (!bank.isConfigured(pin)) {
        return Status::NotInitialised;
    }
    triggers.at(pin).reset();
    return Status::Success;
}

void Gpio::driveLine(GpioPinNumber pin, std::optional<GpioLogicLevel> level) {
    const GpioBank::Levels before = bank.levels();
    lines.drive(pin, level);
    // Pins without a voltage see nothing.
    if (voltage.isOn()) {
        sendInterrupts(before);
    }
}

void Gpio::sendInterrupts(const GpioBank::Levels& before) {
    const GpioBank::Levels after = bank.levels();
    for (size_t pin = 0; pin < after.size(); ++pin) {
        const auto& trigger = triggers.at(pin);
        if (trigger && after.at(pin) != before.at(pin) && firesOnChange(*trigger, after.at(pin))) {
            sendInterrupt(pin);
        }
    }
}

void Gpio::sendInterrupt(size_t pin) {
    outbox.notify(CommandCode::GpioNotification, ByteWriter().u8(static_cast<uint8_t>(pin)));
}

} // namespace virtual_adapter
