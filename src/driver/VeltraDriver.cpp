#include "driver/VeltraDriver.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <codecvt>
#include <locale>
#include <memory>
#include <utility>

namespace {

constexpr size_t fullSpeedReportSize = 64;
constexpr size_t highSpeedReportSize = 1024;
constexpr size_t largestReportSize = highSpeedReportSize;
constexpr size_t reportIdentifierSize = 1;

constexpr int readTimeoutMs = 100;

// After an unplug every read fails at once, for ever: the loop goes on, but slowly.
constexpr std::chrono::milliseconds firstErrorPause{1};
constexpr std::chrono::milliseconds longestErrorPause{100};

struct FreeEnumeration {
    void operator()(hid_device_info* devices) const { hid_free_enumeration(devices); }
};

} // namespace

const std::vector<VeltraDriver::MervoDeviceCharacteristics> VeltraDriver::mervoDeviceList{
    {VELTRASDK_USB_VENDOR_ID, VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, fullSpeedReportSize},
    {VELTRASDK_USB_VENDOR_ID, VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED, highSpeedReportSize},
};

bool compareSerial(const std::string& serialNumber, const wchar_t* deviceSerial) {
    if (deviceSerial == nullptr) {
        return false;
    }
    // The default facet has 0x10FFFF as its largest code point and knows no byte-order mark.
    std::wstring_convert<std::codecvt_utf8<wchar_t>> converter;
    return converter.to_bytes(deviceSerial) == serialNumber;
}

VeltraDriver::VeltraDriver() {
    hid_init();
}

VeltraDriver::~VeltraDriver() {
    if (isOpen) {
        close();
    }
    hid_exit();
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
    {
        const std::unique_ptr<hid_device_info, FreeEnumeration> devices(hid_enumerate(0, 0));
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
    if (opened == nullptr) {
        return false;
    }
    device = opened;
    deviceCharacteristics = foundCharacteristics;
    devicePath = std::move(foundPath);
    isOpen = true;
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
    {
        const std::lock_guard<std::mutex> lock(pauseMutex);
        isPolling = false;
    }
    pauseEnded.notify_one();
    if (pollingThread.joinable()) {
        pollingThread.join();
    }
    if (device != nullptr) {
        hid_close(device);
        device = nullptr;
    }
    isOpen = false;
    deviceCharacteristics = nullptr;
    devicePath.clear();
}

bool VeltraDriver::sendCommand(const std::vector<uint8_t>& packet) {
    if (!isOpen || device == nullptr) {
        return false;
    }
    const size_t endpointSize = getEndpointSize();
    const size_t length = std::min(packet.size(), endpointSize);
    // Byte 0 is the report identifier, 0 for unnumbered reports; behind the packet stand zeros.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only what is sent is worth filling.
    std::array<uint8_t, reportIdentifierSize + largestReportSize> report;
    report[0] = 0;
    auto* const padding =
        std::copy_n(packet.begin(), length, std::next(report.begin(), reportIdentifierSize));
    std::fill_n(padding, endpointSize - length, uint8_t{0});
    return hid_write(device, report.data(), reportIdentifierSize + endpointSize) >= 0;
}

void VeltraDriver::onResponse(std::function<void(const std::vector<uint8_t>&)> callback) {
    responseCallback.swap(callback);
}

void VeltraDriver::pollingLoop() {
    std::vector<uint8_t> report(getEndpointSize());
    std::chrono::milliseconds pause{0};
    while (isPolling) {
        const int received = hid_read_timeout(device, report.data(), report.size(), readTimeoutMs);
        if (received < 0) {
            pausePolling(pause);
            pause = std::clamp(2 * pause, firstErrorPause, longestErrorPause);
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
    pauseEnded.wait_for(lock, pause, [this] { return !isPolling; });
}
