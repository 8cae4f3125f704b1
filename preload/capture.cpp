// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/CaptureRecorder.hpp"
#include "preload/capture_next.hpp"

// The eight functions of hidapi that the library calls, in front of whatever has them behind this
// library. They return what those return and add records to the capture. What the program asks of
// hidapi beyond them goes past this library.

using preload::CaptureRecorder;
using preload::nextHidapi;

namespace {

// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): it has a lock.
CaptureRecorder recorder;

} // namespace

int hid_init() {
    const auto next = nextHidapi().init;
    return next != nullptr ? next() : -1;
}

int hid_exit() {
    const auto next = nextHidapi().exit;
    return next != nullptr ? next() : -1;
}

// NOLINTNEXTLINE(readability-identifier-naming): hidapi's names.
hid_device_info* hid_enumerate(unsigned short vendor_id, unsigned short product_id) {
    const auto next = nextHidapi().enumerate;
    hid_device_info* const devices = next != nullptr ? next(vendor_id, product_id) : nullptr;
    for (const hid_device_info* device = devices; device != nullptr; device = device->next) {
        recorder.listed(*device);
    }
    return devices;
}

void hid_free_enumeration(hid_device_info* devs) {
    if (const auto next = nextHidapi().freeEnumeration) {
        next(devs);
    }
}

hid_device* hid_open_path(const char* path) {
    const auto next = nextHidapi().openPath;
    hid_device* const device = next != nullptr ? next(path) : nullptr;
    if (device != nullptr) {
        recorder.opened(device, path);
    }
    return device;
}

int hid_write(hid_device* device, const unsigned char* data, size_t length) {
    const auto next = nextHidapi().write;
    if (next == nullptr) {
        return -1;
    }
    const uint64_t transfer = recorder.writing(device, data, length);
    const int result = next(device, data, length);
    recorder.written(device, transfer, result);
    return result;
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds) {
    const auto next = nextHidapi().readTimeout;
    if (next == nullptr) {
        return -1;
    }
    recorder.reading(device, length);
    const int result = next(device, data, length, milliseconds);
    recorder.haveRead(device, data, length, result);
    return result;
}

void hid_close(hid_device* device) {
    recorder.closing(device);
    if (const auto next = nextHidapi().close) {
        next(device);
    }
}
