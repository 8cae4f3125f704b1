#pragma once

#include "attach/UsbIpProtocol.hpp"
#include "device/AdapterSettings.hpp"

#include <memory>
#include <optional>

namespace virtual_adapter {

/// A place where hosts find one adapter. It holds for one host at a time.
struct UsbIpPort {
    AdapterSettings settings;
    bool isTaken = false;
};

/// One host's connection to a port: bytes in, bytes out, without any I/O of its own.
///
/// Importing the device plugs a new adapter in, and the end of the connection pulls it out. The
/// caller serialises the calls of all connections to one port, and says what time it is.
class UsbIpConnection {
public:
    using Time = UsbDevice::Time;

    explicit UsbIpConnection(UsbIpPort& exportedPort) : port(exportedPort) {}
    ~UsbIpConnection();
    UsbIpConnection(const UsbIpConnection&) = delete;
    UsbIpConnection& operator=(const UsbIpConnection&) = delete;

    /// Plugs the adapter in without a request for it, as the kernel expects that is handed its end
    /// of a connection. The port must be free.
    void plugIn();

    /// Whether the host has the adapter.
    [[nodiscard]] bool isPluggedIn() const { return device != nullptr; }

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
    /// the host has broken the protocol, or the adapter has left the bus.
    [[nodiscard]] bool isOver() const;

private:
    void answer(const UsbIpListRequest& request);
    void answer(const UsbIpImportRequest& request);
    void carryOut(UsbIpSubmit command, Time now);
    void carryOut(const UsbIpUnlink& command, Time now);
    void send(const Bytes& message);

    UsbIpPort& port;
    UsbIpReader reader;
    Bytes outgoing;
    std::unique_ptr<UsbDevice> device;
    size_t pendingCommands = 0;
    /// For another reason than that the adapter has left the bus.
    bool over = false;
};

} // namespace virtual_adapter
