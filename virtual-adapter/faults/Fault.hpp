// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace virtual_adapter {

/// What can be made to go wrong between the adapter and its host.
enum class FaultKind {
    None,
    /// The third response comes late.
    LateResponse,
    /// The third response never comes.
    LostResponse,
    /// The third response answers another request.
    WrongIdentifier,
    /// The third response ends inside its header.
    ShortFrame,
    /// The adapter is pulled out when the third request comes.
    Unplug,
    /// The adapter takes no report from the third request on.
    Stall,
    /// From the third request on, counts announce more than the frames carry.
    OverLongCount,
    /// Notifications flood the host around the third response.
    NotificationStorm,
    /// The host may list the adapter but not open it.
    NoPermission,
    /// The host keeps only so many reports that nobody has read.
    LostReports,
};

constexpr std::chrono::milliseconds defaultFaultDelay{1500};

struct Fault {
    FaultKind kind = FaultKind::None;
    /// How late a late response is.
    std::chrono::milliseconds delay = defaultFaultDelay;
};

/// The name users give a fault.
struct FaultName {
    const char* name;
    FaultKind kind;
};

const std::vector<FaultName>& faultNames();

/// Whether the fault is one of the host's, which the adapter itself cannot produce.
bool isHostFault(FaultKind kind);

} // namespace virtual_adapter
