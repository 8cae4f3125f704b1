// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/FileDescriptor.hpp"
#include "usbip/PollTask.hpp"
#include "ways/SocketConnection.hpp"
#include "ways/WatchedPrograms.hpp"

#include <poll.h>
#include <sys/types.h>

#include <chrono>
#include <list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace virtual_adapter {

/// Serves the adapters of a rack to the programs that connect, all on the thread that calls `run`,
/// or whose loop it is a task of. Whatever a program does, the others are served.
class SocketServer : public usbip::PollTask {
public:
    using Time = HostedAdapter::Time;

    /// @p listeningSocket does not block. The rack must outlive the server.
    SocketServer(AdapterRack& adapters, usbip::FileDescriptor listeningSocket)
        : rack(adapters), listener(std::move(listeningSocket)) {}

    /// Makes `run` return @p patience after the last of these has ended: @p program, every program
    /// that has asked to hold the adapters, every connection.
    void endWithPrograms(pid_t program, std::chrono::milliseconds patience);

    /// Hands what @p messages yields, a pipe that does not block, to the next program that is
    /// answered.
    void passOn(usbip::FileDescriptor messages) { notices = std::move(messages); }

    /// Returns when @p stop becomes readable, or the programs have ended. Throws std::system_error
    /// when the system cannot wait any more.
    void run(const usbip::FileDescriptor& stop);

    void watch(std::vector<pollfd>& polled, Time now) override;
    [[nodiscard]] std::optional<Time> nextDue() const override;
    void react(const pollfd* events, Time now) override;

private:
    struct Client {
        Client(usbip::FileDescriptor itsSocket, pid_t itsProcess, AdapterRack& rack)
            : socket(std::move(itsSocket)), process(itsProcess), connection(rack) {}

        usbip::FileDescriptor socket;
        pid_t process;
        SocketConnection connection;
        bool isGone = false;
    };

    void accept(Time now);
    void receive(Client& client, bool gone, Time now);
    void answer(Time now);
    /// Returns whether there was something to say.
    bool answer(Client& client, Time now);
    static void send(Client& client, Time now);
    void addNotices(Bytes& output);
    void removeGone();
    [[nodiscard]] bool hasPrograms() const { return !programs.empty() || !clients.empty(); }

    AdapterRack& rack;
    usbip::FileDescriptor listener;
    usbip::FileDescriptor notices;
    std::list<Client> clients;
    WatchedPrograms programs;
    bool endsWithPrograms = false;
    std::chrono::milliseconds patienceWithoutPrograms{0};
    /// When the last program ended.
    std::optional<Time> deserted;
    /// When to look for new programs again, after there was no descriptor for one.
    std::optional<Time> acceptAgain;
};

} // namespace virtual_adapter
