// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What is told to a virtual adapter: lines of any words, and faults of any places, between
// requests.
#include "Input.hpp"

#include "device/AdapterLink.hpp"

#include <stdexcept>

using fuzzing::Bytes;
using fuzzing::Input;
using fuzzing::require;
using virtual_adapter::AdapterLink;
using virtual_adapter::AdapterSettings;

namespace {

std::string lineOf(Input& input) {
    const Bytes bytes = input.bytes();
    return {bytes.begin(), bytes.end()};
}

/// What a command line and a board's file would have told it before it was switched on.
AdapterSettings settingsFrom(Input& input) {
    AdapterSettings settings;
    for (unsigned left = input.byte() % 4; left > 0; --left) {
        const size_t request = input.byte();
        const std::string line = lineOf(input);
        try {
            const auto fault = virtual_adapter::parseFault(line);
            settings.faults.push_back(fault);
            require(textOf(virtual_adapter::parseFault(textOf(fault))) == textOf(fault),
                    "a fault reads as it is written");
        } catch (const std::invalid_argument& error) {
            require(*error.what() != '\0', "a refusal says why");
        }
        try {
            settings.schedule.push_back({request, virtual_adapter::parseStimulus(line)});
        } catch (const std::invalid_argument& error) {
            require(*error.what() != '\0', "a refusal says why");
        }
    }
    return settings;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    AdapterLink link(settingsFrom(input));
    AdapterLink::Time now{};
    while (!input.isEmpty()) {
        if (input.number<bool>()) {
            link.tell(lineOf(input), now);
        } else {
            link.writeReport(input.twoPartBytes(), now);
        }
        now += std::chrono::milliseconds(1);
        while (link.takeInputReport(now)) {
        }
    }
    link.tell("reset", now);
    require(link.isOnBus(), "a reset puts the adapter on the bus");
    require(link.inputReportCount() == 0, "a reset leaves nothing to be read");
    return 0;
}
