// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "ways/HostedAdapter.hpp"

#include <functional>
#include <list>
#include <string>
#include <utility>
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

    /// Returns what is wrong with the stimulus; nothing once it is done.
    using Teller = std::function<std::string(const std::string& stimulus, HostedAdapter::Time now)>;

    /// One more that can be told, opened here or plugged in elsewhere.
    void addTold(const std::string& serialNumber, Teller teller) {
        told.push_back({serialNumber, std::move(teller)});
    }

    /// Null when there is none: the first is 1.
    HostedAdapter* find(unsigned number);

    /// One that no opening has had.
    HostedAdapter::Session nextSession() { return ++lastSession; }

    /// Lets the adapter of that serial number, the only one if it is empty, feel @p stimulus: a
    /// line of words. Returns what is wrong with it; nothing once it is done.
    std::string tell(const std::string& serialNumber, const std::string& stimulus,
                     HostedAdapter::Time now);

private:
    struct Told {
        std::string serialNumber;
        Teller tell;
    };

    void requireRoomFor(const AdapterSettings& settings) const;
    void addHosted(HostedAdapter& adapter);

    std::list<HostedAdapter> hosted;
    std::vector<Told> told;
    HostedAdapter::Session lastSession = 0;
};

} // namespace virtual_adapter
