// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/HostedAdapter.hpp"

#include "device/AdapterLink.hpp"

#include <utility>

namespace virtual_adapter {

namespace {

/// What hidapi's libusb back end keeps: it drops the oldest report when one more arrives.
constexpr size_t hidapiQueueLength = 32;

/// With more reports than these unread, the adapter takes no more requests: a program that never
/// reads must not take all memory.
constexpr size_t maxUnreadReports = 65'536;

HostedAdapter::MakeLink linkMaker(const AdapterSettings& settings) {
    return [settings] { return std::make_unique<AdapterLink>(settings); };
}

} // namespace

HostedAdapter::HostedAdapter(const AdapterSettings& chosen)
    : HostedAdapter(chosen, linkMaker(chosen)) {}

HostedAdapter::HostedAdapter(const AdapterSettings& chosen, MakeLink switchOn)
    : settings(chosen), makeLink(std::move(switchOn)), link(makeLink()) {}

bool HostedAdapter::open(Session session) {
    if (openSession != 0 || !isAccessible() || !isOnBus()) {
        return false;
    }
    openSession = session;
    hasLeft = false;
    return true;
}

void HostedAdapter::close(Time now) {
    // What comes due later is for whoever opens next.
    receive(now);
    unread.clear();
    openSession = 0;
}

bool HostedAdapter::write(const Bytes& report, Time now) {
    if (!isInReach() || unread.size() > maxUnreadReports) {
        return false;
    }
    const bool written = link->writeReport(report, now);
    receive(now);
    hasLeft = hasLeft || !isOnBus();
    return written;
}

std::optional<Bytes> HostedAdapter::read(Time now) {
    receive(now);
    if (unread.empty()) {
        return std::nullopt;
    }
    Bytes report = std::move(unread.front());
    unread.pop_front();
    return report;
}

std::string HostedAdapter::tell(const std::string& stimulus, Time now) {
    const std::string complaint = link->tell(stimulus, now);
    receive(now);
    return complaint;
}

void HostedAdapter::reset() {
    link = makeLink();
    unread.clear();
    isPluggedIn = true;
}

void HostedAdapter::unplug(Time now) {
    receive(now);
    isPluggedIn = false;
    hasLeft = true;
}

void HostedAdapter::plug() {
    if (!isOnBus()) {
        const std::deque<Bytes> kept = std::move(unread);
        reset();
        unread = kept;
    }
}

void HostedAdapter::receive(Time now) {
    if (!isPluggedIn) {
        return;
    }
    while (auto report = link->takeInputReport(now)) {
        unread.push_back(std::move(*report));
        if (settings.hasFault(FaultKind::LostReports) && unread.size() > hidapiQueueLength) {
            unread.pop_front();
        }
    }
}

} // namespace virtual_adapter
