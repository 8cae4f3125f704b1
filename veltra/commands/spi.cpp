// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "commands/commands.hpp"
#include "commands/spi_options.hpp"
#include "text/HexDump.hpp"

#include <memory>

namespace veltra {

namespace {

struct Transfer {
    SpiSettings settings;
    std::vector<std::string> words;
    std::string count = "0";
    bool full = false;
};

void transfer(const Transfer& wanted, Context& context) {
    const Bytes send = parseBytes(wanted.words, Spi::maxBytes);
    const auto count =
        static_cast<size_t>(parseNumber("count", wanted.count, 0, Spi::maxBytes - send.size()));
    context.session.concern("-c " + std::to_string(wanted.settings.chipSelect));
    Spi spi(context.session, wanted.settings);
    Json object = {
        {"op", "spi.transfer"}, {"cs", wanted.settings.chipSelect}, {"sent", send.size()}};
    if (!wanted.full && count == 0) {
        spi.command(send);
        context.output.result(object, "");
        return;
    }
    const Bytes received =
        wanted.full ? spi.transfer(send, send.size() + count) : spi.query(send, count);
    context.output.bytes(object, received, hexDump(received, 0));
}

} // namespace

void addSpiCommands(Command app, Invocation& invocation) {
    const Command spi = app.addCommand("spi", "The SPI controller and its four chip selects");
    spi.requireCommand();
    const Command command =
        spi.addCommand("transfer", "Sends bytes and reads, under one chip select");
    const auto wanted = std::make_shared<Transfer>();
    addSpiOptions(command, wanted->settings);
    command.addOption("BYTES", wanted->words, "Numbers, hex:0011ff, str:text, @file; - is stdin")
        .required()
        .typeName("");
    command.addOption("-n,--count", wanted->count, "How many bytes to read behind those sent")
        .typeName("COUNT");
    command.addFlag("--full", wanted->full, "Shows also what came back while sending");
    onChosen(command, invocation, [wanted](Context& context) { transfer(*wanted, context); });
    addFlashCommands(spi, invocation);
}

} // namespace veltra
