// What hosts may send to the USB/IP server: two connections to one port, with any bytes in any
// pieces.
#include "Input.hpp"

#include "attach/UsbIpConnection.hpp"

#include <array>
#include <memory>

using fuzzing::Input;
using fuzzing::require;
using virtual_adapter::UsbIpConnection;
using virtual_adapter::UsbIpPort;

namespace {

UsbIpPort portFor(Input& input) {
    UsbIpPort port;
    const auto& faults = virtual_adapter::faultNames();
    port.settings.identity = virtual_adapter::usbIdentities[input.number<bool>() ? 1 : 0];
    port.settings.fault.kind = faults[input.byte() % faults.size()].kind;
    return port;
}

/// What the server's loop does with one host, without the socket.
void receive(UsbIpConnection& host, const fuzzing::Bytes& bytes, UsbIpConnection::Time now) {
    const bool wasOver = host.isOver();
    if (host.wantsInput()) {
        host.receive(bytes.data(), bytes.size(), now);
    }
    require(!wasOver || host.isOver(), "a connection that is over stays so");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    UsbIpPort port = portFor(input);
    UsbIpConnection::Time now{};
    std::array<std::unique_ptr<UsbIpConnection>, 2> hosts;
    for (auto& host : hosts) {
        host = std::make_unique<UsbIpConnection>(port);
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
            host = std::make_unique<UsbIpConnection>(port);
            break;
        default:
            receive(*host, input.twoPartBytes(), now);
            break;
        }
        require(!hosts[0]->isPluggedIn() || !hosts[1]->isPluggedIn(), "one host has the adapter");
        require(port.isTaken == (hosts[0]->isPluggedIn() || hosts[1]->isPluggedIn()),
                "the port is taken while a host has the adapter");
    }
    return 0;
}
