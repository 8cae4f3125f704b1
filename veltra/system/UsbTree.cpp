// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "system/UsbTree.hpp"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <unistd.h>

namespace veltra {

namespace {

namespace fs = std::filesystem;

std::string firstLine(const fs::path& file) {
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

std::string fourDigits(unsigned identifier) {
    char text[16];
    (void)std::snprintf(text, sizeof text, "%04x", identifier & 0xFFFFU);
    return text;
}

/// The names in a directory; none when it cannot be read.
std::vector<fs::path> entriesOf(const fs::path& directory) {
    std::vector<fs::path> entries;
    std::error_code error;
    for (fs::directory_iterator at(directory, error), end; !error && at != end;
         at.increment(error)) {
        entries.push_back(at->path());
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

/// /dev/bus/usb/001/004, whose parts sysfs has as plain numbers.
fs::path nodeOf(const Roots& roots, const fs::path& device) {
    const auto padded = [](const std::string& number) {
        return number.size() < 3 ? std::string(3 - number.size(), '0') + number : number;
    };
    return roots.dev / "bus/usb" / padded(firstLine(device / "busnum")) /
           padded(firstLine(device / "devnum"));
}

bool isNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

} // namespace

std::vector<UsbDevice> usbDevices(const Roots& roots) {
    const std::string products[] = {fourDigits(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED),
                                    fourDigits(VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED)};
    std::vector<UsbDevice> devices;
    for (const fs::path& entry : entriesOf(roots.sys / "bus/usb/devices")) {
        const std::string product = firstLine(entry / "idProduct");
        if (firstLine(entry / "idVendor") != fourDigits(VELTRASDK_USB_VENDOR_ID) ||
            std::find(std::begin(products), std::end(products), product) == std::end(products)) {
            continue;
        }
        UsbDevice device;
        device.port = entry.filename();
        device.identifiers = fourDigits(VELTRASDK_USB_VENDOR_ID) + ":" + product;
        device.speed = firstLine(entry / "speed");
        device.serial = firstLine(entry / "serial");
        std::error_code none;
        device.driver =
            fs::read_symlink(entry / (device.port + ":1.0") / "driver", none).filename();
        device.node = nodeOf(roots, entry);
        devices.push_back(device);
    }
    return devices;
}

std::optional<UsbDevice> findUsbDevice(const Roots& roots, const std::string& hidPath) {
    for (const UsbDevice& device : usbDevices(roots)) {
        if (device.port == hidPath.substr(0, hidPath.find(':'))) {
            return device;
        }
    }
    return std::nullopt;
}

std::string holderOf(const Roots& roots, const fs::path& node) {
    for (const fs::path& process : entriesOf(roots.proc)) {
        const std::string number = process.filename();
        if (!isNumber(number) || number == std::to_string(getpid())) {
            continue;
        }
        for (const fs::path& descriptor : entriesOf(process / "fd")) {
            std::error_code error;
            if (fs::read_symlink(descriptor, error) == node) {
                return firstLine(process / "comm") + " (process " + number + ")";
            }
        }
    }
    return "";
}

} // namespace veltra
