#include "cli/attach.hpp"
#include "cli/run.hpp"
#include "cli/serve.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace {

/// As env(1) refuses its own: the programs that `run` starts seldom end with it.
constexpr int refusedCommandLine = 125;

int runCommandLine(int argc, char** argv) {
    // What follows -- is another program's command line.
    char** const end = argv + argc;
    const bool runs = argc > 1 && argv[1] == std::string("run");
    char** const separator = runs ? std::find(argv, end, std::string("--")) : end;
    const std::vector<std::string> program(std::min(separator + 1, end), end);

    CLI::App app("A stand-in for the adapter: programs run, and are tested, without hardware",
                 "veltra-virtual-adapter");
    app.set_version_flag("--version", VELTRASDK_VERSION);
    app.require_subcommand(1);
    virtual_adapter::addRunCommand(app, program);
    virtual_adapter::addServeCommand(app);
    virtual_adapter::addAttachCommand(app);

    try {
        app.parse(static_cast<int>(separator - argv), argv);
    } catch (const CLI::RuntimeError& failure) {
        return failure.get_exit_code();
    } catch (const CLI::ParseError& error) {
        // Asking for help or the version ends the parsing too, with success.
        return app.exit(error) == 0 ? 0 : refusedCommandLine;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runCommandLine(argc, argv);
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "veltra-virtual-adapter: %s\n", error.what());
        return 1;
    }
}
