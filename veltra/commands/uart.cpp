// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "commands/commands.hpp"
#include "commands/uart_options.hpp"
#include "uart/Terminal.hpp"

#include <memory>

namespace veltra {

namespace {

constexpr size_t maxBytes = size_t{16} << 20U;

struct Wanted {
    UartSettings settings;
    std::vector<std::string> words;
    std::string count;
    std::string idleTimeout;
};

void send(const Wanted& wanted, Context& context) {
    const Bytes message = parseBytes(wanted.words, maxBytes);
    Uart uart(context.session, context.output, wanted.settings);
    uart.send(message);
    context.output.result({{"op", "uart.send"}, {"count", message.size()}}, "");
}

/// Bytes appear as they come, so that a pipe or an eye can follow them.
void tell(Context& context, const Bytes& bytes) {
    Bytes all = context.output.lastBytes;
    context.output.bytes({{"op", "uart.recv"}, {"count", bytes.size()}}, bytes, "");
    if (!context.output.isJson() && !context.options.raw) {
        context.output.verbatim(bytes);
    }
    all.insert(all.end(), bytes.begin(), bytes.end());
    context.output.lastBytes = all;
}

void receive(const Wanted& wanted, Context& context) {
    size_t missing = wanted.count.empty()
                         ? maxBytes
                         : static_cast<size_t>(parseNumber("count", wanted.count, 1, maxBytes));
    std::optional<std::chrono::milliseconds> patience;
    if (!wanted.idleTimeout.empty()) {
        patience = std::chrono::milliseconds(parseSeconds(wanted.idleTimeout));
    }
    Uart uart(context.session, context.output, wanted.settings);
    context.output.lastBytes.clear();
    if (context.session.rehearses()) {
        return;
    }
    while (missing > 0) {
        Bytes next = context.session.surplus.empty() ? uart.receive(patience)
                                                     : std::move(context.session.surplus);
        context.session.surplus.clear();
        if (next.empty()) {
            break;
        }
        const auto end = next.begin() + static_cast<ptrdiff_t>(std::min(missing, next.size()));
        context.session.surplus.assign(end, next.end());
        next.erase(end, next.end());
        tell(context, next);
        missing -= wanted.count.empty() ? 0 : next.size();
    }
    if (missing > 0 && !wanted.count.empty()) {
        throw Failure(ExitStatus::NoAnswer, "no-response",
                      std::to_string(missing) + " of " + wanted.count + " bytes did not come");
    }
}

void term(const Wanted& wanted, Context& context) {
    Uart uart(context.session, context.output, wanted.settings);
    if (!context.session.rehearses()) {
        runTerminal(uart, context.output);
    }
}

using Carry = void (*)(const Wanted&, Context&);

Command add(Command uart, Invocation& invocation, const char* name, const char* description,
            const std::shared_ptr<Wanted>& wanted, Carry carry) {
    const Command command = uart.addCommand(name, description);
    addUartOptions(command, wanted->settings);
    onChosen(command, invocation, [=](Context& context) { carry(*wanted, context); });
    return command;
}

} // namespace

void addUartCommands(Command app, Invocation& invocation) {
    const Command uart = app.addCommand("uart", "The UART");
    uart.requireCommand();
    const auto toSend = std::make_shared<Wanted>();
    add(uart, invocation, "send", "Sends bytes", toSend, send)
        .addOption("BYTES", toSend->words, "Numbers, hex:0011ff, str:text, @file; - is stdin")
        .required()
        .typeName("");
    const auto toReceive = std::make_shared<Wanted>();
    Command receiveCommand =
        add(uart, invocation, "recv", "Shows what comes in", toReceive, receive);
    receiveCommand.addOption("-n,--count", toReceive->count, "Ends behind so many bytes")
        .typeName("N");
    receiveCommand
        .addOption("--idle-timeout", toReceive->idleTimeout, "Ends when nothing comes for so long")
        .typeName("S");
    add(uart, invocation, "term", "A terminal; Ctrl+] ends it", std::make_shared<Wanted>(), term);
}

} // namespace veltra
