// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/program.hpp"

#include "cli/failure.hpp"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace virtual_adapter {

namespace {

namespace fs = std::filesystem;

const char* const preloadVariable = "LD_PRELOAD";

const char* const sanitizerRuntime = VELTRA_SANITIZER_RUNTIME;

void setEnvironment(const std::string& variable, const std::string& value) {
    if (setenv(variable.c_str(), value.c_str(), 1) != 0) {
        fail(cannotSetUp, "cannot set " + variable + ": " + std::generic_category().message(errno));
    }
}

/// Each of the libraries once: another `run` around this one has named them already.
void append(std::vector<std::string>& libraries, const std::string& list) {
    std::string name;
    for (std::istringstream names(list); std::getline(names, name, ':');) {
        if (!name.empty() &&
            std::find(libraries.begin(), libraries.end(), name) == libraries.end()) {
            libraries.push_back(name);
        }
    }
}

/// Behind what is preloaded already, as sanitizers insist on being first.
void preload(const std::string& library) {
    if (library.find_first_of(": ") != std::string::npos) {
        fail(cannotSetUp, std::string(preloadVariable) +
                              " cannot hold a path with a space or a colon: " + library);
    }
    const char* const inherited = std::getenv(preloadVariable);
    std::vector<std::string> libraries;
    append(libraries, sanitizerRuntime);
    append(libraries, inherited == nullptr ? "" : inherited);
    libraries.erase(std::remove(libraries.begin(), libraries.end(), library), libraries.end());
    libraries.push_back(library);
    std::string list;
    for (const std::string& each : libraries) {
        list += (list.empty() ? "" : ":") + each;
    }
    setEnvironment(preloadVariable, list);
}

/// The runtime of the address sanitizer ends programs that have something loaded before it, though
/// what defines eight functions of hidapi takes nothing of it away.
void calmAddressSanitizer() {
    const std::string variable = "ASAN_OPTIONS";
    const std::string option = "verify_asan_link_order";
    const char* const inherited = std::getenv(variable.c_str());
    const std::string options = inherited == nullptr ? "" : inherited;
    if (options.find(option) == std::string::npos) {
        setEnvironment(variable, options + (options.empty() ? "" : ":") + option + "=0");
    }
}

[[noreturn]] void execute(std::vector<std::string> program) {
    std::vector<char*> arguments;
    arguments.reserve(program.size() + 1);
    for (std::string& argument : program) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    execvp(arguments.front(), arguments.data());
    const int error = errno;
    fail(error == ENOENT ? notFound : cannotExecute,
         "cannot start " + program.front() + ": " + std::generic_category().message(error));
}

} // namespace

std::string findPreloadLibrary() {
    const char* const itself = "/proc/self/exe";
    std::error_code error;
    const fs::path here = fs::read_symlink(itself, error).parent_path();
    if (error) {
        fail(cannotSetUp,
             std::string("cannot find its own directory: ") + itself + ": " + error.message());
    }
    const fs::path installed = (here / VELTRA_PRELOAD_DIRECTORY).lexically_normal();
    for (const fs::path& directory : {here, installed}) {
        const fs::path library = directory / VELTRA_PRELOAD_LIBRARY;
        if (access(library.c_str(), R_OK) == 0) {
            return library;
        }
    }
    fail(cannotSetUp, std::string(VELTRA_PRELOAD_LIBRARY) + " is neither in " + here.string() +
                          " nor in " + installed.string());
}

void startProgram(std::vector<std::string> program, const std::string& library,
                  const std::string& socket) {
    setEnvironment(socketVariable, socket);
    preload(library);
    calmAddressSanitizer();
    execute(std::move(program));
}

} // namespace virtual_adapter
