#include "cli/serve.hpp"

#include "cli/TerminationSignals.hpp"
#include "cli/options.hpp"
#include "ways/usbip.hpp"

#include "usbip/ListeningSocket.hpp"
#include "usbip/Protocol.hpp"
#include "usbip/Server.hpp"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

namespace virtual_adapter {

namespace {

struct ServeOptions {
    AdapterSettings settings;
    std::string address = "127.0.0.1";
    uint16_t port = usbip::standardPort;
};

void serve(const ServeOptions& options) {
    const usbip::FileDescriptor stop = terminationSignals();
    usbip::FileDescriptor listener = usbip::listeningSocket(options.address, options.port);
    const uint16_t port = usbip::portOf(listener);
    usbip::Server server(exportedAdapter(options.settings));
    server.listenOn(std::move(listener));
    // Flushed, because whoever starts a server waits for this line.
    std::cout << "Serving the " << options.settings.identity.variant.name << " adapter "
              << options.settings.serialNumber << " as device 1-1 on " << options.address
              << " port " << port << std::endl;
    server.run(stop);
}

} // namespace

void addServeCommand(CLI::App& app) {
    CLI::App& command =
        *app.add_subcommand("serve", "Export the adapter over USB/IP, for 'usbip attach'");
    const auto options = std::make_shared<ServeOptions>();
    addAdapterOptionsOnRealHost(command, options->settings);
    command.add_option("--address", options->address, "Listen on this numeric address")
        ->capture_default_str();
    command.add_option("--port", options->port, "Listen on this TCP port; 0 finds a free one")
        ->capture_default_str();
    command.callback([options] { serve(*options); });
}

} // namespace virtual_adapter
