// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"
#include "model/Frame.hpp"

#include "capture/readCapture.hpp"

#include <cstddef>
#include <optional>
#include <vector>

namespace virtual_adapter {

struct RecordedRequest {
    Frame frame;
    /// The adapter did not take it.
    bool isRefused = false;
    /// The status of its response, once there is one.
    std::optional<uint16_t> status;
};

/// A response or a notification.
struct RecordedMessage {
    Frame frame;
    /// How many requests had been sent before it.
    size_t requestsBefore;
    /// The request that it answers; nothing for a notification, and for what answers none.
    std::optional<size_t> answers;
};

/// What was said with one adapter, however often it was opened.
struct Recording {
    AdapterSettings settings;
    std::vector<RecordedRequest> requests;
    std::vector<RecordedMessage> messages;
    /// Set when the adapter left the bus and did not come back: how many requests it had taken.
    std::optional<size_t> goneAfter;
};

/// One for each adapter that something was said with.
std::vector<Recording> recordingsOf(const capture::Capture& capture);

} // namespace virtual_adapter
