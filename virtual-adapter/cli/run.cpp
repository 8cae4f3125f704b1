// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/run.hpp"

#include "cli/options.hpp"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace virtual_adapter {

namespace {

namespace fs = std::filesystem;

// What shells and env(1) exit with.
constexpr int cannotSetUp = 125;
constexpr int cannotExecute = 126;
constexpr int notFound = 127;

const char* const preloadVariable = "LD_PRELOAD";

const char* const sanitizerRuntime = VELTRA_SANITIZER_RUNTIME;

[[noreturn]] void fail(int exitStatus, const std::string& message) {
    std::cerr << "veltra-virtual-adapter: " << message << std::endl;
    throw CLI::RuntimeError(exitStatus);
}

void setEnvironment(const std::string& variable, const std::string& value) {
    if (setenv(variable.c_str(), value.c_str(), 1) != 0) {
        fail(cannotSetUp, "cannot set " + variable + ": " + std::generic_category().message(errno));
    }
}

/// The library lies beside the executable in a build tree and in a directory of its own once
/// installed.
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

/// Behind what is preloaded already, as sanitizers insist on being first.
void preload(const std::string& library) {
    if (library.find_first_of(": ") != std::string::npos) {
        fail(cannotSetUp, std::string(preloadVariable) +
                              " cannot hold a path with a space or a colon: " + library);
    }
    std::string libraries(sanitizerRuntime);
    const char* const inherited = std::getenv(preloadVariable);
    for (const std::string& next : {std::string(inherited == nullptr ? "" : inherited), library}) {
        libraries += (libraries.empty() || next.empty() ? "" : ":") + next;
    }
    setEnvironment(preloadVariable, libraries);
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

void addRunCommand(CLI::App& app, const std::vector<std::string>& program) {
    CLI::App& command = *app.add_subcommand("run", "Start a program that finds the adapter through "
                                                   "hidapi: no root, no kernel, no hardware");
    command.footer("The program and its arguments come last, behind --:\n"
                   "  veltra-virtual-adapter run --model high-speed -- ./my-program its arguments");
    const auto settings = std::make_shared<AdapterSettings>();
    addAdapterOptions(command, *settings);
    command.callback([settings, program] {
        if (program.empty()) {
            throw CLI::RequiredError("-- PROGRAM");
        }
        for (const SettingText& setting : settingTexts()) {
            setEnvironment(setting.variable, setting.write(*settings));
        }
        preload(findPreloadLibrary());
        execute(program);
    });
}

} // namespace virtual_adapter
