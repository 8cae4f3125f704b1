// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/Uart.hpp"

#include <veltrasdk/notification.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace veltra {

/// What is to be watched, as it was typed.
struct Watch {
    std::vector<std::string> kinds;
    std::string count;
    std::string idleTimeout;
    bool initialState = false;
    std::vector<std::string> edges;
    UartSettings uart;

    [[nodiscard]] bool names(const char* kind) const {
        return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
    }
    [[nodiscard]] bool wantsPins() const {
        return names("gpio") || names("uart") || !edges.empty();
    }
    [[nodiscard]] bool wantsI3c() const { return names("ibi") || names("hotjoin"); }
};

/// A pin whose interrupt is armed meanwhile.
struct Edge {
    uint8_t pin;
    std::string trigger;
};

/// What was typed, understood.
struct Plan {
    explicit Plan(const Watch& wanted);

    [[nodiscard]] bool shows(NotificationKind kind) const {
        return shown.empty() || std::find(shown.begin(), shown.end(), kind) != shown.end();
    }

    std::vector<NotificationKind> shown;
    std::vector<Edge> edges;
    std::optional<std::chrono::milliseconds> patience;
    std::optional<uint64_t> count;
};

} // namespace veltra
