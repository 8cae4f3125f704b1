// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "protocol/RequestFrame.hpp"

#include <cstdint>

/// Takes the encoders' requests in the link's place, from several threads at once.
class RequestGate {
public:
    RequestGate() = default;
    virtual ~RequestGate() = default;
    RequestGate(const RequestGate&) = delete;
    RequestGate& operator=(const RequestGate&) = delete;

    /// Sees to @p request, and returns what the encoder is to return.
    virtual uint16_t send(const RequestFrame& request) = 0;
};
