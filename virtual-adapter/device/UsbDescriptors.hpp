// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "device/UsbIdentity.hpp"

#include <cstdint>
#include <string>

namespace virtual_adapter {

enum class UsbSpeed { Full, High };

/// Reports of more than 64 bytes do not fit a full-speed packet.
UsbSpeed speedOf(const UsbIdentity& identity);

// Descriptor types of USB 2.0, table 9-5, and HID 1.11, section 7.1.
constexpr uint8_t deviceDescriptorType = 1;
constexpr uint8_t configurationDescriptorType = 2;
constexpr uint8_t stringDescriptorType = 3;
constexpr uint8_t interfaceDescriptorType = 4;
constexpr uint8_t endpointDescriptorType = 5;
constexpr uint8_t deviceQualifierDescriptorType = 6;
constexpr uint8_t otherSpeedConfigurationDescriptorType = 7;
constexpr uint8_t hidDescriptorType = 0x21;
constexpr uint8_t reportDescriptorType = 0x22;

// What the configuration descriptor lays down.
constexpr uint8_t onlyConfiguration = 1;
constexpr uint8_t onlyInterface = 0;
constexpr uint8_t inEndpointAddress = 0x81;
constexpr uint8_t outEndpointAddress = 0x01;
constexpr uint8_t hidInterfaceClass = 3;

Bytes deviceDescriptor(const UsbIdentity& identity);

/// The configuration with its interface, HID and endpoint descriptors.
Bytes configurationDescriptor(const UsbIdentity& identity);

Bytes hidDescriptor(const UsbIdentity& identity);

/// Unnumbered, vendor-defined reports of the variant's size in both directions.
Bytes reportDescriptor(const UsbIdentity& identity);

/// What a high-speed device would be at full speed; empty for a full-speed device, which has none.
Bytes deviceQualifierDescriptor(const UsbIdentity& identity);
Bytes otherSpeedConfigurationDescriptor(const UsbIdentity& identity);

/// Index 0 lists the languages, 1 to 3 are manufacturer, product and serial number; empty for any
/// other index. Texts are UTF-8.
Bytes stringDescriptor(const UsbIdentity& identity, const std::string& serialNumber, uint8_t index);

/// @p text as a string descriptor: UTF-16LE, cut between two characters where the descriptor's
/// length byte ends. What is not UTF-8 becomes U+FFFD.
Bytes textDescriptor(const std::string& text);

} // namespace virtual_adapter
