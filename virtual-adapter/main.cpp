#include "attach.hpp"
#include "run.hpp"
#include "serve.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    // What follows -- is another program's command line.
    char** const end = argv + argc;
    char** const separator = std::find(argv, end, std::string("--"));
    const std::vector<std::string> program(std::min(separator + 1, end), end);

    CLI::App app("A stand-in for the adapter: programs run, and are tested, without hardware",
                 "veltra-virtual-adapter");
    app.set_version_flag("--version", VELTRASDK_VERSION);
    app.require_subcommand(1);
    virtual_adapter::addRunCommand(app, program);
    virtual_adapter::addServeCommand(app);
    virtual_adapter::addAttachCommand(app);

    try {
        CLI11_PARSE(app, static_cast<int>(separator - argv), argv);
    } catch (const std::runtime_error& error) {
        std::cerr << "veltra-virtual-adapter: " << error.what() << std::endl;
        return 1;
    }
    return 0;
}
