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

constexpr size_t largestReportSize = 1024;
constexpr unsigned firstPacket = 0x1;
constexpr unsigned lastPacket = 0x2;
constexpr uint8_t responseLength = 12;
constexpr uint8_t stringLength = 6;

size_t reportSizeOfNextDevice = 64;
std::chrono::nanoseconds responseDelay{0};
std::chrono::nanoseconds reportTime{0};
std::atomic<bool> isUnplugged{false};
std::atomic<size_t> reads{0};

} // namespace

struct hid_device_ {
    size_t reportSize;
    Clock::time_point busFree;

    std::array<uint8_t, 4> header;
    std::array<uint8_t, largestReportSize> response;

    std::mutex mutex;
    std::condition_variable answered;
    bool pending;
    Clock::time_point due;
};

namespace {

hid_device_ theDevice{};
hid_device_info theInfo{};
std::string thePath = "1-1:1.0";
std::wstring theSerialNumber = L"LOOPBACK";

void answer(hid_device_& device) {
    const std::lock_guard<std::mutex> lock(device.mutex);
    device.response = {(firstPacket | lastPacket) | responseLength << 2U, 0};
    std::copy(device.header.begin(), device.header.end(), device.response.begin() + 2);
    device.response[8] = stringLength;
    std::fill_n(device.response.begin() + 9, stringLength - 1, uint8_t{'x'});
    device.pending = true;
    device.due = Clock::now() + responseDelay;
    device.answered.notify_one();
}

} // namespace

namespace loopback_hid {

void setReportSize(size_t reportSize) {
    reportSizeOfNextDevice = reportSize;
}
void setResponseDelay(std::chrono::nanoseconds delay) {
    responseDelay = delay;
}
void setReportTime(std::chrono::nanoseconds time) {
    reportTime = time;
}
void unplug(bool unplugged) {
    isUnplugged = unplugged;
}
size_t readCalls() {
    return reads;
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
    theInfo.product_id = reportSizeOfNextDevice == largestReportSize
                             ? VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED
                             : VELTRASDK_USB_PRODUCT_ID_FULL_SPEED;
    return &theInfo;
}

void hid_free_enumeration(hid_device_info* /*devices*/) {}

hid_device* hid_open_path(const char* /*path*/) {
    theDevice.reportSize = reportSizeOfNextDevice;
    theDevice.pending = false;
    return &theDevice;
}

void hid_close(hid_device* /*device*/) {}

int hid_write(hid_device* device, const unsigned char* data, size_t length) {
    if (reportTime.count() != 0) {
        std::this_thread::sleep_until(device->busFree);
        device->busFree = std::max(device->busFree, Clock::now()) + reportTime;
    }
    const unsigned header = data[1];
    if ((header & firstPacket) != 0) {
        std::copy_n(data + 3, device->header.size(), device->header.begin());
    }
    if ((header & lastPacket) != 0) {
        answer(*device);
    }
    return static_cast<int>(length);
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds) {
    ++reads;
    if (isUnplugged) {
        return -1;
    }
    std::unique_lock<std::mutex> lock(device->mutex);
    if (!device->answered.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                   [&] { return device->pending; })) {
        return 0;
    }
    device->pending = false;
    const Clock::time_point due = device->due;
    const size_t count = std::min(length, device->reportSize);
    std::copy_n(device->response.begin(), count, data);
    lock.unlock();
    std::this_thread::sleep_until(due);
    return static_cast<int>(count);
}

} // extern "C"
#pragma GCC visibility pop
