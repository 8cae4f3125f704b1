// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/Connection.hpp"
#include "usbip/FileDescriptor.hpp"
#include "usbip/PollTask.hpp"

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <optional>
#include <utility>

namespace usbip {

/// What a server grants its hosts, and the clock that measures it.
struct ServerLimits {
    /// Hosts at a time that do not have the device. For one more the oldest is hung up on.
    size_t maxCallers = 16;
    /// For a host to say what it wants, to use the device once it has taken it, and to take the
    /// last bytes when it is hung up on.
    std::chrono::milliseconds patience{10'000};
    std::function<Time()> clock = std::chrono::steady_clock::now;
};

/// Serves one device to the hosts that connect, all on the thread that calls `run`. Whatever a host
/// does, the others are served.
class Server {
public:
    explicit Server(ExportedDevice exportedDevice = {}, ServerLimits granted = {})
        : exported(std::move(exportedDevice)), limits(std::move(granted)) {}

    /// Serves every host that connects to @p listeningSocket. Without one, `run` serves until the
    /// last host has gone.
    void listenOn(FileDescriptor listeningSocket) { listener = std::move(listeningSocket); }

    /// Plugs the device into the host at the other end of @p socket.
    void plugInto(FileDescriptor socket);

    /// Plugs another @p device, which no host can ask for, into the host at the other end of
    /// @p socket.
    void plugInto(FileDescriptor socket, ExportedDevice device);

    /// Looks after @p task too, which must outlive `run`.
    void lookAfter(PollTask& task) { beside = &task; }

    enum class End { Stopped, NothingLeft };

    /// Returns when @p stop becomes readable, or nothing is left to serve. Throws
    /// std::system_error when the system cannot wait for hosts any more.
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
    /// Hangs up on the caller that has been here longest. Returns false without any.
    bool hangUpOnOldestCaller();
    void receive(Host& host, Time now) const;
    static void send(Host& host);
    void removeFinishedHosts(Time now);

    ExportedDevice exported;
    std::list<ExportedDevice> others;
    const ServerLimits limits;
    PollTask* beside = nullptr;
    FileDescriptor listener;
    /// The oldest first.
    std::list<Host> hosts;
    /// When to look for new hosts again, after there was no descriptor for one.
    std::optional<Time> acceptAgain;
};

} // namespace usbip
