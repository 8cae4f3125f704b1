// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usb/UsbNode.hpp"

#include "device/UsbDescriptors.hpp"
#include "support/ScriptedHid.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <sys/ioctl.h>

namespace test_support {

using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;
using virtual_adapter::SetupPacket;
using virtual_adapter::UsbResult;
using virtual_adapter::UsbStatus;
using virtual_adapter::UsbTransfer;

namespace {

constexpr size_t setupSize = 8;
/// hidapi keeps 32 reports that nobody has read; half of it is safe.
constexpr size_t maxUnreadReports = 15;
constexpr uint8_t towardsHost = 0x80;
/// What ends the transfers of a device that the kernel has seen leave.
constexpr int gone = -ESHUTDOWN;

virtual_adapter::UsbDevice::Time now() {
    return std::chrono::steady_clock::now();
}

int statusOf(UsbStatus status) {
    switch (status) {
    case UsbStatus::Completed:
        return 0;
    case UsbStatus::Stalled:
        return -EPIPE;
    case UsbStatus::Overflowed:
        return -EOVERFLOW;
    case UsbStatus::Unplugged:
        return gone;
    }
    return -EPROTO;
}

/// The ioctl's argument as the client passed it, pointer or not.
gulong rawValue(const UMockdevIoctlData* argument) {
    gulong value = 0;
    std::memcpy(&value, argument->data, sizeof value);
    return value;
}

/// A copy of the client's memory that the argument points to; null when it cannot be had.
UMockdevIoctlData* resolve(UMockdevIoctlData* argument, size_t offset, size_t size) {
    return umockdev_ioctl_data_resolve(argument, offset, size, nullptr);
}

/// Copies a plain value back to where the client's argument points.
template <typename Value>
int writeBack(UMockdevIoctlData* argument, const Value& value) {
    UMockdevIoctlData* const target = resolve(argument, 0, sizeof value);
    if (target == nullptr) {
        return -EFAULT;
    }
    std::memcpy(target->data, &value, sizeof value);
    g_object_unref(target);
    return 0;
}

} // namespace

usbdevfs_urb& UsbNode::Urb::fields() const {
    return *reinterpret_cast<usbdevfs_urb*>(descriptor->data);
}

UsbNode::UsbNode(UMockdevTestbed* bed, const AdapterSettings& settings, unsigned busPort)
    : testbed(bed),
      port(busPort),
      sysPath("/sys/devices/usb1/1-" + std::to_string(busPort)),
      deviceNode(bed, busPort),
      ioctls(umockdev_ioctl_base_new()),
      device(settings, [this](const UsbResult& result) { end(result); }) {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        // The kernel configures a device as soon as it appears.
        device.submit({0, 0, SetupPacket::fromBytes({0x00, 0x09, 1, 0, 0, 0, 0, 0}), 0, {}}, now());
    }
    g_signal_connect(ioctls, "handle-ioctl", G_CALLBACK(handleIoctl), this);
    g_signal_connect(ioctls, "client-vanished", G_CALLBACK(handleVanished), this);
    umockdev_testbed_attach_ioctl(testbed, nodePath(port).c_str(), ioctls, nullptr);
    // In one step, as the announcement is the last thing it does: the device must be whole by then.
    umockdev_testbed_add_from_string(testbed, describe(settings, port).c_str(), nullptr);
}

UsbNode::~UsbNode() {
    unplug();
    umockdev_testbed_detach_ioctl(testbed, nodePath(port).c_str(), nullptr);
    g_object_unref(ioctls);
    drop(pending, nullptr);
    drop(done, nullptr);
}

void UsbNode::unplug() {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!pluggedIn) {
            return;
        }
        pluggedIn = false;
        leaveBus();
        showReadiness();
    }
    umockdev_testbed_uevent(testbed, sysPath.c_str(), "remove");
    umockdev_testbed_remove_device(testbed, sysPath.c_str());
}

void UsbNode::unplugAfter(size_t outputTransfers) {
    const std::lock_guard<std::mutex> lock(mutex);
    maxOutputTransfers = activity.outputTransfers + outputTransfers;
}

void UsbNode::acceptOutput(bool accept) {
    const std::lock_guard<std::mutex> lock(mutex);
    device.acceptOutput(accept, now());
    showReadiness();
}

void UsbNode::sendWithoutPacing() {
    const std::lock_guard<std::mutex> lock(mutex);
    paced = false;
    startPacedInput();
    showReadiness();
}

void UsbNode::reportRead() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (owner != nullptr && unreadReports > 0) {
        --unreadReports;
        startPacedInput();
        showReadiness();
    }
}

