// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What hosts may send to the USB/IP server: two connections to one adapter, with any bytes in any
// pieces.
#include "Input.hpp"

#include "ways/usbip.hpp"

#include "usbip/Connection.hpp"

#include <array>
#include <memory>

using fuzzing::Input;
using fuzzing::require;
using usbip::Connection;
using usbip::ExportedDevice;

namespace {

ExportedDevice adapterFor(Input& input) {
    virtual_adapter::AdapterSettings settings;
    const auto& faults = virtual_adapter::faultNames();
    settings.identity = virtual_adapter::usbIdentities[input.number<bool>() ? 1 : 0];
    settings.faults = {{faults[input.byte() % faults.size()].kind, {}}};
    return virtual_adapter::exportedAdapter(settings);
}

/// What the server's loop does with one host, without the socket.
void receive(Connection& host, const fuzzing::Bytes& bytes, usbip::Time now) {
    const bool wasOver = host.isOver();
    if (host.wantsInput()) {
        host.receive(bytes.data(), bytes.size(), now);
    }
    require(!wasOver || host.isOver(), "a connection that is over stays so");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    ExportedDevice adapter = adapterFor(input);
    usbip::Time now{};
    std::array<std::unique_ptr<Connection>, 2> hosts;
    for (auto& host : hosts) {
        host = std::make_unique<Connection>(adapter);
    }
    if (input.number<bool>()) {
        hosts[0]->plugIn();
    }
    while (!input.isEmpty()) {
        const uint8_t action = input.byte();
        auto& host = hosts[action & 1U];
        switch (action >> 1U) {
        case 0:
            host->output().clear();
            break;
        case 1:
            now += std::chrono::milliseconds(10 * int{input.byte()});
            host->serve(now);
            break;
        case 2:
            host = std::make_unique<Connection>(adapter);
            break;
        default:
            receive(*host, input.twoPartBytes(), now);
            break;
        }
        require(!hosts[0]->isPluggedIn() || !hosts[1]->isPluggedIn(), "one host has the adapter");
        require(adapter.isTaken == (hosts[0]->isPluggedIn() || hosts[1]->isPluggedIn()),
                "the adapter is taken while a host has the adapter");
    }
    return 0;
}
