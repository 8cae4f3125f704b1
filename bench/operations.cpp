// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "operations.hpp"

#include "LoopbackHid.hpp"

#include <algorithm>
#include <atomic>
#include <future>
#include <stdexcept>

namespace {

constexpr int timeoutMs = 10'000;
constexpr uint8_t address = 0x50;
constexpr auto size = static_cast<uint16_t>(loopback_hid::dataSize);

// The C callback has no context pointer.
std::atomic<size_t> awaited{0};
std::promise<void>* allReceived = nullptr;

void countOne() {
    if (--awaited == 0) {
        allReceived->set_value();
    }
}

void countOneInC(const Notification* notification) {
    unsigned char event = 0;
    if (VeltraSDK_notificationAsGpio(notification, &event)) {
        countOne();
    }
}

} // namespace

Operations::Operations(size_t reportSize, bool strict)
    : sdk(timeoutMs),
      handle(VeltraSDK_Create(timeoutMs)),
      sent(size),
      subAddress{0x12},
      longMessage(65'535, 0x55),
      buffer(size) {
    loopback_hid::setReportSize(reportSize);
    sdk.setStrict(strict);
    VeltraSDK_SetStrict(handle, strict);
    sdk.connect("");
    VeltraSDK_Connect(handle, nullptr);
    sdk.onNotification([](const Notification& notification) {
        if (notification.gpio() != nullptr) {
            countOne();
        }
    });
    VeltraSDK_onNotification(handle, countOneInC);

    const auto hasRead = [this](uint16_t result) { return result == 0 && bytes.size() == size; };
    smallOperations = {
        {"getUsbString", [this] { return sdk.getUsbString(bytes, 1) == 0 && bytes.size() == 5; }},
        {"i2cRead",
         [=] { return hasRead(sdk.i2cRead(0, address, subAddress, size, bytes, false)); }},
        {"I2cRead",
         [this] {
             return VeltraSDK_I2cRead(handle, 0, address, subAddress.data(), 1, size, buffer.data(),
                                      false) == 0;
         }},
        {"spiTransfer", [=] { return hasRead(sdk.spiTransfer(sent, bytes, size)); }},
        {"SpiTransfer",
         [this] {
             return VeltraSDK_SpiTransfer(handle, sent.data(), size, buffer.data(), size) == 0;
         }},
        {"i3cSdrWrite",
         [this] { return sdk.i3cSdrWrite(address, subAddress, sent, I3cTransferFlags_None) == 0; }},
        {"I3cSdrWrite",
         [this] {
             return VeltraSDK_I3cSdrWrite(handle, address, subAddress.data(), 1, sent.data(), size,
                                          I3cTransferFlags_None) == 0;
         }},
        {"i3cSdrRead",
         [=] {
             return hasRead(
                 sdk.i3cSdrRead(address, subAddress, size, bytes, I3cTransferFlags_None));
         }},
        {"I3cSdrRead",
         [this] {
             return VeltraSDK_I3cSdrRead(handle, address, subAddress.data(), 1, size, buffer.data(),
                                         &readCount, I3cTransferFlags_None) == 0 &&
                    readCount == size;
         }},
        {"i3cCccGETPID",
         [this] { return sdk.i3cCccGETPID(address, bytes) == 0 && bytes.size() == 6; }},
        {"I3cCccGETPID",
         [this] { return VeltraSDK_I3cCccGETPID(handle, address, buffer.data()) == 0; }},
    };
    longOperation = {"longRequest", [this] { return sdk.uartSendMessage(longMessage) == 0; }};

    // Both polling threads have begun to read then.
    for (const Operation& operation : smallOperations) {
        operation.run();
    }
}

Operations::~Operations() {
    VeltraSDK_Destroy(handle);
}

bool Operations::receiveNotifications(bool throughC, size_t count) {
    // The other one's polling thread must not take any.
    if (throughC) {
        sdk.disconnect();
    } else {
        VeltraSDK_Disconnect(handle);
    }
    std::promise<void> received;
    allReceived = &received;
    awaited = count;
    loopback_hid::notify(count);
    received.get_future().wait();
    return true;
}

bool Operations::queueNotifications(size_t number) {
    constexpr size_t bytesOfEntry = 31;
    constexpr size_t bytesOfEnd = 24;
    VeltraSDK_CloseNotificationQueue(handle);
    if (VeltraSDK_OpenNotificationQueue(handle, number * bytesOfEntry + bytesOfEnd) < 0 ||
        !receiveNotifications(true, number)) {
        return false;
    }
    VeltraSDK_QueuedNotification notification{};
    size_t taken = 0;
    while (VeltraSDK_TakeNotification(handle, &notification, buffer.data(), buffer.size())) {
        ++taken;
    }
    return taken == number && notification.lostBefore == 0;
}

const Operations::Operation& Operations::find(const std::string& name) const {
    if (name == longOperation.name) {
        return longOperation;
    }
    const auto found = std::find_if(smallOperations.begin(), smallOperations.end(),
                                    [&](const Operation& each) { return each.name == name; });
    if (found == smallOperations.end()) {
        throw std::invalid_argument(name);
    }
    return *found;
}