bool UsbNode::waitFor(const std::function<bool(const Activity&)>& condition) {
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, std::chrono::milliseconds(generousLimitMs),
                            [&] { return condition(activity); });
}

gboolean UsbNode::handleIoctl(UMockdevIoctlBase* /*base*/, UMockdevIoctlClient* client,
                              gpointer node) {
    auto& self = *static_cast<UsbNode*>(node);
    int result = 0;
    {
        const std::lock_guard<std::mutex> lock(self.mutex);
        result = self.answer(client, umockdev_ioctl_client_get_arg(client));
        self.showReadiness();
        self.changed.notify_all();
    }
    umockdev_ioctl_client_complete(client, result < 0 ? -1 : result, result < 0 ? -result : 0);
    return TRUE;
}

void UsbNode::handleVanished(UMockdevIoctlBase* /*base*/, UMockdevIoctlClient* client,
                             gpointer node) {
    auto& self = *static_cast<UsbNode*>(node);
    const std::lock_guard<std::mutex> lock(self.mutex);
    if (self.owner == client) {
        self.owner = nullptr;
    }
    for (const Urb& urb : self.pending) {
        if (urb.client == client) {
            self.device.cancel(urb.id);
        }
    }
    self.drop(self.pending, client);
    self.drop(self.done, client);
    self.showReadiness();
}

int UsbNode::answer(UMockdevIoctlClient* client, UMockdevIoctlData* argument) {
    const gulong request = umockdev_ioctl_client_get_request(client);
    if (request == USBDEVFS_REAPURBNDELAY) {
        return reap(client, argument);
    }
    if (!device.isOnBus()) {
        return -ENODEV;
    }
    switch (request) {
    case USBDEVFS_GET_CAPABILITIES:
        return writeBack<uint32_t>(argument, USBDEVFS_CAP_ZERO_PACKET |
                                                 USBDEVFS_CAP_NO_PACKET_SIZE_LIM |
                                                 USBDEVFS_CAP_REAP_AFTER_DISCONNECT);
    case USBDEVFS_GETDRIVER: {
        usbdevfs_getdriver driver{0, "usbhid"};
        return activity.driverDetached > activity.driverAttached ? -ENODATA
                                                                 : writeBack(argument, driver);
    }
    case USBDEVFS_IOCTL:
        return commandDriver(argument);
    case USBDEVFS_CLAIMINTERFACE:
        if (owner != nullptr) {
            return -EBUSY;
        }
        owner = client;
        unreadReports = 0;
        ++activity.claims;
        return 0;
    case USBDEVFS_RELEASEINTERFACE:
        owner = nullptr;
        ++activity.releases;
        return 0;
    case USBDEVFS_SUBMITURB:
        return submit(client, argument);
    case USBDEVFS_DISCARDURB:
        return discard(argument);
    default:
        return -ENOTTY;
    }
}

int UsbNode::commandDriver(UMockdevIoctlData* argument) {
    UMockdevIoctlData* const resolved = resolve(argument, 0, sizeof(usbdevfs_ioctl));
    if (resolved == nullptr) {
        return -EFAULT;
    }
    const auto command =
        static_cast<unsigned>(reinterpret_cast<const usbdevfs_ioctl*>(resolved->data)->ioctl_code);
    g_object_unref(resolved);
    if (command == USBDEVFS_DISCONNECT) {
        ++activity.driverDetached;
        return 0;
    }
    if (command == USBDEVFS_CONNECT) {
        ++activity.driverAttached;
        return 1;
    }
    return -ENOTTY;
}

int UsbNode::submit(UMockdevIoctlClient* client, UMockdevIoctlData* argument) {
    Urb urb{++lastId, client, resolve(argument, 0, sizeof(usbdevfs_urb)), nullptr};
    if (urb.descriptor == nullptr) {
        return -EFAULT;
    }
    const auto size = static_cast<size_t>(urb.fields().buffer_length);
    urb.buffer = resolve(urb.descriptor, offsetof(usbdevfs_urb, buffer), size);
    if (urb.buffer == nullptr && size > 0) {
        g_object_unref(urb.descriptor);
        return -EFAULT;
    }
    pending.push_back(urb);
    if (urb.fields().endpoint == virtual_adapter::inEndpointAddress && paced) {
        held.push_back(urb);
        startPacedInput();
    } else {
        start(urb);
    }
    return 0;
}

