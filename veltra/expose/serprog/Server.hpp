// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "expose/serprog/Programmer.hpp"

#include "usbip/FileDescriptor.hpp"

#include <chrono>
#include <functional>
#include <list>
#include <optional>
#include <utility>
#include <vector>

namespace serprog {

using Time = std::chrono::steady_clock::time_point;

/// What a server grants its clients, and the clock that measures it.
struct ServerLimits {
    /// Clients that wait for their turn. More wait in the system's queue.
    size_t maxWaiting = 4;
    /// How long a client may be silent while another waits: before it has shown that it is one, and
    /// in its session, where a pause may have its reason and a broken write harms a flash.
    std::chrono::milliseconds patienceAtFirst{2'000};
    std::chrono::milliseconds patience{30'000};
    std::function<Time()> clock = std::chrono::steady_clock::now;
};

/// What else the server's thread waits for. `react` is called once the descriptor is readable; it
/// may throw, which ends the server.
struct Watched {
    int descriptor;
    std::function<void()> react;
};

/// Serves one flash to one client at a time, all on the thread that calls `run`. Whoever comes
/// meanwhile waits for its turn.
class Server {
public:
    Server(usbip::FileDescriptor listeningSocket, SpiBus& spiBus, std::vector<Watched> alsoWatched,
           ServerLimits granted = {})
        : listener(std::move(listeningSocket)),
          bus(spiBus),
          beside(std::move(alsoWatched)),
          limits(std::move(granted)) {}
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Serves for ever; or, with `once`, until the first client that said anything has gone.
    /// Throws what `react` throws, and std::system_error when the system cannot wait any more.
    void run(bool once);

private:
    struct Caller {
        usbip::FileDescriptor socket;
        bool hadToWait;
    };

    struct Client {
        Client(usbip::FileDescriptor itsSocket, SpiBus& spiBus, Time now)
            : socket(std::move(itsSocket)), programmer(spiBus), lastSeen(now) {}

        usbip::FileDescriptor socket;
        Programmer programmer;
        Time lastSeen;
        bool hasSpoken = false;
        /// It sends no more, and may still read.
        bool hasEnded = false;
        bool isGone = false;
    };

    void serveOnce();
    [[nodiscard]] int millisecondsToWait(Time now) const;
    [[nodiscard]] bool mayAccept() const {
        return !acceptAgain && waiting.size() < limits.maxWaiting;
    }
    [[nodiscard]] std::optional<Time> deadline() const;
    void accept(Time now);
    void takeNext(Time now);
    void serveClient(short events, Time now);
    void receive(Time now);
    void send(Time now);

    usbip::FileDescriptor listener;
    SpiBus& bus;
    std::vector<Watched> beside;
    const ServerLimits limits;
    std::optional<Client> client;
    /// The oldest first.
    std::list<Caller> waiting;
    /// When to look for clients again, after there was no descriptor for one.
    std::optional<Time> acceptAgain;
    /// There may be another command to carry out.
    bool busy = false;
    bool served = false;
};

} // namespace serprog
