// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterLink.hpp"
#include "device/AdapterSettings.hpp"
#include "device/UsbControl.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace virtual_adapter {

/// One transfer that a host asks for.
struct UsbTransfer {
    /// The host's name for it, unique among its pending transfers.
    uint64_t id = 0;
    /// With the direction in bit 7; the control endpoint is 0x00 and 0x80.
    uint8_t endpointAddress = 0;
    /// Of a control transfer.
    SetupPacket setup;
    /// How many bytes the host takes, of a transfer towards it.
    size_t length = 0;
    /// What the host sends, of a transfer towards the device.
    Bytes data;
};

enum class UsbStatus {
    Completed,
    /// The endpoint refuses, or does not exist.
    Stalled,
    /// The device sent more than the host takes.
    Overflowed,
    /// The device has left the bus.
    Unplugged,
};

/// How a transfer ended.
struct UsbResult {
    uint64_t id;
    UsbStatus status;
    /// Bytes that crossed the bus, in either direction.
    size_t actualLength;
    /// What the device sent.
    Bytes data;
};

/// The virtual adapter as a USB HID device: a control endpoint and an interrupt endpoint each way.
///
/// It has no input or output of its own, no thread, no clock and no lock. Whoever plugs it into a
/// host calls it from one thread at a time and says what time it is. Results are handed over
/// inside `submit`, `serve`, `acceptOutput` and `unplug`; their receiver must not call the device
/// back. A device that has left its bus never returns: plugging in again is a new object.
class UsbDevice {
public:
    using Time = AdapterLink::Time;

    UsbDevice(const AdapterSettings& chosen, std::function<void(UsbResult)> receiver);

    /// Starts a transfer. It ends at once or stays pending until the device can serve it.
    void submit(UsbTransfer transfer, Time now);

    /// Takes a pending transfer back, which then has no result. Returns whether it was pending.
    bool cancel(uint64_t id);

    /// Ends the transfers whose time has come.
    void serve(Time now);

    /// When to call `serve` although nothing was submitted; nothing while there is no need.
    [[nodiscard]] std::optional<Time> nextDue() const;

    /// While false, output transfers stay pending, as at an endpoint that answers NAK for ever.
    void acceptOutput(bool accept, Time now);

    /// The adapter behind the device begins anew, as switched on; the host's transfers stay.
    void reset();

    /// Lets something else happen to the adapter, as `AdapterLink::tell`.
    std::string tell(const std::string& stimulus, Time now);

    /// Leaves the bus; every pending transfer ends.
    void unplug();

    [[nodiscard]] bool isOnBus() const { return !unplugged && link->isOnBus(); }

private:
    void submitControl(const UsbTransfer& transfer, Time now);
    /// A request may have halted an endpoint, or taken both away.
    void stallUnusableEndpoints();
    bool serveOneInput(Time now);
    bool serveOneOutput(Time now);
    [[nodiscard]] bool hasRoomForAnswers() const;
    [[nodiscard]] bool isUsable(uint8_t endpointAddress) const;
    void endAll(std::deque<UsbTransfer>& transfers, UsbStatus status);
    void end(const UsbTransfer& transfer, UsbStatus status, size_t actualLength = 0,
             Bytes data = {});

    const AdapterSettings settings;
    std::unique_ptr<AdapterLink> link;
    UsbControl control;
    std::function<void(UsbResult)> completed;
    std::deque<UsbTransfer> pendingInput;
    std::deque<UsbTransfer> pendingOutput;
    bool acceptsOutput = true;
    bool unplugged = false;
};

} // namespace virtual_adapter