void UsbNode::start(const Urb& urb) {
    const usbdevfs_urb& fields = urb.fields();
    if (fields.endpoint == virtual_adapter::outEndpointAddress &&
        activity.outputTransfers >= maxOutputTransfers) {
        leaveBus();
        return;
    }
    const auto size = static_cast<size_t>(fields.buffer_length);
    UsbTransfer transfer{urb.id, fields.endpoint, {}, 0, {}};
    size_t dataOffset = 0;
    if (fields.type == USBDEVFS_URB_TYPE_CONTROL) {
        std::array<uint8_t, setupSize> setup{};
        std::copy_n(urb.buffer->data, setup.size(), setup.begin());
        transfer.setup = SetupPacket::fromBytes(setup);
        transfer.endpointAddress = setup[0] & towardsHost;
        dataOffset = setupSize;
    }
    if ((transfer.endpointAddress & towardsHost) != 0) {
        transfer.length = size - dataOffset;
    } else if (size > dataOffset) {
        transfer.data = Bytes(urb.buffer->data + dataOffset, urb.buffer->data + size);
    }
    device.submit(std::move(transfer), now());
}

void UsbNode::startPacedInput() {
    while (!held.empty() && (!paced || unreadReports < maxUnreadReports)) {
        const Urb urb = held.front();
        held.pop_front();
        start(urb);
    }
}

void UsbNode::end(const UsbResult& result) {
    const auto urb = std::find_if(pending.begin(), pending.end(),
                                  [&](const Urb& candidate) { return candidate.id == result.id; });
    if (urb == pending.end()) {
        return; // the kernel's own
    }
    const bool control = urb->fields().type == USBDEVFS_URB_TYPE_CONTROL;
    if (!result.data.empty()) {
        std::copy(result.data.begin(), result.data.end(),
                  urb->buffer->data + (control ? setupSize : 0));
    }
    if (!control && result.status == UsbStatus::Completed) {
        const bool input = (urb->fields().endpoint & towardsHost) != 0;
        unreadReports += input ? 1 : 0;
        activity.inputReports += input ? 1 : 0;
        activity.outputTransfers += input ? 0 : 1;
    }
    end(urb, statusOf(result.status), result.actualLength);
}

void UsbNode::end(const std::deque<Urb>::iterator& urb, int status, size_t actualLength) {
    urb->fields().status = status;
    urb->fields().actual_length = static_cast<int>(actualLength);
    done.push_back(*urb);
    pending.erase(urb);
    changed.notify_all();
}

int UsbNode::reap(UMockdevIoctlClient* client, UMockdevIoctlData* argument) {
    const auto urb = std::find_if(done.begin(), done.end(),
                                  [&](const Urb& candidate) { return candidate.client == client; });
    if (urb == done.end()) {
        return device.isOnBus() ? -EAGAIN : -ENODEV;
    }
    UMockdevIoctlData* const target = resolve(argument, 0, sizeof(void*));
    if (target == nullptr) {
        return -EFAULT;
    }
    umockdev_ioctl_data_set_ptr(target, 0, urb->descriptor);
    g_object_unref(target);
    g_object_unref(urb->descriptor);
    if (urb->buffer != nullptr) {
        g_object_unref(urb->buffer);
    }
    done.erase(urb);
    return 0;
}

int UsbNode::discard(UMockdevIoctlData* argument) {
    const gulong address = rawValue(argument);
    const auto urb = std::find_if(pending.begin(), pending.end(), [&](const Urb& candidate) {
        return candidate.descriptor->client_addr == address;
    });
    if (urb == pending.end()) {
        return -EINVAL;
    }
    device.cancel(urb->id);
    held.erase(std::remove_if(held.begin(), held.end(),
                              [&](const Urb& candidate) { return candidate.id == urb->id; }),
               held.end());
    end(urb, -ENOENT, 0);
    return 0;
}

void UsbNode::drop(std::deque<Urb>& urbs, const UMockdevIoctlClient* client) {
    const auto kept = std::stable_partition(urbs.begin(), urbs.end(), [&](const Urb& urb) {
        return client != nullptr && urb.client != client;
    });
    std::for_each(kept, urbs.end(), [](const Urb& urb) {
        g_object_unref(urb.descriptor);
        if (urb.buffer != nullptr) {
            g_object_unref(urb.buffer);
        }
    });
    urbs.erase(kept, urbs.end());
}

void UsbNode::leaveBus() {
    held.clear();
    device.unplug();
    while (!pending.empty()) {
        end(pending.begin(), gone, 0);
    }
}

void UsbNode::showReadiness() {
    deviceNode.showReadiness(!done.empty());
}

} // namespace test_support
