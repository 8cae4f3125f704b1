// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/ReportLink.hpp"
#include "replay/Recording.hpp"

#include "driver/UsbTransferProtocol.hpp"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace virtual_adapter {

/// An adapter that answers from a recording. A request is one of the recording's when command and
/// payload are the same; the next one is preferred. Its answers carry the identifier that the
/// program has chosen, and come behind the request that they followed.
class ReplayLink : public ReportLink {
public:
    using Time = ReportLink::Time;

    /// @p whenDifferent is told about the first request that was not recorded. From then on the
    /// adapter is gone. The recording must outlive the link.
    ReplayLink(const Recording& played, std::function<void(const std::string&)> whenDifferent);

    bool writeReport(const Bytes& report, Time now) override;
    std::optional<Bytes> takeInputReport(Time now) override;
    [[nodiscard]] std::optional<Time> nextInputDue() const override;
    std::string tell(const std::string& line, Time now) override;
    [[nodiscard]] bool isOnBus() const override { return !hasLeft; }

    /// The first recorded request that has not been sent, in words; empty when all have.
    [[nodiscard]] std::string missing() const;

private:
    bool answer(const Frame& sent);
    [[nodiscard]] std::optional<size_t> find(const Frame& sent) const;
    void sendDue();
    void differ(const Frame& sent);

    const Recording& recording;
    std::function<void(const std::string&)> tellDifference;
    UsbTransferProtocol framing;
    Frame request;
    /// The identifiers that the program has given those of the recorded requests that it has sent.
    std::vector<std::optional<uint16_t>> identifiers;
    std::vector<bool> isDone;
    /// All messages before it are done.
    size_t firstMessage = 0;
    /// Behind the last one of the recording that has been sent.
    size_t furthest = 0;
    std::deque<Bytes> reports;
    /// Behind the one that was sent last.
    size_t next = 0;
    size_t sentRequests = 0;
    bool hasLeft = false;
};

} // namespace virtual_adapter
