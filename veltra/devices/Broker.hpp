// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "devices/Switchboard.hpp"
#include "usbip/FileDescriptor.hpp"

#include <poll.h>

#include <list>
#include <optional>
#include <utility>
#include <vector>

namespace devices {

/// Serves the programs that connect, all on the thread that calls `run`, one request after the
/// other. Whatever a program does, the others are served.
class Broker {
public:
    /// @p listeningSocket does not block. The switchboard must outlive the broker.
    Broker(Switchboard& itsSwitchboard, usbip::FileDescriptor listeningSocket)
        : switchboard(itsSwitchboard), listener(std::move(listeningSocket)) {}

    /// Returns when @p stop becomes readable. Throws std::system_error when the system cannot wait
    /// any more.
    void run(const usbip::FileDescriptor& stop);

private:
    struct Client {
        explicit Client(usbip::FileDescriptor itsSocket) : socket(std::move(itsSocket)) {}

        usbip::FileDescriptor socket;
        Bytes input{};
        Bytes output{};
        std::optional<Id> opened{};
        bool isGone = false;

        /// Whether nothing more is said with it: it is somebody's descriptor.
        [[nodiscard]] bool isDevice() const { return opened && output.empty(); }
        [[nodiscard]] short awaited() const;
    };

    void serve(Client& client, short events);
    void receive(Client& client);
    void answer(Client& client);
    static void send(Client& client);
    void accept();
    /// Makes room by closing the connection that has been about to say something for longest.
    bool dropOldest();
    void removeGone();

    Switchboard& switchboard;
    usbip::FileDescriptor listener;
    std::list<Client> clients;
    bool mayAccept = true;
};

} // namespace devices
