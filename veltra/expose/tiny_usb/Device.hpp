// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "expose/tiny_usb/I2cBus.hpp"
#include "expose/tiny_usb/Request.hpp"

#include "usbip/Device.hpp"

#include <optional>
#include <string>

namespace tiny_usb {

/// In the range that is open for tests; the driver is told to take it.
constexpr uint16_t vendorId = 0x1209;
constexpr uint16_t productId = 0x0003;

/// The USB device around a bus. Every transfer ends at once.
///
/// A short write in front of a read is held back until the read comes, and is one transfer with it;
/// that it is not acknowledged is then told with the read.
class Device : public usbip::Device {
public:
    Device(I2cBus& i2cBus, std::string busName, Receiver receiver)
        : bus(i2cBus), name(std::move(busName)), completed(std::move(receiver)) {}
    ~Device() override;

    void submit(usbip::Transfer transfer, usbip::Time now) override;
    bool cancel(uint64_t /*id*/) override { return false; }
    void serve(usbip::Time /*now*/) override {}
    [[nodiscard]] std::optional<usbip::Time> nextDue() const override { return std::nullopt; }
    [[nodiscard]] bool isOnBus() const override { return true; }

private:
    /// Nothing is a refusal.
    using Answer = std::optional<Bytes>;

    Answer answer(const Request& request, const usbip::Transfer& transfer);
    [[nodiscard]] Answer descriptor(const GetDescriptor& wanted) const;
    Answer carryOut(const Message& message, const usbip::Transfer& transfer);
    Outcome read(const Message& message, Bytes& data);
    Outcome write(const Message& message, const Bytes& data);
    Outcome sendHeldBack();

    struct HeldBack {
        uint8_t address;
        Bytes data;
    };

    I2cBus& bus;
    std::string name;
    Receiver completed;
    std::optional<HeldBack> heldBack;
    bool holds = false;
    uint8_t messageStatus = 0;
};

/// A bus as a device that can be plugged in; the bus must outlive it.
usbip::ExportedDevice exportedBus(I2cBus& bus, const std::string& name);

} // namespace tiny_usb
