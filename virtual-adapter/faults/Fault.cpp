// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/Fault.hpp"

namespace virtual_adapter {

const std::vector<FaultName>& faultNames() {
    static const std::vector<FaultName> names{{"none", FaultKind::None},
                                              {"late-response", FaultKind::LateResponse},
                                              {"lost-response", FaultKind::LostResponse},
                                              {"wrong-identifier", FaultKind::WrongIdentifier},
                                              {"short-frame", FaultKind::ShortFrame},
                                              {"unplug", FaultKind::Unplug},
                                              {"stall", FaultKind::Stall},
                                              {"over-long-count", FaultKind::OverLongCount},
                                              {"notification-storm", FaultKind::NotificationStorm},
                                              {"no-permission", FaultKind::NoPermission},
                                              {"lost-reports", FaultKind::LostReports}};
    return names;
}

bool isHostFault(FaultKind kind) {
    return kind == FaultKind::NoPermission || kind == FaultKind::LostReports;
}

} // namespace virtual_adapter
