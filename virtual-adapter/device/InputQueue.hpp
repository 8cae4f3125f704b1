// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

namespace virtual_adapter {

/// The reports on their way to the host, each with the time at which it is there. A report takes
/// the time of a USB frame in either direction, which is none unless told otherwise.
class InputQueue {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::microseconds;

    /// What a message is to the queue.
    enum class Message { Response, Notification };

    explicit InputQueue(Duration timeOfFrame) : frame(timeOfFrame) {}

    /// The host writes an output report.
    void hostWrites(Time now);

    /// What is sent from now on leaves no earlier.
    void leaveNotBefore(Time now) { outputArrives = std::max(outputArrives, now); }

    /// When the last output report has reached the adapter.
    [[nodiscard]] Time outputArrival() const { return outputArrives; }

    /// Sends the reports of one message, @p delay later than it could.
    void send(std::vector<Bytes> packets, Message message, Duration delay);

    /// The oldest report, once its time has come.
    std::optional<Bytes> take(Time now);

    /// When the oldest report's time comes; nothing while there is none.
    [[nodiscard]] std::optional<Time> nextDue() const;

    [[nodiscard]] size_t size() const { return reports.size(); }

    /// From now on a report takes at least @p timeOfFrame, and a host that is one response behind
    /// stays so: a response behind one that the host had not taken comes after the host has written
    /// its next request. To a host that writes none it comes after a pause.
    ///
    /// Frames of a real adapter have that effect on a host which is quicker than they are. Here it
    /// must not hang on how quick the host's machine is.
    void keepHostBehind(Duration timeOfFrame);

    /// That pause.
    static constexpr std::chrono::milliseconds pause{50};

    /// The adapter leaves the bus at once: what is not there yet never comes.
    void forgetAfter(Time now);

    /// The adapter says its last words: they are there at once, up to what has been delayed.
    void hurry(Time now);

private:
    struct Report {
        Bytes bytes;
        Time due;
        bool isResponse;
        bool isDelayed;
        /// Until the response before it is taken, and then the host writes.
        bool waits;
    };
    using Reports = std::deque<Report>;

    /// The first report of the oldest response, or the end.
    Reports::iterator oldestResponse();

    Reports reports;
    Duration frame;
    bool keepsHostBehind = false;
    Time outputArrives{};
    Time lastDue{};
};

} // namespace virtual_adapter
