// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <veltrasdk/VeltraAsyncSDK.hpp>

#include "driver/CommunicationManager.hpp"
#include "protocol/RequestFrame.hpp"
#include "protocol/RequestGate.hpp"

#include <atomic>

/// The link as the encoders see it: it takes requests while it is connected.
class __attribute__((visibility("hidden"))) VeltraAsyncSDK::Link {
public:
    uint16_t send(const RequestFrame& request);

    /// What an encoder returns for an argument that it refuses.
    [[nodiscard]] uint16_t refuse() const {
        return connected ? ResultCode_InvalidArgument : ResultCode_NotConnected;
    }

    CommunicationManager communicationManager;
    /// The outcome of the last attempt to connect; false again once disconnected.
    std::atomic<bool> connected{false};
    /// Where requests go instead of to the link, if anywhere.
    RequestGate* gate = nullptr;
};
