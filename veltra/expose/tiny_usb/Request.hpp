// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstdint>
#include <variant>

namespace tiny_usb {

struct GetDescriptor {
    uint8_t type;
    uint8_t index;
};
struct GetStatus {};
struct GetConfiguration {};
struct GetInterface {};
/// What has no effect: the one configuration, the one interface, no feature.
struct Accept {};
/// The number is sent back.
struct Echo {
    uint16_t number;
};
/// What the bus can do, as I2C_FUNC_ bits.
struct GetFunctions {};
/// How the last message ended.
struct GetMessageStatus {};
/// One I2C message; its data are the transfer's.
struct Message {
    uint8_t address;
    bool isRead;
    /// Nothing comes in front of it.
    bool begins;
    /// A STOP follows.
    bool ends;
};
/// What no such device understands.
struct Unknown {};

using Request = std::variant<Unknown, GetDescriptor, GetStatus, GetConfiguration, GetInterface,
                             Accept, Echo, GetFunctions, GetMessageStatus, Message>;

/// Understands the setup packet of a control transfer.
Request requestOf(const std::array<uint8_t, 8>& setup);

} // namespace tiny_usb
