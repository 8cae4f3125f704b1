// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "watch/Plan.hpp"

#include "Words.hpp"
#include "buses/Gpio.hpp"

namespace veltra {

namespace {

const Named<NotificationKind> kinds[] = {{"ibi", NotificationKind_I3cIbi},
                                         {"hotjoin", NotificationKind_I3cHotJoin},
                                         {"gpio", NotificationKind_Gpio},
                                         {"uart", NotificationKind_UartRx}};

} // namespace

Plan::Plan(const Watch& wanted) {
    for (const std::string& kind : wanted.kinds) {
        shown.push_back(parseName("kind", kind, kinds));
    }
    for (const std::string& word : wanted.edges) {
        const Assignment edge = parseAssignment(word, "PIN=EDGE");
        edges.push_back({Gpio::parsePin(edge.name), edge.value});
    }
    if (!wanted.idleTimeout.empty()) {
        patience = std::chrono::milliseconds(parseSeconds(wanted.idleTimeout));
    }
    if (!wanted.count.empty()) {
        count = parseNumber("count", wanted.count, 1, UINT64_MAX);
    }
}

} // namespace veltra
