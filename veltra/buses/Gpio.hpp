// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Session.hpp"

#include <optional>
#include <string>

namespace veltra {

/// The adapter's pins; each member sends one request, or configures a pin that was not and repeats
/// it.
class Gpio {
public:
    explicit Gpio(Session& over);

    static constexpr uint8_t pinCount = 8;
    static uint8_t parsePin(const std::string& text);
    static GpioLogicLevel parseLevel(const std::string& text);

    /// in, in-up, in-down, out, out-high or od.
    void configure(uint8_t pin, const std::string& mode);
    /// A pin that was not configured becomes an input.
    GpioLogicLevel read(uint8_t pin);
    /// Empty for a pin that is not configured.
    std::optional<GpioLogicLevel> look(uint8_t pin);
    /// A pin that was not configured becomes an output.
    void write(uint8_t pin, GpioLogicLevel level);
    /// A pin that was not configured becomes an input.
    void arm(uint8_t pin, const std::string& edge);
    void disarm(uint8_t pin);
    /// The same on a failure's way out.
    void disarmAnyway(uint8_t pin);

private:
    uint16_t attemptRead(uint8_t pin, GpioLogicLevel& level);

    Session& session;
};

} // namespace veltra
