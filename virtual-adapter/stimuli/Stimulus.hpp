// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "faults/Fault.hpp"

#include <veltrasdk/gpio.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace virtual_adapter {

/// Something drives the line that a pin lies on, or lets go of it.
struct GpioDrive {
    GpioPinNumber pin;
    /// Nothing to let go.
    std::optional<GpioLogicLevel> level;
};

/// A setting of the part at an I2C address changes.
struct I2cSet {
    size_t bus;
    uint8_t address;
    std::string name;
    std::string value;
};

/// A part at an I2C address keeps an acknowledge back.
struct I2cNack {
    size_t bus;
    uint8_t address;
    /// Which byte behind the address, counted from 1; nothing for the address itself.
    std::optional<size_t> byte;
    unsigned times;
};

/// A target of the I3C bus, by its PID or by its dynamic or static address.
struct I3cTargetName {
    std::optional<std::array<uint8_t, 6>> pid;
    uint8_t address = 0;
    /// As it was written.
    std::string text;
};

struct I3cInterrupt {
    I3cTargetName target;
    Bytes payload;
};

/// A target is put on the running bus, or taken from it.
struct I3cPresence {
    I3cTargetName target;
    bool joins;
};

/// Bytes arrive at the UART.
struct UartReceive {
    Bytes bytes;
};

/// A fault is to strike; nothing to end all of them.
struct FaultRequest {
    std::optional<Fault> fault;
};

/// The adapter is switched off and on: everything begins anew.
struct ResetStimulus {};
struct UnplugStimulus {};
struct PlugStimulus {};

using Stimulus = std::variant<GpioDrive, I2cSet, I2cNack, I3cInterrupt, I3cPresence, UartReceive,
                              FaultRequest, ResetStimulus, UnplugStimulus, PlugStimulus>;

/// Reads one line. Throws std::invalid_argument, whose text says what is wrong and what is allowed.
Stimulus parseStimulus(const std::string& line);

/// What lines look like, in the words of the documents.
const std::vector<std::string>& stimulusForms();

/// A stimulus before a request, counted from 1 since the adapter was switched on.
struct ScheduledStimulus {
    size_t request;
    Stimulus stimulus;
};

} // namespace virtual_adapter
