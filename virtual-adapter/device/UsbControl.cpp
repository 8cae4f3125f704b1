// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/UsbControl.hpp"

#include "bytes/ByteReader.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

/// A request's first two bytes, which together say what is asked and of whom.
enum class Request : uint16_t {
    GetDeviceStatus = 0x8000,
    GetInterfaceStatus = 0x8100,
    GetEndpointStatus = 0x8200,
    ClearEndpointFeature = 0x0201,
    SetEndpointFeature = 0x0203,
    SetAddress = 0x0005,
    GetDescriptor = 0x8006,
    GetInterfaceDescriptor = 0x8106,
    GetConfiguration = 0x8008,
    SetConfiguration = 0x0009,
    GetInterface = 0x810A,
    SetInterface = 0x010B,
    HidGetReport = 0xA101,
    HidGetIdle = 0xA102,
    HidSetReport = 0x2109,
    HidSetIdle = 0x210A,
};

constexpr uint8_t recipientMask = 0x1F;
constexpr uint8_t toInterface = 1;
constexpr uint8_t toEndpoint = 2;
constexpr uint16_t controlEndpoint = 0;
constexpr uint16_t endpointHaltFeature = 0;
constexpr uint8_t inputReportType = 1;
constexpr uint8_t outputReportType = 2;

const std::optional<Bytes> stall;
const std::optional<Bytes> accepted = Bytes{};

Request requestOf(const SetupPacket& setup) {
    return static_cast<Request>(setup.requestType << 8U | setup.request);
}

std::optional<Bytes> existing(const Bytes& descriptor) {
    return descriptor.empty() ? stall : descriptor;
}

bool isInterruptEndpoint(uint16_t address) {
    return address == inEndpointAddress || address == outEndpointAddress;
}

} // namespace

SetupPacket SetupPacket::fromBytes(const std::array<uint8_t, 8>& bytes) {
    ByteReader reader(bytes);
    return {reader.u8(), reader.u8(), reader.u16(), reader.u16(), reader.u16()};
}

std::optional<Bytes> UsbControl::handle(const SetupPacket& setup, const Bytes& hostData,
                                        const OutputReport& outputReport) {
    Reply answer = reply(setup, hostData, outputReport);
    if (answer) {
        answer->resize(std::min(answer->size(), size_t{setup.length}));
    }
    return answer;
}

bool UsbControl::isHalted(uint8_t endpointAddress) const {
    return haltedEndpoints.count(endpointAddress) != 0;
}

UsbControl::Reply UsbControl::reply(const SetupPacket& setup, const Bytes& hostData,
                                    const OutputReport& outputReport) {
    if (!hasRecipient(setup)) {
        return stall;
    }
    switch (requestOf(setup)) {
    case Request::GetDeviceStatus:    // neither self-powered nor waking its host,
    case Request::GetInterfaceStatus: // and nothing is defined for an interface
        return Bytes{0, 0};
    case Request::GetEndpointStatus:
        return getEndpointStatus(setup);
    case Request::ClearEndpointFeature:
        return setEndpointHalt(setup, false);
    case Request::SetEndpointFeature:
        return setEndpointHalt(setup, true);
    case Request::SetAddress:
        return accepted;
    case Request::GetDescriptor:
        return getDescriptor(setup);
    case Request::GetInterfaceDescriptor:
        return getInterfaceDescriptor(setup);
    case Request::GetConfiguration:
        return Bytes{configuration};
    case Request::SetConfiguration:
        return setConfiguration(setup);
    case Request::GetInterface:
        return Bytes{0};
    case Request::SetInterface:
        return setup.value == 0 ? accepted : stall;
    case Request::HidGetReport:
        return getReport(setup);
    case Request::HidGetIdle:
        return Bytes{idleRate};
    case Request::HidSetReport:
        return highByte(setup.value) == outputReportType && outputReport(hostData) ? accepted
                                                                                   : stall;
    case Request::HidSetIdle:
        idleRate = highByte(setup.value);
        return accepted;
    }
    return stall;
}

bool UsbControl::hasRecipient(const SetupPacket& setup) const {
    switch (setup.requestType & recipientMask) {
    case toInterface: {
        // Descriptors may be read in every state (USB 2.0, section 9.4.3).
        const bool isThere = isConfigured() || requestOf(setup) == Request::GetInterfaceDescriptor;
        return isThere && setup.index == onlyInterface;
    }
    case toEndpoint:
        return setup.index == controlEndpoint ||
               (isConfigured() && isInterruptEndpoint(setup.index));
    default:
        return true;
    }
}

UsbControl::Reply UsbControl::getDescriptor(const SetupPacket& setup) const {
    switch (highByte(setup.value)) {
    case deviceDescriptorType:
        return deviceDescriptor(identity);
    case configurationDescriptorType:
        return lowByte(setup.value) == 0 ? configurationDescriptor(identity) : stall;
    case stringDescriptorType:
        return existing(stringDescriptor(identity, serialNumber, lowByte(setup.value)));
    case deviceQualifierDescriptorType:
        return existing(deviceQualifierDescriptor(identity));
    case otherSpeedConfigurationDescriptorType:
        return lowByte(setup.value) == 0 ? existing(otherSpeedConfigurationDescriptor(identity))
                                         : stall;
    default:
        return stall;
    }
}

UsbControl::Reply UsbControl::getInterfaceDescriptor(const SetupPacket& setup) const {
    switch (highByte(setup.value)) {
    case hidDescriptorType:
        return hidDescriptor(identity);
    case reportDescriptorType:
        return reportDescriptor(identity);
    default:
        return stall;
    }
}

UsbControl::Reply UsbControl::setConfiguration(const SetupPacket& setup) {
    const uint8_t wanted = lowByte(setup.value);
    if (wanted != 0 && wanted != onlyConfiguration) {
        return stall;
    }
    configuration = wanted;
    haltedEndpoints.clear();
    return accepted;
}

UsbControl::Reply UsbControl::getEndpointStatus(const SetupPacket& setup) const {
    return Bytes{static_cast<uint8_t>(isHalted(lowByte(setup.index)) ? 1 : 0), 0};
}

UsbControl::Reply UsbControl::setEndpointHalt(const SetupPacket& setup, bool halt) {
    if (setup.value != endpointHaltFeature || setup.index == controlEndpoint) {
        return stall;
    }
    if (halt) {
        haltedEndpoints.insert(lowByte(setup.index));
    } else {
        haltedEndpoints.erase(lowByte(setup.index));
    }
    return accepted;
}

UsbControl::Reply UsbControl::getReport(const SetupPacket& setup) const {
    // Input is a stream, not a state; a packet of no payload is what there is to say at any moment.
    return highByte(setup.value) == inputReportType ? Reply(Bytes(identity.variant.reportSize))
                                                    : stall;
}

} // namespace virtual_adapter
