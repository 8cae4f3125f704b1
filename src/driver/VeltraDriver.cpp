// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/VeltraDriver.hpp"

#include "driver/utf8.hpp"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

constexpr size_t fullSpeedReportSize = 64;
constexpr size_t highSpeedReportSize = OutputReport::maxSize;

constexpr int readTimeoutMs = 100;

// After an unplug every read fails at once, for ever: the loop goes on, but slowly.
constexpr std::chrono::milliseconds minErrorPause{1};
constexpr std::chrono::milliseconds maxErrorPause{100};

} // namespace

const std::vector<VeltraDriver::MervoDeviceCharacteristics> VeltraDriver::mervoDeviceList{
    {VELTRASDK_USB_VENDOR_ID, VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, fullSpeedReportSize},
    {VELTRASDK_USB_VENDOR_ID, VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED, highSpeedReportSize},
};

bool compareSerial(const std::string& serialNumber, const wchar_t* deviceSerial) {
    if (deviceSerial == nullptr) {
        return false;
    }
    return utf8(deviceSerial) == serialNumber;
}

VeltraDriver::~VeltraDriver() {
    if (isOpen) {
        close();
    }
}

const VeltraDriver::MervoDeviceCharacteristics*
VeltraDriver::findMervoDeviceCharacteristics(uint16_t vendorId, uint16_t productId) {
    const auto row = std::find_if(
        mervoDeviceList.begin(), mervoDeviceList.end(), [=](const auto& characteristics) {
            return characteristics.vendorId == vendorId && characteristics.productId == productId;
        });
    return row == mervoDeviceList.end() ? nullptr : &*row;
}

bool VeltraDriver::open(const std::string& path, const std::string& serialNumber) {
    if (isOpen) {
        return true;
    }

    const MervoDeviceCharacteristics* foundCharacteristics = nullptr;
    std::string foundPath;
    Hidapi::Lock held = Hidapi::lock();
    {
        const Hidapi::Devices devices = Hidapi::enumerate(held);
        for (const hid_device_info* info = devices.get(); info != nullptr; info = info->next) {
            if (!serialNumber.empty() && !compareSerial(serialNumber, info->serial_number)) {
                continue;
            }
            foundCharacteristics =
                findMervoDeviceCharacteristics(info->vendor_id, info->product_id);
            if (foundCharacteristics != nullptr && info->path != nullptr &&
                (path.empty() || path == info->path)) {
                foundPath = info->path;
                break;
            }
        }
    }
    if (foundPath.empty()) {
        return false;
    }

    hid_device* const opened = hid_open_path(foundPath.c_str());
    held.unlock();
    if (opened == nullptr) {
        return false;
    }
    device = opened;
    deviceCharacteristics = foundCharacteristics;
    devicePath = std::move(foundPath);
    isOpen = true;
    readError = false;
    isPolling = true;

    // A thread that cannot be started must not leave an open device that nobody reads.
    struct CloseUnlessPolling {
        VeltraDriver& driver;
        ~CloseUnlessPolling() {
            if (!driver.pollingThread.joinable()) {
                driver.close();
            }
        }
    };
    const CloseUnlessPolling guard{*this};
    pollingThread = std::thread(&VeltraDriver::pollingLoop, this);
    return true;
}

void VeltraDriver::close() {
    if (!isOpen) {
        return;
    }
    isPolling = false;
    endPause();
    if (pollingThread.joinable()) {
        pollingThread.join();
    }
    {
        const Hidapi::Lock held = Hidapi::lock();
        hid_close(device);
    }
    device = nullptr;
    isOpen = false;
    deviceCharacteristics = nullptr;
    devicePath.clear();
}

bool VeltraDriver::sendCommand(const std::vector<uint8_t>& packet) {
    if (!isOpen) {
        return false;
    }
    OutputReport report;
    const size_t length = std::min(packet.size(), getEndpointSize());
    std::copy_n(packet.begin(), length, report.packet());
    return sendReport(report, length);
}

bool VeltraDriver::sendReport(OutputReport& report, size_t packetSize) {
    if (!isOpen) {
        return false;
    }
    const size_t endpointSize = getEndpointSize();
    std::fill_n(report.packet() + packetSize, endpointSize - packetSize, uint8_t{0});
    if (hid_write(device, report.data(), OutputReport::identifierSize + endpointSize) < 0) {
        return false;
    }
    // Nothing is left to be done for the later reports of a long request.
    if (!hasWritten) {
        hasWritten = true;
        if (isPausing) {
            endPause();
        }
    }
    return true;
}

void VeltraDriver::onResponse(std::function<void(const std::vector<uint8_t>&)> callback) {
    responseCallback.swap(callback);
}

void VeltraDriver::onReadError(std::function<void()> callback) {
    readErrorCallback.swap(callback);
}

void VeltraDriver::pollingLoop() {
    std::vector<uint8_t> report(getEndpointSize());
    std::chrono::milliseconds pause{0};
    while (isPolling) {
        hasWritten = false;
        const int received = hid_read_timeout(device, report.data(), report.size(), readTimeoutMs);
        if (received < 0) {
            readError = true;
            if (readErrorCallback) {
                readErrorCallback();
            }
            pausePolling(pause);
            pause = std::clamp(2 * pause, minErrorPause, maxErrorPause);
            continue;
        }
        pause = std::chrono::milliseconds{0};
        if (received > 0 && responseCallback) {
            responseCallback(report);
        }
    }
}

void VeltraDriver::pausePolling(std::chrono::milliseconds pause) {
    if (pause == std::chrono::milliseconds{0}) {
        return;
    }
    std::unique_lock<std::mutex> lock(pauseMutex);
    isPausing = true;
    pauseEnded.wait_for(lock, pause, [this] { return !isPolling || hasWritten; });
    isPausing = false;
}

void VeltraDriver::endPause() {
    // Under the lock, so that whoever is about to wait sees what has changed, or is woken.
    const std::lock_guard<std::mutex> lock(pauseMutex);
    pauseEnded.notify_one();
}
