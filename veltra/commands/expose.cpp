// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Inbox.hpp"
#include "Interruption.hpp"
#include "Output.hpp"
#include "commands/commands.hpp"
#include "expose/AdapterFlash.hpp"
#include "expose/Endpoint.hpp"
#include "expose/serprog/Server.hpp"

#include "usbip/ListeningSocket.hpp"

#include <algorithm>
#include <memory>

namespace veltra {

namespace {

struct Flash {
    int chipSelect = 0;
    std::string clockMax = "50M";
    std::string listen = "127.0.0.1:0";
    bool once = false;
};

void exposeFlash(const Flash& wanted, Context& context) {
    Session& session = context.session;
    const uint32_t fastest = parseFrequency(wanted.clockMax);
    Endpoint endpoint = parseEndpoint(wanted.listen);
    SpiSettings settings;
    settings.chipSelect = wanted.chipSelect;
    settings.clock = std::to_string(std::min(parseFrequency(settings.clock), fastest));
    AdapterFlash flash(session, context.output, settings, fastest);
    if (session.rehearses()) {
        return; // the rest is for others to say
    }

    usbip::FileDescriptor listener = listenAt(endpoint);
    if (!usbip::isOnLoopback(listener)) {
        context.output.remark("warning: whoever reaches " + endpoint.inWords() +
                              " can read and write this flash; nobody is asked for a password");
    }
    serprog::Server server(
        std::move(listener), flash,
        {{Interruption::descriptor(), [] { throw Failure::interruption(); }},
         {session.inbox().descriptor(), [&session] { session.inbox().discard(); }}});
    context.output.result({{"op", "expose.flash"},
                           {"cs", wanted.chipSelect},
                           {"address", endpoint.address},
                           {"port", endpoint.port}},
                          "flashrom -p serprog:ip=" + endpoint.inWords());
    server.run(wanted.once);
}

} // namespace

void addExposeCommands(Command app, Invocation& invocation) {
    const Command expose = app.addCommand("expose", "Lends a bus to programs that know no adapter");
    expose.requireCommand();
    const Command flash = expose.addCommand("flash", "An SPI flash to flashrom, over TCP");
    const auto wanted = std::make_shared<Flash>();
    flash.addOption("-c,--cs", wanted->chipSelect, "The chip select, 0 unless given")
        .typeName("CS")
        .range(0, 3);
    flash
        .addOption("--clock-max", wanted->clockMax,
                   "The fastest clock that a program may ask for, 50M unless given; 1M until then")
        .typeName("HZ");
    flash
        .addOption(
            "--listen", wanted->listen,
            "Where, 127.0.0.1 and a free port unless given; whoever reaches it has the flash")
        .typeName("ADDRESS:PORT");
    flash.addFlag("--once", wanted->once, "Ends behind the first program");
    onChosen(flash, invocation, [wanted](Context& context) { exposeFlash(*wanted, context); });
    addExposeTty(expose, invocation);
    addExposeKernel(expose, invocation);
}

} // namespace veltra
