// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "ways/HostedAdapter.hpp"

#include <list>
#include <string>
#include <vector>

namespace virtual_adapter {

/// The adapters that one process is, side by side.
class AdapterRack {
public:
    /// Throws std::invalid_argument when two have the same serial number, or there are too many.
    explicit AdapterRack(const std::vector<AdapterSettings>& chosen);

    /// Adds one that @p switchOn switches on. Throws as the constructor.
    void add(const AdapterSettings& settings, HostedAdapter::MakeLink switchOn);

    [[nodiscard]] std::list<HostedAdapter>& adapters() { return hosted; }

    /// Null when there is none: the first is 1.
    HostedAdapter* find(unsigned number);

    /// One that no opening has had.
    HostedAdapter::Session nextSession() { return ++lastSession; }

    /// Lets the adapter of that serial number, the only one if it is empty, feel @p stimulus: a
    /// line of words. Returns what is wrong with it; nothing once it is done.
    std::string tell(const std::string& serialNumber, const std::string& stimulus,
                     HostedAdapter::Time now);

private:
    void requireRoomFor(const AdapterSettings& settings) const;

    std::list<HostedAdapter> hosted;
    HostedAdapter::Session lastSession = 0;
};

} // namespace virtual_adapter
