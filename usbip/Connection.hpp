// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/Protocol.hpp"

#include <memory>
#include <optional>

namespace usbip {

/// One host's connection to an exported device: bytes in, bytes out, without any I/O of its own.
///
/// Importing the device plugs it in anew, and the end of the connection pulls it out. The caller
/// serialises the calls of all connections to one device, and says what time it is.
class Connection {
public:
    explicit Connection(ExportedDevice& exportedDevice) : exported(exportedDevice) {}
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Plugs the device in without a request for it, as the kernel expects that is handed its end
    /// of a connection. No other host may have it.
    void plugIn();

    /// Whether the host has the device.
    [[nodiscard]] bool isPluggedIn() const { return device != nullptr; }

    /// Whether the host has asked anything of the device that it has.
    [[nodiscard]] bool isInUse() const { return used; }

    void receive(const uint8_t* data, size_t size, Time now);

    /// Sends the host what has come due.
    void serve(Time now);

    /// When to call `serve` although nothing was received; nothing while there is no need.
    [[nodiscard]] std::optional<Time> nextDue() const;

    /// What the host has yet to be sent. The caller removes what it has sent.
    [[nodiscard]] Bytes& output() { return outgoing; }

    /// False while the host does not read what it asked for.
    [[nodiscard]] bool wantsInput() const;

    /// Whether the connection is to be closed once the output is sent: it has served its purpose,
    /// the host has broken the protocol, or the device has left the bus.
    [[nodiscard]] bool isOver() const;

private:
    void answer(const ListRequest& request);
    void answer(const ImportRequest& request);
    void carryOut(Submit command, Time now);
    void carryOut(const Unlink& command, Time now);
    void send(const Bytes& message);

    ExportedDevice& exported;
    Reader reader;
    Bytes outgoing;
    std::unique_ptr<Device> device;
    size_t pendingCommands = 0;
    bool used = false;
    /// For another reason than that the device has left the bus.
    bool over = false;
};

} // namespace usbip
