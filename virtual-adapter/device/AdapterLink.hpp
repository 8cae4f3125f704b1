// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/FactoryBoard.hpp"
#include "faults/FaultInjector.hpp"
#include "model/Adapter.hpp"
#include "model/AdapterVariant.hpp"

#include "driver/UsbTransferProtocol.hpp"

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace virtual_adapter {

/// The adapter as its two interrupt endpoints show it: output reports in, input reports out.
///
/// It has no thread, no clock and no lock: whoever carries the reports serialises the calls and
/// says what time it is. Only a write ever makes input reports.
class AdapterLink {
public:
    using Time = std::chrono::steady_clock::time_point;

    AdapterLink(const AdapterVariant& variant, const std::string& serialNumber,
                const Fault& fault = {}, Board board = factoryBoard());

    /// Takes one output report, without a report identifier. A longer transfer counts as several
    /// reports, as it arrives in several USB packets. Returns false when the adapter does not take
    /// it: it has left the bus, or its endpoint is stalled.
    bool writeReport(const Bytes& report, Time now);

    /// The oldest input report, once its time has come: full size, padded with zeros.
    std::optional<Bytes> takeInputReport(Time now);

    /// When the oldest input report's time comes; nothing while there is none.
    [[nodiscard]] std::optional<Time> nextInputDue() const;

    /// How many input reports are waiting to be taken.
    [[nodiscard]] size_t inputReportCount() const { return inputReports.size(); }

    /// Whether the adapter can be found. Unplugging and boot mode make it leave for good; input
    /// reports whose time has not come by then never come.
    [[nodiscard]] bool isOnBus() const { return !unplugged && !adapter.inBootMode(); }

private:
    struct InputReport {
        Bytes bytes;
        Time due;
    };

    bool takePacket(const Bytes& packet, Time now);
    void send(const OutgoingFrame& outgoing, Time now);
    void forgetReportsAfter(Time now);

    Adapter adapter;
    FaultInjector faults;
    UsbTransferProtocol protocol;
    Frame request;
    std::deque<InputReport> inputReports;
    bool unplugged = false;
};

} // namespace virtual_adapter
