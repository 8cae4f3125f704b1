// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "launch/preloading.hpp"

#include "launch/StartFailure.hpp"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace launch {

namespace {

namespace fs = std::filesystem;

const char* const preloadVariable = "LD_PRELOAD";

const char* const sanitizerRuntime = VELTRA_SANITIZER_RUNTIME;

/// Each of the libraries once: another program around this one may have named them already.
void append(std::vector<std::string>& libraries, const std::string& list) {
    std::string name;
    for (std::istringstream names(list); std::getline(names, name, ':');) {
        if (!name.empty() &&
            std::find(libraries.begin(), libraries.end(), name) == libraries.end()) {
            libraries.push_back(name);
        }
    }
}

/// The runtime of the address sanitizer ends programs that have something loaded before it, though
/// what stands in front of a few functions takes nothing of it away.
void calmAddressSanitizer() {
    const std::string variable = "ASAN_OPTIONS";
    const std::string option = "verify_asan_link_order";
    const char* const inherited = std::getenv(variable.c_str());
    const std::string options = inherited == nullptr ? "" : inherited;
    if (options.find(option) == std::string::npos) {
        setEnvironment(variable, options + (options.empty() ? "" : ":") + option + "=0");
    }
}

} // namespace

std::string findLibrary(const std::string& name, const std::string& installedDirectory) {
    const char* const itself = "/proc/self/exe";
    std::error_code error;
    const fs::path here = fs::read_symlink(itself, error).parent_path();
    if (error) {
        throw StartFailure(cannotSetUp, std::string("cannot find its own directory: ") + itself +
                                            ": " + error.message());
    }
    const fs::path installed = (here / installedDirectory).lexically_normal();
    for (const fs::path& directory : {here, installed}) {
        const fs::path library = directory / name;
        if (access(library.c_str(), R_OK) == 0) {
            return library;
        }
    }
    throw StartFailure(cannotSetUp,
                       name + " is neither in " + here.string() + " nor in " + installed.string());
}

void preload(const std::string& library, PreloadPlace place) {
    if (library.find_first_of(": ") != std::string::npos) {
        throw StartFailure(cannotSetUp,
                           std::string(preloadVariable) +
                               " cannot hold a path with a space or a colon: " + library);
    }
    const char* const inherited = std::getenv(preloadVariable);
    std::vector<std::string> others;
    append(others, inherited == nullptr ? "" : inherited);
    others.erase(std::remove(others.begin(), others.end(), library), others.end());
    others.insert(place == PreloadPlace::First ? others.begin() : others.end(), library);
    std::vector<std::string> libraries;
    append(libraries, sanitizerRuntime);
    for (const std::string& other : others) {
        append(libraries, other);
    }
    std::string list;
    for (const std::string& each : libraries) {
        list += (list.empty() ? "" : ":") + each;
    }
    setEnvironment(preloadVariable, list);
    calmAddressSanitizer();
}

void setEnvironment(const std::string& variable, const std::string& value) {
    if (setenv(variable.c_str(), value.c_str(), 1) != 0) {
        throw StartFailure(cannotSetUp, "cannot set " + variable + ": " +
                                            std::generic_category().message(errno));
    }
}

void execute(std::vector<std::string> program) {
    std::vector<char*> arguments;
    arguments.reserve(program.size() + 1);
    for (std::string& argument : program) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    execvp(arguments.front(), arguments.data());
    const int error = errno;
    throw StartFailure(error == ENOENT ? notFound : cannotExecute,
                       "cannot start " + program.front() + ": " +
                           std::generic_category().message(error));
}

} // namespace launch
