// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/UsbDescriptors.hpp"

#include <array>
#include <functional>
#include <optional>
#include <set>
#include <utility>

namespace virtual_adapter {

/// The eight bytes that start every control transfer (USB 2.0, section 9.3).
struct SetupPacket {
    uint8_t requestType = 0;
    uint8_t request = 0;
    uint16_t value = 0;
    uint16_t index = 0;
    uint16_t length = 0;

    static SetupPacket fromBytes(const std::array<uint8_t, 8>& bytes);
    [[nodiscard]] bool isDeviceToHost() const { return (requestType & 0x80U) != 0; }
};

/// The default control endpoint: answers the standard requests of USB 2.0, chapter 9, and the
/// class requests of HID 1.11, section 7, and stalls everything else.
class UsbControl {
public:
    /// Takes the report of a SET_REPORT request; returns whether the device did.
    using OutputReport = std::function<bool(const Bytes&)>;

    UsbControl(const UsbIdentity& usbIdentity, std::string serial)
        : identity(usbIdentity), serialNumber(std::move(serial)) {}

    /// Carries a request out. Returns the bytes for the host, none for a request towards the
    /// device, or nothing when the endpoint stalls.
    std::optional<Bytes> handle(const SetupPacket& setup, const Bytes& hostData,
                                const OutputReport& outputReport);

    /// Whether a host has selected the configuration that holds the interrupt endpoints.
    [[nodiscard]] bool isConfigured() const { return configuration == onlyConfiguration; }
    [[nodiscard]] bool isHalted(uint8_t endpointAddress) const;

private:
    using Reply = std::optional<Bytes>;

    Reply reply(const SetupPacket& setup, const Bytes& hostData, const OutputReport& outputReport);
    /// Whether what the request is for exists, in the present configuration.
    [[nodiscard]] bool hasRecipient(const SetupPacket& setup) const;
    [[nodiscard]] Reply getDescriptor(const SetupPacket& setup) const;
    [[nodiscard]] Reply getInterfaceDescriptor(const SetupPacket& setup) const;
    Reply setConfiguration(const SetupPacket& setup);
    [[nodiscard]] Reply getEndpointStatus(const SetupPacket& setup) const;
    Reply setEndpointHalt(const SetupPacket& setup, bool halt);
    [[nodiscard]] Reply getReport(const SetupPacket& setup) const;

    UsbIdentity identity;
    std::string serialNumber;
    uint8_t configuration = 0;
    uint8_t idleRate = 0;
    std::set<uint8_t> haltedEndpoints;
};

} // namespace virtual_adapter
