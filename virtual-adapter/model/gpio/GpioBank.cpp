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

/// The other pin on the pin's line; the pin itself if it has the line to itself.
size_t partnerOf(size_t pin) {
    return pin < 4 ? pin ^ 1U : pin;
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
    const Pin& one = pins.at(pin);
    const Pin& other = pins.at(partnerOf(pin));
    const Effect effect = std::min(effectOf(one.functionality, one.driven),
                                   effectOf(other.functionality, other.driven));
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
