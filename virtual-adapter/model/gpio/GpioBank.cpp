// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/gpio/GpioBank.hpp"

#include <algorithm>

namespace virtual_adapter {

namespace {

/// What a pin does to its line, the stronger effect first.
enum class Effect { DrivesLow, DrivesHigh, PullsDown, PullsUp, None };

Effect effectOf(std::optional<GpioFunctionality> functionality, GpioLogicLevel driven) {
    if (!functionality) {
        return Effect::None;
    }
    switch (*functionality) {
    case GpioFunctionality_Output:
        return driven == GpioLogicLevel_Low ? Effect::DrivesLow : Effect::DrivesHigh;
    case GpioFunctionality_OpenDrainOutput:
        return driven == GpioLogicLevel_Low ? Effect::DrivesLow : Effect::None;
    case GpioFunctionality_InputPullDown:
        return Effect::PullsDown;
    case GpioFunctionality_InputPullUp:
        return Effect::PullsUp;
    case GpioFunctionality_Input:
        break;
    }
    return Effect::None;
}

} // namespace

bool GpioBank::isConfigured(GpioPinNumber pin) const {
    return pins.at(pin).functionality.has_value();
}

bool GpioBank::isOutput(GpioPinNumber pin) const {
    const auto functionality = pins.at(pin).functionality.value_or(GpioFunctionality_Input);
    return functionality == GpioFunctionality_Output ||
           functionality == GpioFunctionality_OpenDrainOutput;
}

void GpioBank::configure(GpioPinNumber pin, GpioFunctionality functionality, GpioLogicLevel level) {
    pins.at(pin) = {functionality, level};
}

void GpioBank::drive(GpioPinNumber pin, GpioLogicLevel level) {
    pins.at(pin).driven = level;
}

GpioLogicLevel GpioBank::level(GpioPinNumber pin) const {
    const std::optional<GpioLogicLevel> outside = lines.drivenFromOutside(pin);
    Effect effect = outside ? effectOf(GpioFunctionality_Output, *outside) : Effect::None;
    for (size_t other = 0; other < pinCount; ++other) {
        if (lines.areJoined(pin, other)) {
            const auto& [functionality, driven] = pins.at(other);
            effect = std::min(effect, effectOf(functionality, driven));
        }
    }
    return effect == Effect::DrivesHigh || effect == Effect::PullsUp ? GpioLogicLevel_High
                                                                     : GpioLogicLevel_Low;
}

GpioBank::Levels GpioBank::levels() const {
    Levels result{};
    for (size_t pin = 0; pin < pinCount; ++pin) {
        result.at(pin) = level(static_cast<GpioPinNumber>(pin));
    }
    return result;
}

} // namespace virtual_adapter
