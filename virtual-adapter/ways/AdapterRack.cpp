// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/AdapterRack.hpp"

#include "socket/messages.hpp"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace virtual_adapter {

namespace {

std::string tellHosted(HostedAdapter& adapter, const std::string& stimulus,
                       HostedAdapter::Time now) {
    if (stimulus == "reset") {
        adapter.reset();
    } else if (stimulus == "unplug") {
        adapter.unplug(now);
    } else if (stimulus == "plug") {
        adapter.plug();
    } else {
        return adapter.tell(stimulus, now);
    }
    return {};
}

} // namespace

AdapterRack::AdapterRack(const std::vector<AdapterSettings>& chosen) {
    for (const AdapterSettings& settings : chosen) {
        requireRoomFor(settings);
        addHosted(hosted.emplace_back(settings));
    }
}

void AdapterRack::add(const AdapterSettings& settings, HostedAdapter::MakeLink switchOn) {
    requireRoomFor(settings);
    addHosted(hosted.emplace_back(settings, std::move(switchOn)));
}

void AdapterRack::addHosted(HostedAdapter& adapter) {
    addTold(adapter.adapterSettings().serialNumber,
            [&adapter](const std::string& stimulus, HostedAdapter::Time now) {
                return tellHosted(adapter, stimulus, now);
            });
}

void AdapterRack::requireRoomFor(const AdapterSettings& settings) const {
    if (hosted.size() == maxAdapters) {
        throw std::invalid_argument("at most " + std::to_string(maxAdapters) +
                                    " adapters stand side by side");
    }
    for (const HostedAdapter& other : hosted) {
        if (other.adapterSettings().serialNumber == settings.serialNumber) {
            throw std::invalid_argument("two adapters have the serial number " +
                                        settings.serialNumber);
        }
    }
}

HostedAdapter* AdapterRack::find(unsigned number) {
    if (number == 0 || number > hosted.size()) {
        return nullptr;
    }
    return &*std::next(hosted.begin(), static_cast<std::ptrdiff_t>(number) - 1);
}

std::string AdapterRack::tell(const std::string& serialNumber, const std::string& stimulus,
                              HostedAdapter::Time now) {
    const auto found = std::find_if(told.begin(), told.end(), [&](const Told& adapter) {
        return serialNumber.empty() || adapter.serialNumber == serialNumber;
    });
    if (found == told.end()) {
        return "no adapter has the serial number " + serialNumber;
    }
    if (serialNumber.empty() && told.size() > 1) {
        return "there are several adapters; say which: --serial TEXT";
    }
    try {
        return found->tell(stimulus, now);
    } catch (const std::exception& error) {
        // A board whose files are gone by now.
        return error.what();
    }
}

} // namespace virtual_adapter
