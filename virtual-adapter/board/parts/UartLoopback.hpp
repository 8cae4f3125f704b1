// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/uart/UartTarget.hpp"

namespace virtual_adapter {

/// A wire from the UART's transmit line to its receive line.
class UartLoopback : public UartTarget {
public:
    Bytes receive(const Bytes& message) override { return message; }
};

} // namespace virtual_adapter
