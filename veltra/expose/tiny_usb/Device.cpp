// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/tiny_usb/Device.hpp"

#include "bytes/ByteWriter.hpp"

#include <algorithm>
#include <utility>

namespace tiny_usb {

namespace {

using virtual_adapter::ByteWriter;
using virtual_adapter::highByte;
using virtual_adapter::lowByte;

constexpr uint8_t vendorClass = 0xFF;
constexpr uint16_t release = 0x0100;

/// I2C, and of SMBus (linux/i2c.h): quick, byte, byte data, word data, process call, block write,
/// I2C blocks. Of block reads nobody knows the length before they come.
constexpr uint32_t functions = 0x0EFF0001;

enum MessageStatus : uint8_t { Acknowledged = 1, NotAcknowledged = 2 };
enum DescriptorType : uint8_t { DeviceDescriptor = 1, Configuration = 2, String = 3 };

Bytes deviceDescriptor() {
    return {18,
            DeviceDescriptor,
            0x00,
            0x02,
            vendorClass,
            0,
            0,
            64,
            lowByte(vendorId),
            highByte(vendorId),
            lowByte(productId),
            highByte(productId),
            lowByte(release),
            highByte(release),
            1,
            2,
            3,
            1};
}

/// One interface without endpoints: everything goes over the control endpoint.
Bytes configuration() {
    return {9, Configuration, 18, 0, 1, 1, 0, 0x80, 50, 9, 4, 0, 0, 0, vendorClass, 0, 0, 0};
}

Bytes stringDescriptor(const std::string& text) {
    ByteWriter writer;
    writer.u8(static_cast<uint8_t>(2 + 2 * text.size())).u8(String);
    for (const char letter : text) {
        writer.u16(static_cast<uint8_t>(letter));
    }
    return writer.take();
}

} // namespace

Device::~Device() {
    if (holds) {
        bus.release();
    }
}

void Device::submit(usbip::Transfer transfer, usbip::Time /*now*/) {
    const bool isControl = (transfer.endpointAddress & 0x7FU) == 0;
    Answer data = isControl ? answer(requestOf(transfer.setup), transfer) : std::nullopt;
    if (!data) {
        completed({transfer.id, usbip::Status::Stalled, 0, {}});
        return;
    }
    if ((transfer.setup[0] & 0x80U) == 0) {
        completed({transfer.id, usbip::Status::Completed, transfer.data.size(), {}});
        return;
    }
    data->resize(std::min(data->size(), transfer.length));
    const size_t size = data->size();
    completed({transfer.id, usbip::Status::Completed, size, std::move(*data)});
}

Device::Answer Device::answer(const Request& request, const usbip::Transfer& transfer) {
    if (const auto* const wanted = std::get_if<GetDescriptor>(&request)) {
        return descriptor(*wanted);
    }
    if (const auto* const message = std::get_if<Message>(&request)) {
        return carryOut(*message, transfer);
    }
    if (const auto* const echo = std::get_if<Echo>(&request)) {
        return Bytes{lowByte(echo->number), highByte(echo->number)};
    }
    if (std::holds_alternative<GetStatus>(request)) {
        return Bytes{0, 0};
    }
    if (std::holds_alternative<GetConfiguration>(request)) {
        return Bytes{1};
    }
    if (std::holds_alternative<GetInterface>(request)) {
        return Bytes{0};
    }
    if (std::holds_alternative<GetFunctions>(request)) {
        return ByteWriter().u32(functions).take();
    }
    if (std::holds_alternative<GetMessageStatus>(request)) {
        return Bytes{messageStatus};
    }
    return std::holds_alternative<Accept>(request) ? Answer(Bytes()) : std::nullopt;
}

Device::Answer Device::descriptor(const GetDescriptor& wanted) const {
    constexpr uint16_t english = 0x0409;
    switch (wanted.type) {
    case DeviceDescriptor:
        return deviceDescriptor();
    case Configuration:
        return configuration();
    case String:
        if (wanted.index == 0) {
            return Bytes{4, String, lowByte(english), highByte(english)};
        }
        if (wanted.index <= 3) { // whose it is, what it is, which it is
            return stringDescriptor(wanted.index == 1 ? "veltra" : name);
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

Device::Answer Device::carryOut(const Message& message, const usbip::Transfer& transfer) {
    if (message.begins) {
        heldBack.reset(); // the rest of that transfer never came
    }
    Bytes data(message.isRead ? transfer.length : 0, 0xFF);
    const Outcome outcome = message.isRead ? read(message, data) : write(message, transfer.data);
    if (outcome == Outcome::Failed) {
        // The driver says nothing more of this transfer, and nobody knows how far it came.
        if (std::exchange(holds, false) || !message.ends) {
            bus.release();
        }
    } else if (!heldBack) { // an address that is not acknowledged frees the bus
        holds = outcome == Outcome::Done && !message.ends;
    }
    messageStatus = outcome == Outcome::Done ? Acknowledged : NotAcknowledged;
    return outcome == Outcome::Failed ? std::nullopt : Answer(std::move(data));
}

Outcome Device::read(const Message& message, Bytes& data) {
    const bool hold = !message.ends;
    if (heldBack && heldBack->address == message.address) {
        const Bytes registerBytes = std::exchange(heldBack, std::nullopt)->data;
        return bus.read(message.address, registerBytes, data, hold);
    }
    const Outcome before = sendHeldBack();
    return before == Outcome::Done ? bus.read(message.address, {}, data, hold) : before;
}

Outcome Device::write(const Message& message, const Bytes& data) {
    const Outcome before = sendHeldBack();
    if (before != Outcome::Done) {
        return before;
    }
    if (message.begins && !message.ends && !data.empty() &&
        data.size() <= I2cBus::maxRegisterBytes) {
        heldBack = HeldBack{message.address, data};
        return Outcome::Done;
    }
    return bus.write(message.address, data, !message.ends);
}

Outcome Device::sendHeldBack() {
    if (!heldBack) {
        return Outcome::Done;
    }
    const HeldBack held = *std::exchange(heldBack, std::nullopt);
    const Outcome outcome = bus.write(held.address, held.data, true);
    // Where it has failed, nobody knows how far it came: whoever is told releases the bus.
    holds = outcome != Outcome::NotAcknowledged;
    return outcome;
}

usbip::ExportedDevice exportedBus(I2cBus& bus, const std::string& name) {
    usbip::Description description;
    description.maker = "veltra";
    description.vendorId = vendorId;
    description.productId = productId;
    description.deviceRelease = release;
    description.deviceClass = {vendorClass, 0, 0};
    description.interfaces = {{vendorClass, 0, 0}};
    return {description,
            [&bus, name](usbip::Device::Receiver receiver) {
                return std::make_unique<Device>(bus, name, std::move(receiver));
            },
            false};
}

} // namespace tiny_usb
