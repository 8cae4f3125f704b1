// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "model/Settable.hpp"

namespace virtual_adapter {

/// What the UART's two lines lead to.
class UartTarget : public Settable {
public:
    /// Takes the characters of one message. Returns those that it sends back.
    virtual Bytes receive(const Bytes& message) = 0;
};

} // namespace virtual_adapter
