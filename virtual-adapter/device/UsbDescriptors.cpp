// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/UsbDescriptors.hpp"

#include "bytes/ByteWriter.hpp"
#include "device/Utf16.hpp"

namespace virtual_adapter {

namespace {

constexpr uint16_t usbRelease = 0x0200;
constexpr uint16_t hidRelease = 0x0111;
constexpr uint16_t englishUnitedStates = 0x0409;
constexpr uint8_t classOfInterface = 0;
constexpr uint8_t noSubclass = 0;
constexpr uint8_t noProtocol = 0;
constexpr uint8_t noText = 0;
constexpr uint8_t configurations = 1;
constexpr uint8_t controlPacketSize = 64;
constexpr size_t fullSpeedPacketSize = 64;
constexpr uint8_t busPowered = 0x80;
constexpr uint8_t hundredMilliamperes = 50;
constexpr uint8_t interruptEndpoint = 3;
/// One frame at full speed, one microframe at high speed.
constexpr uint8_t everyServiceInterval = 1;
constexpr size_t maxDescriptorSize = 255;

constexpr uint8_t manufacturerIndex = 1;
constexpr uint8_t productIndex = 2;
constexpr uint8_t serialNumberIndex = 3;

/// A descriptor whose first two bytes are its length and @p type.
Bytes descriptor(uint8_t type, const ByteWriter& fields) {
    const size_t length = fields.size() + 2;
    return ByteWriter().u8(static_cast<uint8_t>(length)).u8(type).append(fields).take();
}

Bytes endpointDescriptor(uint8_t address, size_t packetSize) {
    return descriptor(endpointDescriptorType, ByteWriter()
                                                  .u8(address)
                                                  .u8(interruptEndpoint)
                                                  .u16(static_cast<uint16_t>(packetSize))
                                                  .u8(everyServiceInterval));
}

Bytes interfaceDescriptor() {
    constexpr uint8_t alternateSetting = 0;
    constexpr uint8_t endpoints = 2;
    return descriptor(interfaceDescriptorType, ByteWriter()
                                                   .u8(onlyInterface)
                                                   .u8(alternateSetting)
                                                   .u8(endpoints)
                                                   .u8(hidInterfaceClass)
                                                   .u8(noSubclass)
                                                   .u8(noProtocol)
                                                   .u8(noText));
}

Bytes configurationWithPackets(uint8_t type, const UsbIdentity& identity, size_t packetSize) {
    constexpr size_t ownLength = 9;
    constexpr uint8_t interfaces = 1;
    ByteWriter parts;
    parts.bytes(interfaceDescriptor())
        .bytes(hidDescriptor(identity))
        .bytes(endpointDescriptor(inEndpointAddress, packetSize))
        .bytes(endpointDescriptor(outEndpointAddress, packetSize));
    const Bytes own = descriptor(type, ByteWriter()
                                           .u16(static_cast<uint16_t>(ownLength + parts.size()))
                                           .u8(interfaces)
                                           .u8(onlyConfiguration)
                                           .u8(noText)
                                           .u8(busPowered)
                                           .u8(hundredMilliamperes));
    return ByteWriter().bytes(own).append(parts).take();
}

} // namespace

UsbSpeed speedOf(const UsbIdentity& identity) {
    return identity.variant.reportSize <= fullSpeedPacketSize ? UsbSpeed::Full : UsbSpeed::High;
}

Bytes deviceDescriptor(const UsbIdentity& identity) {
    return descriptor(deviceDescriptorType, ByteWriter()
                                                .u16(usbRelease)
                                                .u8(classOfInterface)
                                                .u8(noSubclass)
                                                .u8(noProtocol)
                                                .u8(controlPacketSize)
                                                .u16(identity.vendorId)
                                                .u16(identity.productId)
                                                .u16(identity.deviceRelease)
                                                .u8(manufacturerIndex)
                                                .u8(productIndex)
                                                .u8(serialNumberIndex)
                                                .u8(configurations));
}

Bytes configurationDescriptor(const UsbIdentity& identity) {
    return configurationWithPackets(configurationDescriptorType, identity,
                                    identity.variant.reportSize);
}

Bytes hidDescriptor(const UsbIdentity& identity) {
    constexpr uint8_t noCountry = 0;
    constexpr uint8_t classDescriptors = 1;
    return descriptor(hidDescriptorType,
                      ByteWriter()
                          .u16(hidRelease)
                          .u8(noCountry)
                          .u8(classDescriptors)
                          .u8(reportDescriptorType)
                          .u16(static_cast<uint16_t>(reportDescriptor(identity).size())));
}

Bytes reportDescriptor(const UsbIdentity& identity) {
    const auto count = static_cast<uint16_t>(identity.variant.reportSize);
    ByteWriter reportCount;
    if (count <= 0xFF) {
        reportCount.u8(0x95).u8(static_cast<uint8_t>(count));
    } else {
        reportCount.u8(0x96).u16(count);
    }
    return ByteWriter()
        .bytes({0x06, 0x00, 0xFF}) // Usage Page (vendor-defined)
        .bytes({0x09, 0x01})       // Usage
        .bytes({0xA1, 0x01})       // Collection (Application)
        .bytes({0x15, 0x00})       // Logical Minimum (0)
        .bytes({0x26, 0xFF, 0x00}) // Logical Maximum (255)
        .bytes({0x75, 0x08})       // Report Size (8 bits)
        .append(reportCount)       // Report Count
        .bytes({0x09, 0x02})       // Usage
        .bytes({0x81, 0x02})       // Input (Data, Variable, Absolute)
        .append(reportCount)       // Report Count
        .bytes({0x09, 0x03})       // Usage
        .bytes({0x91, 0x02})       // Output (Data, Variable, Absolute)
        .bytes({0xC0})             // End Collection
        .take();
}

Bytes deviceQualifierDescriptor(const UsbIdentity& identity) {
    if (speedOf(identity) == UsbSpeed::Full) {
        return {};
    }
    constexpr uint8_t reserved = 0;
    return descriptor(deviceQualifierDescriptorType, ByteWriter()
                                                         .u16(usbRelease)
                                                         .u8(classOfInterface)
                                                         .u8(noSubclass)
                                                         .u8(noProtocol)
                                                         .u8(controlPacketSize)
                                                         .u8(configurations)
                                                         .u8(reserved));
}

Bytes otherSpeedConfigurationDescriptor(const UsbIdentity& identity) {
    if (speedOf(identity) == UsbSpeed::Full) {
        return {};
    }
    return configurationWithPackets(otherSpeedConfigurationDescriptorType, identity,
                                    fullSpeedPacketSize);
}

Bytes stringDescriptor(const UsbIdentity& identity, const std::string& serialNumber,
                       uint8_t index) {
    switch (index) {
    case 0:
        return descriptor(stringDescriptorType, ByteWriter().u16(englishUnitedStates));
    case manufacturerIndex:
        return textDescriptor(identity.manufacturer);
    case productIndex:
        return textDescriptor(identity.variant.name);
    case serialNumberIndex:
        return textDescriptor(serialNumber);
    default:
        return {};
    }
}

Bytes textDescriptor(const std::string& text) {
    ByteWriter units;
    for (const char32_t character : charactersOfUtf8(text)) {
        ByteWriter unitsOfCharacter;
        for (const char16_t unit : utf16UnitsOf(character)) {
            unitsOfCharacter.u16(unit);
        }
        if (2 + units.size() + unitsOfCharacter.size() > maxDescriptorSize) {
            break;
        }
        units.append(unitsOfCharacter);
    }
    return descriptor(stringDescriptorType, units);
}

} // namespace virtual_adapter
