// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"
#include "device/InputQueue.hpp"
#include "faults/FaultSchedule.hpp"
#include "faults/FrameFaults.hpp"
#include "model/Adapter.hpp"

#include "driver/UsbTransferProtocol.hpp"

#include <optional>

namespace virtual_adapter {

/// The adapter as its two interrupt endpoints show it: output reports in, input reports out.
///
/// It has no thread, no clock and no lock: whoever carries the reports serialises the calls and
/// says what time it is. Only a write ever makes input reports.
class AdapterLink {
public:
    using Time = InputQueue::Time;

    explicit AdapterLink(AdapterSettings chosen);

    /// Takes one output report, without a report identifier. A longer transfer counts as several
    /// reports, as it arrives in several USB packets. Returns false when the adapter does not take
    /// it: it has left the bus, or its endpoint is stalled.
    bool writeReport(const Bytes& report, Time now);

    /// When the reports written so far have crossed the bus.
    [[nodiscard]] Time outputArrival() const { return input.outputArrival(); }

    /// The oldest input report, once its time has come: full size, padded with zeros.
    std::optional<Bytes> takeInputReport(Time now) { return input.take(now); }

    /// When the oldest input report's time comes; nothing while there is none.
    [[nodiscard]] std::optional<Time> nextInputDue() const { return input.nextDue(); }

    /// How many input reports are waiting to be taken.
    [[nodiscard]] size_t inputReportCount() const { return input.size(); }

    /// Whether the adapter can be found. Unplugging and boot mode make it leave for good; input
    /// reports whose time has not come by then never come.
    [[nodiscard]] bool isOnBus() const { return !unplugged && !adapter.inBootMode(); }

private:
    bool takePacket(const Bytes& packet, Time now);
    /// Returns false when a fault keeps the request from the adapter.
    bool carryOutRequest();
    void send(const std::vector<OutgoingFrame>& frames);

    const AdapterSettings settings;
    Adapter adapter;
    FaultSchedule faults;
    FrameFaults frameFaults;
    UsbTransferProtocol protocol;
    InputQueue input;
    Frame request;
    bool unplugged = false;
    bool stalled = false;
};

} // namespace virtual_adapter
