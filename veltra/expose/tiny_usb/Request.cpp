// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/tiny_usb/Request.hpp"

#include "bytes/ByteReader.hpp"

namespace tiny_usb {

namespace {

// bmRequestType (USB 2.0, section 9.3): direction in bit 7, type in bits 5 and 6.
constexpr uint8_t toHost = 0x80;
constexpr uint8_t typeBits = 0x60;
constexpr uint8_t vendorType = 0x40;

// i2c_msg.flags, in wValue. The rest asks for nothing that the device does.
constexpr uint16_t readFlag = 0x0001;
constexpr uint16_t tenBitFlag = 0x0010;
constexpr uint16_t lengthIsReceivedFlag = 0x0400;
constexpr uint16_t maxAddress = 0x7F;

// bRequest of a message: its place among those of a transfer.
constexpr uint8_t messageRequest = 0x04;
constexpr uint8_t beginBit = 0x01;
constexpr uint8_t endBit = 0x02;

Request standardRequest(bool isToHost, uint8_t request, uint16_t value) {
    enum : uint8_t { Status = 0, Clear = 1, Descriptor = 6, Configuration = 8, Interface = 10 };
    enum : uint8_t { SetConfiguration = 9, SetInterface = 11 };
    if (!isToHost) {
        const bool isKnown =
            request == Clear || request == SetConfiguration || request == SetInterface;
        return isKnown ? Request(Accept{}) : Request(Unknown{});
    }
    switch (request) {
    case Status:
        return GetStatus{};
    case Descriptor:
        return GetDescriptor{static_cast<uint8_t>(value >> 8U), static_cast<uint8_t>(value)};
    case Configuration:
        return GetConfiguration{};
    case Interface:
        return GetInterface{};
    default:
        return Unknown{};
    }
}

Request message(bool isToHost, uint8_t request, uint16_t flags, uint16_t address, uint16_t length) {
    const bool isRead = (flags & readFlag) != 0;
    // A single byte answered to a block read would be taken for a length.
    const bool isPossible = (flags & (tenBitFlag | lengthIsReceivedFlag)) == 0 &&
                            address <= maxAddress && isRead == isToHost && (!isRead || length > 0);
    if (!isPossible) {
        return Unknown{};
    }
    return Message{static_cast<uint8_t>(address), isRead, (request & beginBit) != 0,
                   (request & endBit) != 0};
}

Request vendorRequest(bool isToHost, uint8_t request, uint16_t value, uint16_t index,
                      uint16_t length) {
    enum : uint8_t { EchoBack = 0, Functions = 1, Delay = 2, Status = 3 };
    switch (request) {
    case EchoBack:
        return isToHost ? Request(Echo{value}) : Request(Unknown{});
    case Functions:
        return isToHost ? Request(GetFunctions{}) : Request(Unknown{});
    case Delay: // the bus has the clock that it was set up with
        return isToHost ? Request(Unknown{}) : Request(Accept{});
    case Status:
        return isToHost ? Request(GetMessageStatus{}) : Request(Unknown{});
    default:
        return (request & ~(beginBit | endBit)) == messageRequest
                   ? message(isToHost, request, value, index, length)
                   : Request(Unknown{});
    }
}

} // namespace

Request requestOf(const std::array<uint8_t, 8>& setup) {
    virtual_adapter::ByteReader reader(setup);
    const uint8_t type = reader.u8();
    const uint8_t request = reader.u8();
    const uint16_t value = reader.u16();
    const uint16_t index = reader.u16();
    const uint16_t length = reader.u16();
    const bool isToHost = (type & toHost) != 0;
    switch (type & typeBits) {
    case 0:
        return standardRequest(isToHost, request, value);
    case vendorType:
        return vendorRequest(isToHost, request, value, index, length);
    default:
        return Unknown{};
    }
}

} // namespace tiny_usb
