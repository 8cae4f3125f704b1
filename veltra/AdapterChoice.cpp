// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "AdapterChoice.hpp"

#include "Words.hpp"
#include "system/UsbTree.hpp"

#include <veltrasdk/VeltraSDK.hpp>

namespace veltra {

namespace {

Failure notFound(const std::string& device) {
    if (device.empty()) {
        return Failure(ExitStatus::NoAdapter, "no-adapter", "no adapter is plugged in")
            .advise("Look closer: veltra doctor; or try it without one: veltra --virtual list");
    }
    return Failure(ExitStatus::NoAdapter, "no-adapter",
                   "no adapter has the serial number or path " + quoted(device))
        .advise("See which there are: veltra list");
}

Failure notPermitted(const VeltraSDK_AdapterInfo& adapter) {
    return Failure(ExitStatus::NoAdapter, "permission",
                   std::string("the adapter at ") + adapter.path + " may not be opened by you")
        .advise("See what to type: veltra doctor");
}

Failure several(const std::vector<VeltraSDK_AdapterInfo>& adapters) {
    std::vector<std::string> names;
    names.reserve(adapters.size());
    for (const VeltraSDK_AdapterInfo& adapter : adapters) {
        names.emplace_back(adapter.serialNumber[0] == 0 ? adapter.path : adapter.serialNumber);
    }
    return Failure(ExitStatus::NoAdapter, "ambiguous", "several adapters are plugged in")
        .advise("Choose one with -d: " + join(names, ", "));
}

} // namespace

std::string modelOf(const VeltraSDK_AdapterInfo& adapter) {
    return adapter.reportSize > 64 ? "high-speed" : "full-speed";
}

VeltraSDK_AdapterInfo chooseAdapter(const std::string& device) {
    const std::vector<VeltraSDK_AdapterInfo> adapters = VeltraSDK::adapters();
    const VeltraSDK_AdapterInfo* chosen = nullptr;
    for (const VeltraSDK_AdapterInfo& adapter : adapters) {
        if (!device.empty() && (device == adapter.serialNumber || device == adapter.path)) {
            chosen = &adapter;
        }
    }
    if (device.empty() && adapters.size() == 1) {
        chosen = &adapters.front();
    }
    if (chosen == nullptr) {
        throw device.empty() && !adapters.empty() ? several(adapters) : notFound(device);
    }
    if (!chosen->accessible) {
        throw notPermitted(*chosen);
    }
    return *chosen;
}

Failure whyNotOpened(const VeltraSDK_AdapterInfo& adapter) {
    const Roots roots;
    std::string holder;
    if (const auto device = findUsbDevice(roots, adapter.path)) {
        holder = holderOf(roots, device->node);
    }
    return Failure(ExitStatus::NoAdapter, "busy",
                   std::string("the adapter at ") + adapter.path + " is in use" +
                       (holder.empty() ? "" : " by " + holder))
        .advise("One program at a time can have it: end the other one");
}

} // namespace veltra
