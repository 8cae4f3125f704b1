// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/run.hpp"

#include "cli/AdapterProcess.hpp"
#include "cli/failure.hpp"
#include "cli/options.hpp"
#include "cli/program.hpp"

#include "socket/Channel.hpp"
#include "usbip/FileDescriptor.hpp"

#include <cerrno>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace virtual_adapter {

namespace {

struct RunOptions {
    AdapterChoice adapters;
    std::string joined;
};

std::string joinedSocket(const std::string& path) {
    const std::string absolute = std::filesystem::absolute(path).lexically_normal();
    if (absolute.find(':') != std::string::npos) {
        fail(cannotSetUp, "a socket's path cannot hold a colon: " + absolute);
    }
    const usbip::FileDescriptor socket(connectToAdapter(absolute.c_str()));
    if (!socket.isOpen()) {
        fail(cannotSetUp, "no adapter at " + absolute + ": " +
                              std::generic_category().message(errno) +
                              "; start one: veltra-virtual-adapter serve --socket " + path);
    }
    return absolute;
}

std::string newSocket(const AdapterChoice& adapters) {
    const std::vector<AdapterSettings> all = adapters.all();
    try {
        return startAdapterProcess(all);
    } catch (const std::runtime_error& error) {
        fail(cannotSetUp, error.what());
    }
}

} // namespace

void addRunCommand(command_line::Command app, const std::vector<std::string>& program) {
    const command_line::Command command =
        app.addCommand("run", "Start a program that finds the adapter through "
                              "hidapi: no root, no kernel, no hardware");
    command.setFooter(
        "The program and its arguments come last, behind --:\n"
        "  veltra-virtual-adapter run --model high-speed -- ./my-program its arguments");
    const auto options = std::make_shared<RunOptions>();
    addAdapterOptions(command, options->adapters);
    command.excludeOthers(command
                              .addOption("--join", options->joined,
                                         "Use the adapter that 'serve' keeps at this socket")
                              .typeName("PATH"));
    command.onChosen([options, program] {
        if (program.empty()) {
            throw command_line::Refusal("-- PROGRAM is required");
        }
        const std::string library = findPreloadLibrary();
        const std::string socket =
            options->joined.empty() ? newSocket(options->adapters) : joinedSocket(options->joined);
        startProgram(program, library, socket);
    });
}

} // namespace virtual_adapter
