// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace capture {

/// What happens to a transfer, as usbmon marks it.
enum class UsbEvent : uint8_t { Submit = 'S', Complete = 'C', SubmitFailed = 'E' };

enum class UsbTransfer : uint8_t { Isochronous = 0, Interrupt = 1, Control = 2, Bulk = 3 };

/// The direction bit of an endpoint: from the device to the host.
constexpr uint8_t directionIn = 0x80;

/// One record of usbmon. The members are in the header's order.
struct UsbRecord {
    /// The same in a transfer's submission and its completion.
    uint64_t id = 0;
    UsbEvent event = UsbEvent::Submit;
    UsbTransfer transfer = UsbTransfer::Interrupt;
    /// With its direction bit.
    uint8_t endpoint = 0;
    uint8_t device = 0;
    uint16_t bus = 0;
    bool hasSetup = false;
    /// Nanoseconds since 1970.
    uint64_t time = 0;
    /// 0, or an error number negated.
    int32_t status = 0;
    /// How much was asked for or transferred; the data may be fewer.
    uint32_t length = 0;
    std::array<uint8_t, 8> setup{};

    [[nodiscard]] bool isIn() const { return (endpoint & directionIn) != 0; }
};

} // namespace capture
