// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/serve.hpp"

#include "cli/TerminationSignals.hpp"
#include "cli/announce.hpp"
#include "cli/options.hpp"
#include "launch/SocketPlace.hpp"
#include "ways/SocketServer.hpp"
#include "ways/usbip.hpp"

#include "usbip/ListeningSocket.hpp"
#include "usbip/Protocol.hpp"
#include "usbip/Server.hpp"

#include <charconv>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

namespace virtual_adapter {

namespace {

struct ServeOptions {
    AdapterChoice adapters;
    std::string socket;
    std::string address = "127.0.0.1";
    uint16_t port = usbip::standardPort;
};

std::string nameOf(const AdapterSettings& settings) {
    return "the " + std::string(settings.identity.variant.name) + " adapter " +
           settings.serialNumber;
}

void serveAtSocket(const ServeOptions& options) {
    const usbip::FileDescriptor stop = terminationSignals();
    launch::SocketPlace place = launch::SocketPlace::at(options.socket);
    std::string names;
    for (const AdapterSettings& settings : options.adapters.all()) {
        names += (names.empty() ? "" : ", ") + nameOf(settings);
    }
    AdapterRack rack(options.adapters.all());
    SocketServer server(rack, place.takeListener());
    announce("Serving " + names + " at " + place.path());
    server.run(stop);
}

void serveOverUsbIp(const ServeOptions& options) {
    const AdapterSettings& settings = options.adapters.settings;
    refuseHostFaults(settings);
    if (!options.adapters.serialNumbers.empty()) {
        throw command_line::Refusal("--adapter", "several stand at a socket only: --socket PATH");
    }
    const usbip::FileDescriptor stop = terminationSignals();
    usbip::FileDescriptor listener = usbip::listeningSocket(options.address, options.port);
    if (!usbip::isOnLoopback(listener)) {
        std::cerr << "veltra-virtual-adapter: warning: whoever reaches " + options.address +
                         " can take the adapter: USB/IP asks nobody for a password\n"
                  << std::flush;
    }
    const std::string port = std::to_string(usbip::portOf(listener));
    usbip::Server server(exportedAdapter(settings));
    server.listenOn(std::move(listener));
    announce("Serving " + nameOf(settings) + " as device 1-1 on " + options.address + " port " +
             port);
    server.run(stop);
}

/// An empty text is no port: as 0 it would be any.
uint16_t readPort(const std::string& text) {
    uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc() || stop != end) {
        throw command_line::Refusal("--port", "expected a TCP port from 1 to 65535, or 0 for any "
                                              "free one");
    }
    return port;
}

std::string complaintAboutAddress(const std::string& text) {
    return usbip::isNumericAddress(text)
               ? ""
               : "expected a numeric address: 127.0.0.1 for this machine alone, 0.0.0.0 or :: for "
                 "all of its networks";
}

} // namespace

void addServeCommand(command_line::Command app) {
    const command_line::Command command = app.addCommand(
        "serve",
        "Keep an adapter: at a socket for 'run --join', or over USB/IP for 'usbip attach'");
    const auto options = std::make_shared<ServeOptions>();
    addAdapterOptions(command, options->adapters);
    const command_line::Option socket =
        command.addOption("--socket", options->socket, "Listen at this path for programs that join")
            .typeName("PATH");
    command.addOption("--address", options->address, "Listen on this numeric address for USB/IP")
        .check(complaintAboutAddress)
        .defaultText(options->address)
        .excludes(socket);
    command
        .addOption(
            "--port", [options](const std::string& text) { options->port = readPort(text); },
            "Listen on this TCP port for USB/IP; 0 finds a free one")
        .typeName("UINT")
        .defaultText(std::to_string(options->port))
        .excludes(socket);
    command.onChosen([options, socket] {
        if (!socket.wasGiven()) {
            serveOverUsbIp(*options);
        } else {
            serveAtSocket(*options);
        }
    });
}

} // namespace virtual_adapter
