// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/tell.hpp"

#include "cli/failure.hpp"
#include "cli/program.hpp"

#include "socket/Channel.hpp"
#include "stimuli/Stimulus.hpp"
#include "usbip/FileDescriptor.hpp"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace virtual_adapter {

namespace {

constexpr int refusedStimulus = 1;

struct TellOptions {
    std::string socket;
    std::string serialNumber;
    std::vector<std::string> words;
};

/// Those of the environment where none is named: the first.
std::string socketOf(const TellOptions& options) {
    if (!options.socket.empty()) {
        return options.socket;
    }
    const char* const sockets = std::getenv(socketVariable);
    const std::string list = sockets == nullptr ? "" : sockets;
    if (list.empty()) {
        fail(refusedStimulus, std::string("no adapter is known here: name its socket with --socket "
                                          "PATH, or tell it under 'run', where ") +
                                  socketVariable + " does");
    }
    return list.substr(0, list.find(':'));
}

void tell(const TellOptions& options) {
    std::string stimulus;
    for (const std::string& word : options.words) {
        stimulus += (stimulus.empty() ? "" : " ") + word;
    }
    const std::string path = socketOf(options);
    const usbip::FileDescriptor socket(greetAdapter(path.c_str()));
    if (!socket.isOpen()) {
        fail(refusedStimulus,
             "no adapter at " + path + ": " + std::generic_category().message(errno));
    }
    const std::string text = options.serialNumber + stimulus;
    ClientMessage message(ClientMessageKind::Tell);
    message.u16(static_cast<uint16_t>(options.serialNumber.size())).bytes(text.data(), text.size());
    std::array<uint8_t, messageHead + maxTextSize> buffer{};
    Reply reply;
    if (!sendMessage(socket.get(), message) ||
        !receiveReply(socket.get(), ReplyKind::Told, buffer.data(), buffer.size(), reply)) {
        fail(refusedStimulus, "the adapter at " + path + " has ended without an answer");
    }
    if (reply.size > 0) {
        fail(refusedStimulus, std::string(reply.data, reply.data + reply.size));
    }
}

} // namespace

namespace {

std::string stimulusHelp() {
    std::string forms;
    for (const std::string& form : stimulusForms()) {
        forms += (forms.empty() ? "" : "; ") + form;
    }
    return "What happens: " + forms;
}

} // namespace

void addTellCommand(command_line::Command app) {
    const command_line::Command command =
        app.addCommand("tell", "Let something happen to an adapter that runs");
    const auto options = std::make_shared<TellOptions>();
    command.addOption("--socket", options->socket, "The adapter's socket").typeName("PATH");
    command
        .addOption("--serial", options->serialNumber,
                   "Which adapter, where several stand at the socket")
        .typeName("TEXT");
    command.addOption("STIMULUS", options->words, stimulusHelp()).required().typeName("");
    command.onChosen([options] { tell(*options); });
}

} // namespace virtual_adapter
