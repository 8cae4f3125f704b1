#pragma once

#include "usbip/Connection.hpp"
#include "usbip/FileDescriptor.hpp"

#include <list>
#include <optional>
#include <utility>

namespace usbip {

/// Serves one device to the hosts that connect, all on the thread that calls `run`. Whatever a host
/// does, the others are served.
class Server {
public:
    explicit Server(ExportedDevice exportedDevice) : exported(std::move(exportedDevice)) {}

    /// Serves every host that connects to @p listeningSocket. Without one, `run` serves until the
    /// last host has gone.
    void listenOn(FileDescriptor listeningSocket) { listener = std::move(listeningSocket); }

    /// Plugs the device into the host at the other end of @p socket.
    void plugInto(FileDescriptor socket);

    enum class End { Stopped, NothingLeft };

    /// Returns when @p stop becomes readable, or nothing is left to serve.
    End run(const FileDescriptor& stop);

private:
    struct Host {
        Host(FileDescriptor hostSocket, ExportedDevice& exported)
            : socket(std::move(hostSocket)), connection(exported) {}

        FileDescriptor socket;
        Connection connection;
        /// When to hang up, whatever has been said until then.
        std::optional<Time> deadline;
        bool isGone = false;
    };

    /// Waits until there is something to do, and does it. Returns false once @p stop is readable.
    bool serveOnce(const FileDescriptor& stop);
    [[nodiscard]] int millisecondsToWait(Time now) const;
    void accept(Time now);
    static void receive(Host& host, Time now);
    static void send(Host& host);
    void removeFinishedHosts(Time now);

    ExportedDevice exported;
    FileDescriptor listener;
    std::list<Host> hosts;
};

} // namespace usbip
