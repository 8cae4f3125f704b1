// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/usbip.hpp"

#include "device/UsbDescriptors.hpp"
#include "device/UsbDevice.hpp"

#include <utility>

namespace virtual_adapter {

namespace {

usbip::Status statusOf(UsbStatus status) {
    switch (status) {
    case UsbStatus::Completed:
        return usbip::Status::Completed;
    case UsbStatus::Stalled:
        return usbip::Status::Stalled;
    case UsbStatus::Overflowed:
        return usbip::Status::Overflowed;
    case UsbStatus::Unplugged:
        break;
    }
    return usbip::Status::Unplugged;
}

class PluggedInAdapter : public usbip::Device {
public:
    PluggedInAdapter(const AdapterSettings& settings, DeviceInUse itsUse, Receiver receiver)
        : inUse(std::move(itsUse)),
          device(settings, [receiver = std::move(receiver)](UsbResult result) {
              receiver({result.id, statusOf(result.status), result.actualLength,
                        std::move(result.data)});
          }) {
        if (inUse) {
            *inUse = &device;
        }
    }

    ~PluggedInAdapter() override {
        if (inUse) {
            *inUse = nullptr;
        }
    }

    PluggedInAdapter(const PluggedInAdapter&) = delete;
    PluggedInAdapter& operator=(const PluggedInAdapter&) = delete;

    void submit(usbip::Transfer transfer, usbip::Time now) override {
        device.submit({transfer.id, transfer.endpointAddress,
                       SetupPacket::fromBytes(transfer.setup), transfer.length,
                       std::move(transfer.data)},
                      now);
    }

    bool cancel(uint64_t id) override { return device.cancel(id); }
    void serve(usbip::Time now) override { device.serve(now); }
    [[nodiscard]] std::optional<usbip::Time> nextDue() const override { return device.nextDue(); }
    [[nodiscard]] bool isOnBus() const override { return device.isOnBus(); }

private:
    DeviceInUse inUse;
    UsbDevice device;
};

usbip::Description describe(const UsbIdentity& identity) {
    usbip::Description description;
    description.maker = "veltra-virtual-adapter";
    description.speed =
        speedOf(identity) == UsbSpeed::Full ? usbip::Speed::Full : usbip::Speed::High;
    description.vendorId = identity.vendorId;
    description.productId = identity.productId;
    description.deviceRelease = identity.deviceRelease;
    description.configuration = onlyConfiguration;
    description.interfaces = {{hidInterfaceClass, 0, 0}};
    return description;
}

} // namespace

usbip::ExportedDevice exportedAdapter(const AdapterSettings& settings, const DeviceInUse& inUse) {
    return {describe(settings.identity),
            [settings, inUse](usbip::Device::Receiver receiver) {
                return std::make_unique<PluggedInAdapter>(settings, inUse, std::move(receiver));
            },
            false};
}

std::string tellDevice(UsbDevice* device, const std::string& stimulus, UsbDevice::Time now) {
    if (device == nullptr) {
        return "the adapter is not plugged in";
    }
    if (stimulus == "reset") {
        device->reset();
    } else if (stimulus == "unplug") {
        device->unplug();
    } else if (stimulus == "plug") {
        return "the kernel plugs in: start attach again";
    } else {
        return device->tell(stimulus, now);
    }
    return {};
}

} // namespace virtual_adapter
