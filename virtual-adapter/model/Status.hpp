// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

namespace virtual_adapter {

/// The status of a response. docs/virtual-adapter/index.md lists them for users.
enum class Status : uint16_t {
    Success = 0x0000,
    /// No command has this code.
    UnknownCommand = 0x0001,
    /// The request is shorter or longer than its command's layout.
    MalformedRequest = 0x0002,
    /// A field holds a value that the adapter does not know.
    InvalidParameter = 0x0003,
    /// The bus has no I/O voltage.
    NoVoltage = 0x0004,
    /// The controller, pin or bus has not been initialised.
    NotInitialised = 0x0005,
    /// No target acknowledged the address.
    NotAcknowledged = 0x0006,
    /// A target acknowledged its address and then refused a byte.
    DataNotAcknowledged = 0x0007,
    /// The I2C bus has no pull-up resistors: its lines never rise.
    NoPullUp = 0x0008,
    /// Something holds a line of the I2C bus low.
    BusStuck = 0x0009,
    /// I3C reserves the address: no target may have it.
    AddressReserved = 0x0030,
    /// The address belongs to another device of the I3C bus.
    AddressInUse = 0x0031,
    /// A write is longer than the target's maximum write length.
    LengthAboveLimit = 0x0032,
};

} // namespace virtual_adapter
