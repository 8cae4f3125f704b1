#include "device/UsbDescriptors.hpp"

#include "device/Utf16.hpp"

#include <utility>

namespace virtual_adapter {

namespace {

constexpr uint16_t usbRelease = 0x0200;
constexpr uint16_t hidRelease = 0x0111;
constexpr uint16_t englishUnitedStates = 0x0409;
constexpr uint8_t classOfInterface = 0;
constexpr uint8_t noSubclass = 0;
constexpr uint8_t noProtocol = 0;
constexpr uint8_t configurations = 1;
constexpr uint8_t controlPacketSize = 64;
constexpr size_t fullSpeedPacketSize = 64;
constexpr uint8_t busPowered = 0x80;
constexpr uint8_t hundredMilliamperes = 50;
constexpr uint8_t interruptEndpoint = 3;
/// One frame at full speed, one microframe at high speed.
constexpr uint8_t everyServiceInterval = 1;
constexpr size_t longestDescriptor = 255;

constexpr uint8_t manufacturerIndex = 1;
constexpr uint8_t productIndex = 2;
constexpr uint8_t serialNumberIndex = 3;

constexpr uint8_t low(size_t value) {
    return static_cast<uint8_t>(value & 0xFFU);
}

constexpr uint8_t high(size_t value) {
    return static_cast<uint8_t>(value >> 8U & 0xFFU);
}

void append(Bytes& descriptor, const Bytes& part) {
    descriptor.insert(descriptor.end(), part.begin(), part.end());
}

Bytes withLength(Bytes descriptor) {
    descriptor.front() = low(descriptor.size());
    return descriptor;
}

Bytes endpointDescriptor(uint8_t address, size_t packetSize) {
    return withLength({0, endpointDescriptorType, address, interruptEndpoint, low(packetSize),
                       high(packetSize), everyServiceInterval});
}

Bytes configurationWithPackets(uint8_t type, const UsbIdentity& identity, size_t packetSize) {
    constexpr uint8_t interfaces = 1;
    constexpr uint8_t alternateSetting = 0;
    constexpr uint8_t endpoints = 2;
    constexpr uint8_t noText = 0;
    Bytes whole{
        9, type, 0, 0, interfaces, onlyConfiguration, noText, busPowered, hundredMilliamperes};
    append(whole, withLength({0, interfaceDescriptorType, onlyInterface, alternateSetting,
                              endpoints, hidInterfaceClass, noSubclass, noProtocol, noText}));
    append(whole, hidDescriptor(identity));
    append(whole, endpointDescriptor(inEndpointAddress, packetSize));
    append(whole, endpointDescriptor(outEndpointAddress, packetSize));
    whole.at(2) = low(whole.size());
    whole.at(3) = high(whole.size());
    return whole;
}

} // namespace

UsbSpeed speedOf(const UsbIdentity& identity) {
    return identity.model.reportSize <= fullSpeedPacketSize ? UsbSpeed::Full : UsbSpeed::High;
}

Bytes deviceDescriptor(const UsbIdentity& identity) {
    return withLength({0, deviceDescriptorType, low(usbRelease), high(usbRelease), classOfInterface,
                       noSubclass, noProtocol, controlPacketSize, low(identity.vendorId),
                       high(identity.vendorId), low(identity.productId), high(identity.productId),
                       low(identity.deviceRelease), high(identity.deviceRelease), manufacturerIndex,
                       productIndex, serialNumberIndex, configurations});
}

Bytes configurationDescriptor(const UsbIdentity& identity) {
    return configurationWithPackets(configurationDescriptorType, identity,
                                    identity.model.reportSize);
}

Bytes hidDescriptor(const UsbIdentity& identity) {
    constexpr uint8_t noCountry = 0;
    constexpr uint8_t classDescriptors = 1;
    const size_t reportDescriptorSize = reportDescriptor(identity).size();
    return withLength({0, hidDescriptorType, low(hidRelease), high(hidRelease), noCountry,
                       classDescriptors, reportDescriptorType, low(reportDescriptorSize),
                       high(reportDescriptorSize)});
}

Bytes reportDescriptor(const UsbIdentity& identity) {
    const size_t count = identity.model.reportSize;
    const Bytes reportCount =
        count <= 0xFF ? Bytes{0x95, low(count)} : Bytes{0x96, low(count), high(count)};
    Bytes descriptor{0x06, 0x00, 0xFF};     // Usage Page (vendor-defined)
    append(descriptor, {0x09, 0x01});       // Usage
    append(descriptor, {0xA1, 0x01});       // Collection (Application)
    append(descriptor, {0x15, 0x00});       // Logical Minimum (0)
    append(descriptor, {0x26, 0xFF, 0x00}); // Logical Maximum (255)
    append(descriptor, {0x75, 0x08});       // Report Size (8 bits)
    append(descriptor, reportCount);        // Report Count
    append(descriptor, {0x09, 0x02});       // Usage
    append(descriptor, {0x81, 0x02});       // Input (Data, Variable, Absolute)
    append(descriptor, reportCount);        // Report Count
    append(descriptor, {0x09, 0x03});       // Usage
    append(descriptor, {0x91, 0x02});       // Output (Data, Variable, Absolute)
    append(descriptor, {0xC0});             // End Collection
    return descriptor;
}

Bytes deviceQualifierDescriptor(const UsbIdentity& identity) {
    if (speedOf(identity) == UsbSpeed::Full) {
        return {};
    }
    constexpr uint8_t reserved = 0;
    return withLength({0, deviceQualifierDescriptorType, low(usbRelease), high(usbRelease),
                       classOfInterface, noSubclass, noProtocol, controlPacketSize, configurations,
                       reserved});
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
        return withLength(
            {0, stringDescriptorType, low(englishUnitedStates), high(englishUnitedStates)});
    case manufacturerIndex:
        return textDescriptor(identity.manufacturer);
    case productIndex:
        return textDescriptor(identity.model.name);
    case serialNumberIndex:
        return textDescriptor(serialNumber);
    default:
        return {};
    }
}

Bytes textDescriptor(const std::string& text) {
    Bytes descriptor{0, stringDescriptorType};
    for (const char32_t character : charactersOfUtf8(text)) {
        Bytes units;
        for (const char16_t unit : utf16UnitsOf(character)) {
            append(units, {low(unit), high(unit)});
        }
        if (descriptor.size() + units.size() > longestDescriptor) {
            break;
        }
        append(descriptor, units);
    }
    return withLength(std::move(descriptor));
}

} // namespace virtual_adapter
