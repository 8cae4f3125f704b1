// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "VirtualAdapter.hpp"

#include "Failure.hpp"
#include "Restart.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace veltra {

namespace {

namespace fs = std::filesystem;

const char* const starter = "veltra-virtual-adapter";
const char* const optionName = "--virtual";

/// Beside this program where it is installed, in its own directory of a build tree, or anywhere in
/// PATH.
std::string findStarter(const fs::path& itself) {
    for (const fs::path& directory :
         {itself.parent_path(), itself.parent_path().parent_path() / "virtual-adapter"}) {
        if (access((directory / starter).c_str(), X_OK) == 0) {
            return directory / starter;
        }
    }
    return starter;
}

} // namespace

void restartVirtually(const std::vector<std::string>& words, const std::string& board) {
    const fs::path itself = thisProgram();
    std::vector<std::string> command{findStarter(itself), "run"};
    const bool ownBoard = board != "true";
    if (ownBoard) {
        command.insert(command.end(), {"--board", board});
    }
    command.insert(command.end(), {"--", itself});
    const std::vector<std::string> others = withoutOption(words, optionName, false);
    command.insert(command.end(), others.begin(), others.end());
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    rememberTyped({ownBoard ? optionName + ("=" + board) : optionName});
    unsetenv("VELTRA_DEVICE"); // it names another adapter
    execvp(arguments.front(), arguments.data());
    throw Failure(ExitStatus::NoAdapter, "no-adapter",
                  std::string("cannot start ") + starter + ": " + std::strerror(errno))
        .advise("Install it: sudo apt install veltra-virtual-adapter");
}

} // namespace veltra
