// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

#include <chrono>
#include <optional>
#include <string>

namespace virtual_adapter {

/// An adapter's two interrupt endpoints: output reports in, input reports out.
///
/// It has no thread, no clock and no lock: whoever carries the reports serialises the calls and
/// says what time it is. Only a write and a stimulus ever make input reports.
class ReportLink {
public:
    using Time = std::chrono::steady_clock::time_point;

    ReportLink() = default;
    virtual ~ReportLink() = default;
    ReportLink(const ReportLink&) = delete;
    ReportLink& operator=(const ReportLink&) = delete;

    /// Takes one output report, without a report identifier. Returns false when the adapter does
    /// not take it.
    virtual bool writeReport(const Bytes& report, Time now) = 0;

    /// When the reports written so far have crossed the bus; long ago where no time is kept.
    [[nodiscard]] virtual Time outputArrival() const { return {}; }

    /// The oldest input report, once its time has come: full size, padded with zeros.
    virtual std::optional<Bytes> takeInputReport(Time now) = 0;

    /// When the oldest input report's time comes; nothing while there is none.
    [[nodiscard]] virtual std::optional<Time> nextInputDue() const = 0;

    /// Lets something happen to the adapter between two requests: a line of words, as
    /// stimuli/Stimulus.hpp has them. Returns an empty text, or what is wrong with it.
    virtual std::string tell(const std::string& line, Time now) = 0;

    /// Whether the adapter can be found. Input reports whose time has not come when it leaves
    /// never come.
    [[nodiscard]] virtual bool isOnBus() const = 0;
};

} // namespace virtual_adapter
