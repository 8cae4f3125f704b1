// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "LoopbackHid.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include <hidapi.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t maxReportSize = 1024;
constexpr unsigned firstPacket = 0x1;
constexpr unsigned lastPacket = 0x2;
constexpr size_t headerSize = 4;
constexpr uint8_t responseLength = 10 + loopback_hid::dataSize;
constexpr uint8_t notificationLength = 7;
constexpr size_t maxOpenDevices = 2;

size_t reportSizeOfNextDevice = 64;
std::chrono::nanoseconds responseDelay{0};
std::atomic<size_t> notifications{0};
std::atomic<bool> isUnplugged{false};
std::atomic<bool> isAnswering{true};
std::atomic<size_t> reads{0};
std::atomic<size_t> writes{0};

} // namespace

struct hid_device_ {
    bool isOpen;
    size_t reportSize;

    /// What an answer repeats of its request: the header, and with it the address of an I2C read.
    std::array<uint8_t, 8> header;

    /// A response that has not been read.
    struct Answer {
        std::array<uint8_t, maxReportSize> report;
        Clock::time_point due;
    };

    std::mutex mutex;
    std::condition_variable answered;
    // As many as there may be requests outstanding.
    std::array<Answer, 4> answers;
    size_t answersGiven;
    size_t answersRead;
};

namespace {

std::array<hid_device_, maxOpenDevices> devices{};
hid_device_info theInfo{};
std::string thePath = "1-1:1.0";
std::wstring theSerialNumber = L"LOOPBACK";

/// What is not zero behind the status of each command's response: its offset in the frame.
void writePayload(const hid_device_& device, uint8_t* frame) {
    switch (device.header[2] | device.header[3] << 8) {
    case 0x0407: // string
        frame[6] = 6;
        break;
    case 0x0905: // I2C read
        std::fill_n(frame + 9, loopback_hid::dataSize, device.header[7]);
        break;
    case 0x0D04: // SPI transfer
        frame[6] = loopback_hid::dataSize;
        break;
    case 0x1908: // I3C private transfer
        frame[8] = loopback_hid::dataSize;
        break;
    case 0x1909: // Common Command Code
        frame[9] = 6;
        break;
    default:
        break;
    }
}

void answer(hid_device_& device) {
    const std::lock_guard<std::mutex> lock(device.mutex);
    auto& [report, due] = device.answers[device.answersGiven++ % device.answers.size()];
    report = {(firstPacket | lastPacket) | (responseLength << 2U & 0xFFU)};
    std::copy_n(device.header.begin(), headerSize, report.begin() + 2);
    writePayload(device, report.data() + 2);
    due = Clock::now() + responseDelay;
    device.answered.notify_one();
}

/// Takes one of the notifications that are to come, if there is one.
bool takeNotification() {
    if (notifications == 0) {
        return false;
    }
    --notifications;
    return true;
}

} // namespace

namespace loopback_hid {

void setReportSize(size_t reportSize) {
    reportSizeOfNextDevice = reportSize;
}
void setResponseDelay(std::chrono::nanoseconds delay) {
    responseDelay = delay;
}
void notify(size_t count) {
    notifications = count;
}
void unplug(bool unplugged) {
    isUnplugged = unplugged;
}
void answerRequests(bool answers) {
    isAnswering = answers;
}
size_t readCalls() {
    return reads;
}
size_t writeCalls() {
    return writes;
}

} // namespace loopback_hid

#pragma GCC visibility push(default)
extern "C" {

int hid_init(void) {
    return 0;
}
int hid_exit(void) {
    return 0;
}

hid_device_info* hid_enumerate(unsigned short /*vendorId*/, unsigned short /*productId*/) {
    theInfo.path = thePath.data();
    theInfo.serial_number = theSerialNumber.data();
    theInfo.vendor_id = VELTRASDK_USB_VENDOR_ID;
    theInfo.product_id = reportSizeOfNextDevice == maxReportSize
                             ? VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED
                             : VELTRASDK_USB_PRODUCT_ID_FULL_SPEED;
    return &theInfo;
}

void hid_free_enumeration(hid_device_info* /*devices*/) {}

hid_device* hid_open_path(const char* /*path*/) {
    auto* const device = std::find_if(devices.begin(), devices.end(),
                                      [](const hid_device_& each) { return !each.isOpen; });
    if (device == devices.end()) {
        return nullptr;
    }
    device->isOpen = true;
    device->reportSize = reportSizeOfNextDevice;
    device->answersGiven = 0;
    device->answersRead = 0;
    return device;
}

void hid_close(hid_device* device) {
    device->isOpen = false;
}

int hid_write(hid_device* device, const unsigned char* data, size_t length) {
    const unsigned header = data[1];
    if ((header & firstPacket) != 0) {
        std::copy_n(data + 3, device->header.size(), device->header.begin());
    }
    if ((header & lastPacket) != 0 && isAnswering) {
        answer(*device);
    }
    ++writes;
    return static_cast<int>(length);
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds) {
    ++reads;
    if (isUnplugged) {
        return -1;
    }
    if (takeNotification()) {
        std::fill_n(data, length, uint8_t{0});
        data[0] = static_cast<uint8_t>(firstPacket | lastPacket | notificationLength << 2U);
        data[4] = 0x81; // the command code of a GPIO interrupt
        data[5] = 0x14;
        return static_cast<int>(length);
    }
    std::unique_lock<std::mutex> lock(device->mutex);
    if (!device->answered.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                   [&] { return device->answersGiven != device->answersRead; })) {
        return 0;
    }
    const auto& [report, firstDue] =
        device->answers[device->answersRead++ % device->answers.size()];
    const Clock::time_point due = firstDue;
    const size_t count = std::min(length, device->reportSize);
    std::copy_n(report.begin(), count, data);
    lock.unlock();
    std::this_thread::sleep_until(due);
    return static_cast<int>(count);
}

} // extern "C"
#pragma GCC visibility pop
