#pragma once

#include "attach/FileDescriptor.hpp"
#include "attach/UsbIpConnection.hpp"

#include <list>
#include <optional>
#include <utility>

namespace virtual_adapter {

/// Serves the hosts that connect to one port, all on the thread that calls `run`. Whatever a host
/// does, the others are served.
class UsbIpServer {
public:
    explicit UsbIpServer(const AdapterSettings& settings) : port{settings} {}

    /// Serves every host that connects to @p listeningSocket. Without one, `run` serves until the
    /// last host has gone.
    void listenOn(FileDescriptor listeningSocket) { listener = std::move(listeningSocket); }

    /// Plugs the adapter into the host at the other end of @p socket.
    void plugInto(FileDescriptor socket);

    enum class End { Stopped, NothingLeft };

    /// Returns when @p stop becomes readable, or nothing is left to serve.
    End run(const FileDescriptor& stop);

private:
    using Time = UsbIpConnection::Time;

    struct Host {
        Host(FileDescriptor hostSocket, UsbIpPort& port)
            : socket(std::move(hostSocket)), connection(port) {}

        FileDescriptor socket;
        UsbIpConnection connection;
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

    UsbIpPort port;
    FileDescriptor listener;
    std::list<Host> hosts;
};

} // namespace virtual_adapter
