// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"
#include "device/InputQueue.hpp"
#include "device/ReportLink.hpp"
#include "faults/FaultSchedule.hpp"
#include "faults/FrameFaults.hpp"
#include "model/Adapter.hpp"

#include "driver/UsbTransferProtocol.hpp"

#include <memory>
#include <optional>
#include <string>

namespace virtual_adapter {

/// The adapter that the model is, with the faults that were asked for.
class AdapterLink : public ReportLink {
public:
    explicit AdapterLink(AdapterSettings chosen);

    /// A longer transfer counts as several reports, as it arrives in several USB packets. The
    /// adapter does not take it when it has left the bus, or its endpoint is stalled.
    bool writeReport(const Bytes& report, Time now) override;

    [[nodiscard]] Time outputArrival() const override { return input.outputArrival(); }

    std::string tell(const std::string& line, Time now) override;

    std::optional<Bytes> takeInputReport(Time now) override { return input.take(now); }

    [[nodiscard]] std::optional<Time> nextInputDue() const override { return input.nextDue(); }

    /// How many input reports are waiting to be taken.
    [[nodiscard]] size_t inputReportCount() const { return input.size(); }

    /// Unplugging and boot mode make it leave for good.
    [[nodiscard]] bool isOnBus() const override { return !unplugged && !adapter->inBootMode(); }

private:
    std::string apply(const Stimulus& stimulus, Time now);
    /// As switched on: the board as described, nothing sent, no request counted.
    void reset();
    void runSchedule(Time now);
    bool takePacket(const Bytes& packet, Time now);
    /// Returns false when a fault keeps the request from the adapter.
    bool carryOutRequest();
    void send(const std::vector<OutgoingFrame>& frames);

    const AdapterSettings settings;
    std::unique_ptr<Adapter> adapter;
    FaultSchedule faults;
    FrameFaults frameFaults;
    UsbTransferProtocol protocol;
    InputQueue input;
    Frame request;
    bool unplugged = false;
    bool stalled = false;
    /// The request for which the schedule has been looked at.
    size_t lastScheduled = 0;
};

} // namespace virtual_adapter
