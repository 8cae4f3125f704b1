#pragma once

namespace CLI {
class App;
}

namespace virtual_adapter {

/// Adds `serve`, which exports the adapter over USB/IP until the process is told to end.
void addServeCommand(CLI::App& app);

} // namespace virtual_adapter
