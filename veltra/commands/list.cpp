// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "AdapterChoice.hpp"
#include "Output.hpp"
#include "Session.hpp"
#include "commands/commands.hpp"

namespace veltra {

namespace {

std::string inWords(const VeltraSDK_AdapterInfo& adapter) {
    const std::string serial = adapter.serialNumber;
    return std::string(adapter.path) + "  " + modelOf(adapter) + "  " +
           (adapter.accessible ? "serial number " + (serial.empty() ? "none" : printable(serial))
                               : "no permission: veltra doctor says what to type");
}

void list(Context& context) {
    const std::vector<VeltraSDK_AdapterInfo> adapters = VeltraSDK::adapters();
    if (adapters.empty()) {
        chooseAdapter(""); // says why there is none
    }
    for (const VeltraSDK_AdapterInfo& adapter : adapters) {
        const std::string serial = adapter.serialNumber;
        context.output.result({{"op", "list"},
                               {"path", adapter.path},
                               {"model", modelOf(adapter)},
                               {"serial", serial.empty() ? Json(nullptr) : Json(serial)},
                               {"accessible", adapter.accessible},
                               {"report_size", adapter.reportSize}},
                              inWords(adapter));
    }
}

} // namespace

void addListCommand(Command app, Invocation& invocation) {
    onChosen(app.addCommand("list", "Lists the adapters that are plugged in"), invocation, list);
}

} // namespace veltra
