// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "buses/Gpio.hpp"

namespace veltra {

namespace {

struct Mode {
    GpioFunctionality functionality;
    GpioLogicLevel level;
};

const Named<Mode> modes[] = {
    {"in", {GpioFunctionality_Input, GpioLogicLevel_Low}},
    {"in-up", {GpioFunctionality_InputPullUp, GpioLogicLevel_Low}},
    {"in-down", {GpioFunctionality_InputPullDown, GpioLogicLevel_Low}},
    {"out", {GpioFunctionality_Output, GpioLogicLevel_Low}},
    {"out-high", {GpioFunctionality_Output, GpioLogicLevel_High}},
    {"od", {GpioFunctionality_OpenDrainOutput, GpioLogicLevel_High}},
};

const Named<GpioTriggerType> triggers[] = {
    {"rising", GpioTriggerType_RisingEdge}, {"falling", GpioTriggerType_FallingEdge},
    {"both", GpioTriggerType_BothEdges},    {"low", GpioTriggerType_LowLevel},
    {"high", GpioTriggerType_HighLevel},
};

const Named<GpioLogicLevel> levels[] = {
    {"0", GpioLogicLevel_Low},
    {"1", GpioLogicLevel_High},
};

GpioPinNumber numberOf(uint8_t pin) {
    return static_cast<GpioPinNumber>(pin);
}

std::string nameOf(uint8_t pin) {
    return "gpio pin " + std::to_string(pin);
}

std::string noInterruptOf(uint8_t pin) {
    return nameOf(pin) + ": no interrupt";
}

Session::Call disarming(uint8_t pin) {
    return [pin](VeltraSDK& sdk) { return sdk.gpioDisableInterrupt(numberOf(pin)); };
}

} // namespace

Gpio::Gpio(Session& over) : session(over) {
    session.supplyPins();
}

uint8_t Gpio::parsePin(const std::string& text) {
    return static_cast<uint8_t>(parseNumber("pin", text, 0, pinCount - 1));
}

GpioLogicLevel Gpio::parseLevel(const std::string& text) {
    return parseName("level", text, levels);
}

void Gpio::configure(uint8_t pin, const std::string& mode) {
    const Mode wanted = parseName("mode", mode, modes);
    session.perform(nameOf(pin) + ": " + mode, [&](VeltraSDK& sdk) {
        return sdk.gpioConfigurePin(numberOf(pin), wanted.functionality, wanted.level);
    });
}

uint16_t Gpio::attemptRead(uint8_t pin, GpioLogicLevel& level) {
    return session.attempt(nameOf(pin) + ": read", [&](VeltraSDK& sdk) {
        return sdk.gpioDigitalRead(numberOf(pin), level);
    });
}

GpioLogicLevel Gpio::read(uint8_t pin) {
    GpioLogicLevel level = GpioLogicLevel_Low;
    uint16_t result = attemptRead(pin, level);
    if (result == VeltraStatus_NotInitialised) {
        configure(pin, "in");
        result = attemptRead(pin, level);
    }
    if (result != ResultCode_Success) {
        throw session.failureOf(result);
    }
    return level;
}

std::optional<GpioLogicLevel> Gpio::look(uint8_t pin) {
    GpioLogicLevel level = GpioLogicLevel_Low;
    const uint16_t result = attemptRead(pin, level);
    if (result == VeltraStatus_NotInitialised) {
        return std::nullopt;
    }
    if (result != ResultCode_Success) {
        throw session.failureOf(result);
    }
    return level;
}

void Gpio::write(uint8_t pin, GpioLogicLevel level) {
    const std::string value = level == GpioLogicLevel_High ? "1" : "0";
    const uint16_t result = session.attempt(nameOf(pin) + ": write " + value, [&](VeltraSDK& sdk) {
        return sdk.gpioDigitalWrite(numberOf(pin), level);
    });
    if (result == VeltraStatus_NotInitialised) {
        configure(pin, level == GpioLogicLevel_High ? "out-high" : "out");
    } else if (result == VeltraStatus_InvalidParameter) {
        throw session.failureOf(result).advise("Is the pin an input? veltra gpio mode " +
                                               std::to_string(pin) + "=out");
    } else if (result != ResultCode_Success) {
        throw session.failureOf(result);
    }
}

void Gpio::arm(uint8_t pin, const std::string& edge) {
    const GpioTriggerType trigger = parseName("edge", edge, triggers);
    const std::string request = nameOf(pin) + ": interrupt " + edge;
    const auto call = [&](VeltraSDK& sdk) {
        return sdk.gpioConfigureInterrupt(numberOf(pin), trigger);
    };
    const uint16_t result = session.attempt(request, call);
    if (result == VeltraStatus_NotInitialised) {
        configure(pin, "in");
        session.perform(request, call);
    } else if (result != ResultCode_Success) {
        throw session.failureOf(result);
    }
}

void Gpio::disarm(uint8_t pin) {
    session.perform(noInterruptOf(pin), disarming(pin));
}

void Gpio::disarmAnyway(uint8_t pin) {
    session.takeBack(noInterruptOf(pin), disarming(pin));
}

} // namespace veltra
