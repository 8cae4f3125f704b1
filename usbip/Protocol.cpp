// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/Protocol.hpp"

#include "bytes/ByteWriter.hpp"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace usbip {

using virtual_adapter::ByteOrder;
using virtual_adapter::ByteWriter;

namespace {

constexpr uint16_t version = 0x0111;
constexpr uint16_t listRequestCode = 0x8005;
constexpr uint16_t importRequestCode = 0x8003;
constexpr uint16_t listReplyCode = 0x0005;
constexpr uint16_t importReplyCode = 0x0003;
constexpr size_t pathSize = 256;
constexpr size_t busIdSize = 32;

constexpr uint32_t submitCode = 1;
constexpr uint32_t unlinkCode = 2;
constexpr uint32_t returnSubmitCode = 3;
constexpr uint32_t returnUnlinkCode = 4;
constexpr size_t commandHeaderSize = 48;
constexpr uint32_t hostToDevice = 0;
constexpr uint32_t deviceToHost = 1;
constexpr uint32_t maxEndpoint = 15;
/// Says that a transfer is not isochronous, where 0 does not.
constexpr uint32_t noPackets = 0xFFFFFFFF;

ByteWriter message() {
    return ByteWriter(ByteOrder::BigEndian);
}

ByteWriter reply(uint16_t code, uint32_t status) {
    ByteWriter written = message();
    written.u16(version).u16(code).u32(status);
    return written;
}

ByteWriter& writeClass(ByteWriter& written, const UsbClass& usbClass) {
    return written.u8(usbClass.code).u8(usbClass.subclass).u8(usbClass.protocol);
}

void describe(ByteWriter& written, const ListedDevice& device) {
    const Description& description = device.description;
    written.text("/sys/devices/" + description.maker + "/" + device.busId, pathSize)
        .text(device.busId, busIdSize)
        .u32(device.busNumber)
        .u32(device.deviceNumber)
        .u32(static_cast<uint32_t>(description.speed))
        .u16(description.vendorId)
        .u16(description.productId)
        .u16(description.deviceRelease);
    writeClass(written, description.deviceClass)
        .u8(description.configuration)
        .u8(description.configurationCount)
        .u8(static_cast<uint8_t>(description.interfaces.size()));
}

/// The kernel's error numbers, negated, are the protocol's status values.
uint32_t statusOf(Status status) {
    int32_t value = 0;
    switch (status) {
    case Status::Completed:
        break;
    case Status::Stalled:
        value = -EPIPE;
        break;
    case Status::Overflowed:
        value = -EOVERFLOW;
        break;
    case Status::Unplugged:
        value = -ESHUTDOWN;
        break;
    }
    return static_cast<uint32_t>(value);
}

} // namespace

void Reader::append(const uint8_t* data, size_t size) {
    if (!malformed) {
        received.insert(received.end(), data, data + size);
    }
}

std::optional<Request> Reader::nextRequest() {
    ByteReader message(received, ByteOrder::BigEndian);
    const uint16_t sentVersion = message.u16();
    const uint16_t code = message.u16();
    message.skip(4); // a status, of replies
    if (malformed || message.overran()) {
        return std::nullopt;
    }
    if (sentVersion != version || (code != listRequestCode && code != importRequestCode)) {
        return refuse();
    }
    if (code == listRequestCode) {
        consume(message);
        return ListRequest{};
    }
    const Bytes busId = message.bytes(busIdSize);
    if (message.overran()) {
        return std::nullopt;
    }
    consume(message);
    return ImportRequest{
        std::string(busId.begin(), std::find(busId.begin(), busId.end(), uint8_t{0}))};
}

std::optional<Command> Reader::nextCommand() {
    if (malformed || received.size() < commandHeaderSize) {
        return std::nullopt;
    }
    ByteReader message(received, ByteOrder::BigEndian);
    switch (message.u32()) {
    case submitCode:
        return nextSubmit(message);
    case unlinkCode:
        return nextUnlink(message);
    default:
        return refuse();
    }
}

std::optional<Submit> Reader::nextSubmit(ByteReader message) {
    Submit submit;
    submit.sequence = message.u32();
    message.skip(4); // the device: there is one to a connection
    const uint32_t direction = message.u32();
    const uint32_t endpoint = message.u32();
    message.skip(4); // flags of the host's driver
    const uint32_t length = message.u32();
    message.skip(4); // where an isochronous transfer starts
    const uint32_t packets = message.u32();
    message.skip(4); // an interval that the endpoint's descriptor lays down
    Transfer& transfer = submit.transfer;
    for (uint8_t& byte : transfer.setup) {
        byte = message.u8();
    }

    const bool isOutput = direction == hostToDevice;
    if (direction > deviceToHost || endpoint > maxEndpoint ||
        (packets != 0 && packets != noPackets) || (isOutput && length > maxOutputSize)) {
        return refuse();
    }
    transfer.id = submit.sequence;
    transfer.endpointAddress = static_cast<uint8_t>(endpoint | direction << 7U);
    if (!isOutput) {
        transfer.length = length;
    } else if (message.remaining() >= length) {
        transfer.data = message.bytes(length);
    } else {
        return std::nullopt;
    }
    consume(message);
    return submit;
}

Unlink Reader::nextUnlink(ByteReader message) {
    Unlink unlink;
    unlink.sequence = message.u32();
    message.skip(12); // device, direction and endpoint
    unlink.unlinked = message.u32();
    message.skip(24); // padding
    consume(message);
    return unlink;
}

void Reader::consume(const ByteReader& message) {
    const size_t size = received.size() - message.remaining();
    received.erase(received.begin(),
                   std::next(received.begin(), static_cast<std::ptrdiff_t>(size)));
}

std::nullopt_t Reader::refuse() {
    malformed = true;
    received.clear();
    return std::nullopt;
}

Bytes listReply(const ListedDevice* device) {
    ByteWriter written = reply(listReplyCode, 0);
    written.u32(device == nullptr ? 0 : 1);
    if (device != nullptr) {
        describe(written, *device);
        for (const UsbClass& interface : device->description.interfaces) {
            writeClass(written, interface).u8(0);
        }
    }
    return written.take();
}

Bytes importReply(const ListedDevice& device) {
    ByteWriter written = reply(importReplyCode, 0);
    describe(written, device);
    return written.take();
}

Bytes importRefusal(Refusal refusal) {
    return reply(importReplyCode, static_cast<uint32_t>(refusal)).take();
}

Bytes returnSubmit(uint32_t sequence, const Result& result) {
    return message()
        .u32(returnSubmitCode)
        .u32(sequence)
        .zeros(12) // device, direction and endpoint are the command's
        .u32(statusOf(result.status))
        .u32(static_cast<uint32_t>(result.actualLength))
        .zeros(20) // nothing isochronous, and padding
        .bytes(result.data)
        .take();
}

Bytes returnUnlink(uint32_t sequence, bool wasPending) {
    return message()
        .u32(returnUnlinkCode)
        .u32(sequence)
        .zeros(12)
        .u32(static_cast<uint32_t>(wasPending ? -ECONNRESET : 0))
        .zeros(24)
        .take();
}

} // namespace usbip
