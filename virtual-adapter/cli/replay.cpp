// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/replay.hpp"

#include "cli/failure.hpp"
#include "cli/program.hpp"
#include "launch/ChildProgram.hpp"
#include "launch/SocketPlace.hpp"
#include "replay/ReplayLink.hpp"
#include "ways/SocketServer.hpp"

#include <csignal>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

namespace virtual_adapter {

namespace {

std::vector<Recording> readRecordings(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    const Bytes file{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream) {
        fail(cannotSetUp, "cannot read " + path);
    }
    try {
        std::vector<Recording> recordings = recordingsOf(capture::readCapture(file));
        if (recordings.empty()) {
            fail(cannotSetUp, path + ": nothing was said with an adapter");
        }
        return recordings;
    } catch (const capture::InvalidCapture& error) {
        fail(cannotSetUp, path + ": " + error.what());
    }
}

void tell(const std::string& message) {
    std::cerr << "veltra-virtual-adapter: replay: " + message + "\n" << std::flush;
}

/// Returns the exit status.
int replay(const std::string& path, const std::vector<std::string>& program) {
    const std::string library = findPreloadLibrary();
    const std::vector<Recording> recordings = readRecordings(path);
    launch::SocketPlace place = launch::SocketPlace::inDirectoryOfItsOwn("veltra-virtual-adapter");
    launch::ChildProgram child([&]() -> int {
        try {
            startProgram(program, library, place.path());
        } catch (const ProcessEnd& end) {
            return end.exitStatus;
        }
    });

    bool isDifferent = false;
    const auto whenDifferent = [&](const std::string& difference) {
        if (!isDifferent) {
            tell(difference);
            isDifferent = true;
            child.send(SIGTERM);
        }
    };
    AdapterRack rack({});
    std::vector<const ReplayLink*> links(recordings.size());
    for (size_t i = 0; i < recordings.size(); ++i) {
        rack.add(recordings[i].settings, [&, i] {
            auto link = std::make_unique<ReplayLink>(recordings[i], whenDifferent);
            links[i] = link.get();
            return link;
        });
    }
    SocketServer(rack, place.takeListener()).run(child.end());

    const int status = child.wait();
    const bool hasRun = status != notFound && status != cannotExecute;
    if (!isDifferent && hasRun && !child.wasKilled()) {
        for (const ReplayLink* const link : links) {
            const std::string missing = link->missing();
            if (!missing.empty()) {
                tell("the program ended before it sent all that was recorded\n  recorded: " +
                     missing);
                isDifferent = true;
                break;
            }
        }
    }
    if (isDifferent) {
        return cannotSetUp;
    }
    child.dieAsItDid();
    return status;
}

} // namespace

void addReplayCommand(command_line::Command app, const std::vector<std::string>& program) {
    const command_line::Command command = app.addCommand(
        "replay", "Start a program with an adapter that answers as a captured one did");
    command.setFooter("The program and its arguments come last, behind --:\n"
                      "  veltra-virtual-adapter replay bench.pcapng -- ./my-program its arguments");
    const auto file = std::make_shared<std::string>();
    command.addOption("FILE", *file, "A capture of 'veltra capture' or of usbmon, in pcapng")
        .required();
    command.onChosen([file, program] {
        if (program.empty()) {
            throw command_line::Refusal("-- PROGRAM is required");
        }
        throw ProcessEnd{replay(*file, program)};
    });
}

} // namespace virtual_adapter
