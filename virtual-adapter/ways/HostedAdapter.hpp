// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"
#include "device/ReportLink.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace virtual_adapter {

/// The adapter as hidapi shows it to a program: one opener at a time, and a queue of reports that
/// the opener has not read. It has no thread, no clock and no lock.
class HostedAdapter {
public:
    using Time = ReportLink::Time;
    /// Switches the adapter on.
    using MakeLink = std::function<std::unique_ptr<ReportLink>()>;
    /// What tells one opening from the next; 0 is none.
    using Session = uint32_t;

    explicit HostedAdapter(const AdapterSettings& chosen);
    HostedAdapter(const AdapterSettings& chosen, MakeLink switchOn);

    [[nodiscard]] const AdapterSettings& adapterSettings() const { return settings; }

    /// Whether a program may read the adapter's strings and open it.
    [[nodiscard]] bool isAccessible() const { return !settings.hasFault(FaultKind::NoPermission); }

    [[nodiscard]] bool isOnBus() const { return isPluggedIn && link->isOnBus(); }

    /// Opens the adapter as @p session. Returns false while it is open already, as its interface is
    /// claimed, and when it is out of reach.
    bool open(Session session);

    [[nodiscard]] bool isOpenAs(Session session) const {
        return session != 0 && session == openSession;
    }

    /// Whether the opener can still reach the adapter: one that has been pulled out and is back
    /// must be opened anew.
    [[nodiscard]] bool isInReach() const { return !hasLeft && isOnBus(); }

    /// Drops the reports that nobody has read.
    void close(Time now);

    /// Writes one output report without a report identifier.
    bool write(const Bytes& report, Time now);

    /// When the reports written so far have reached the adapter.
    [[nodiscard]] Time outputArrival() const { return link->outputArrival(); }

    /// The oldest report that nobody has read.
    std::optional<Bytes> read(Time now);

    /// When a report comes that is not there yet.
    [[nodiscard]] std::optional<Time> nextDue() const { return link->nextInputDue(); }

    /// Lets something else happen to the adapter, as `AdapterLink::tell`.
    std::string tell(const std::string& stimulus, Time now);

    /// Begins anew, on the bus: as switched on.
    void reset();

    /// Pulls the adapter out; what has come before can still be read.
    void unplug(Time now);

    /// A fresh adapter, as that of `reset`, unless there is one on the bus.
    void plug();

private:
    void receive(Time now);

    AdapterSettings settings;
    MakeLink makeLink;
    std::unique_ptr<ReportLink> link;
    std::deque<Bytes> unread;
    Session openSession = 0;
    bool isPluggedIn = true;
    /// Since it was opened.
    bool hasLeft = false;
};

} // namespace virtual_adapter
