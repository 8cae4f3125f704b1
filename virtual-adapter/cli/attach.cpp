// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/attach.hpp"

#include "cli/TerminationSignals.hpp"
#include "cli/announce.hpp"
#include "cli/options.hpp"
#include "launch/SocketPlace.hpp"
#include "ways/SocketServer.hpp"
#include "ways/usbip.hpp"

#include "usbip/Server.hpp"
#include "usbip/Vhci.hpp"

#include <array>
#include <cerrno>
#include <memory>
#include <string>
#include <sys/socket.h>
#include <system_error>
#include <utility>

namespace virtual_adapter {

namespace {

void attach(const AdapterSettings& settings) {
    const usbip::FileDescriptor stop = terminationSignals();
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot make a pair of sockets");
    }
    const auto inUse = std::make_shared<UsbDevice*>(nullptr);
    usbip::ExportedDevice adapter = exportedAdapter(settings, inUse);
    const usbip::Speed speed = adapter.description.speed;
    usbip::Server server(std::move(adapter));
    server.plugInto(usbip::FileDescriptor(ends[0]));
    usbip::FileDescriptor kernelsEnd(ends[1]);

    launch::SocketPlace place = launch::SocketPlace::inDirectoryOfItsOwn("veltra-virtual-adapter");
    AdapterRack rack({});
    rack.addTold(settings.serialNumber,
                 [inUse](const std::string& stimulus, HostedAdapter::Time now) {
                     return tellDevice(*inUse, stimulus, now);
                 });
    SocketServer told(rack, place.takeListener());
    server.lookAfter(told);

    const usbip::Vhci controller;
    const unsigned port = controller.plugIn(kernelsEnd, speed);
    kernelsEnd.reset();
    announce("Plugged the " + std::string(settings.identity.variant.name) + " adapter " +
             settings.serialNumber + " into vhci port " + std::to_string(port) + ", told at " +
             place.path());
    // When the kernel has let go by itself, the port may be another device's already.
    if (server.run(stop) == usbip::Server::End::Stopped) {
        controller.pullOut(port);
    }
}

} // namespace

void addAttachCommand(command_line::Command app) {
    const command_line::Command command = app.addCommand(
        "attach", "Plug the adapter into this machine's kernel (needs root and vhci-hcd)");
    const auto settings = std::make_shared<AdapterSettings>();
    addAdapterOptionsOnRealHost(command, *settings);
    command.onChosen([settings] {
        refuseHostFaults(*settings);
        attach(*settings);
    });
}

} // namespace virtual_adapter
