// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "VirtualAdapter.hpp"

#include "Failure.hpp"
#include "Words.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <unistd.h>

namespace veltra {

namespace {

namespace fs = std::filesystem;

const char* const starter = "veltra-virtual-adapter";
/// So that hints say what was typed, although the command that is started again has lost the word.
const char* const wordVariable = "VELTRA_VIRTUAL_WORD";

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

bool isVirtualWord(const std::string& word) {
    return word == "--virtual" || word.rfind("--virtual=", 0) == 0;
}

} // namespace

std::string typedBefore() {
    const char* const word = std::getenv(wordVariable);
    return std::string("veltra ") + (word == nullptr ? "" : quoted(word) + " ");
}

void restartVirtually(const std::vector<std::string>& words, const std::string& board) {
    std::error_code error;
    const fs::path itself = fs::read_symlink("/proc/self/exe", error);
    std::vector<std::string> command{findStarter(itself), "run"};
    const bool ownBoard = board != "true";
    if (ownBoard) {
        command.insert(command.end(), {"--board", board});
    }
    command.insert(command.end(), {"--", itself});
    // What follows -- is of another program.
    const auto end = std::find(words.begin(), words.end(), "--");
    std::remove_copy_if(words.begin(), end, std::back_inserter(command), isVirtualWord);
    command.insert(command.end(), end, words.end());
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    setenv(wordVariable, ownBoard ? ("--virtual=" + board).c_str() : "--virtual", 1);
    unsetenv("VELTRA_DEVICE"); // it names another adapter
    execvp(arguments.front(), arguments.data());
    throw Failure(ExitStatus::NoAdapter, "no-adapter",
                  std::string("cannot start ") + starter + ": " + std::strerror(errno))
        .advise("Install it: sudo apt install veltra-virtual-adapter");
}

} // namespace veltra
