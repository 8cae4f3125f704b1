// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usb/UsbTestBed.hpp"

#include <hidapi/hidapi.h>

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <mutex>
#include <stdexcept>

namespace {

std::mutex currentMutex;
test_support::UsbTestBed* current = nullptr;

} // namespace

// Each takes the place of hidapi's own, which it calls: to know which adapter is opened, and to
// count what the program reads of it.
extern "C" __attribute__((visibility("default"))) hid_device* hid_open_path(const char* path) {
    static const auto original =
        reinterpret_cast<decltype(&hid_open_path)>(dlsym(RTLD_NEXT, "hid_open_path"));
    hid_device* const device = original(path);
    const std::lock_guard<std::mutex> lock(currentMutex);
    if (current != nullptr && device != nullptr) {
        current->opened(device, path);
    }
    return device;
}

extern "C" __attribute__((visibility("default"))) int
hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds) {
    static const auto original =
        reinterpret_cast<decltype(&hid_read_timeout)>(dlsym(RTLD_NEXT, "hid_read_timeout"));
    const int result = original(device, data, length, milliseconds);
    const std::lock_guard<std::mutex> lock(currentMutex);
    if (current != nullptr) {
        current->readReturned(device, result);
    }
    return result;
}

#ifdef __SANITIZE_THREAD__
/// GLib's locks are its own, which the thread sanitizer does not see: it takes everything that the
/// test bed's two threads share for a race. libudev seeds its hash tables from any thread, and
/// libusb learns through a plain variable that a synchronous transfer has ended.
extern "C" __attribute__((visibility("default"))) const char*
__tsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "race:libgio-2.0.so.0\nrace:libglib-2.0.so.0\nrace:libgobject-2.0.so.0\n"
           "race:libudev.so.1\nrace:libumockdev.so.0\nrace:libusb_free_transfer\n";
}
#endif

namespace test_support {

UsbTestBed::UsbTestBed() : testbed(nullptr) {
    const char* const preloaded = std::getenv("LD_PRELOAD");
    if (preloaded == nullptr || std::strstr(preloaded, "umockdev") == nullptr) {
        throw std::runtime_error("run this program under umockdev-wrapper");
    }
    testbed = umockdev_testbed_new();
    const std::lock_guard<std::mutex> lock(currentMutex);
    current = this;
}

UsbTestBed::~UsbTestBed() {
    {
        const std::lock_guard<std::mutex> lock(currentMutex);
        current = nullptr;
    }
    nodes.clear();
    g_object_unref(testbed);
}

UsbNode& UsbTestBed::plugIn(const virtual_adapter::AdapterSettings& settings) {
    return nodes.emplace_back(testbed, settings, ++lastPort);
}

UsbNode& UsbTestBed::replug(UsbNode& unplugged, const virtual_adapter::AdapterSettings& settings) {
    const unsigned port = unplugged.busPort();
    nodes.remove_if([&](const UsbNode& node) { return &node == &unplugged; });
    return nodes.emplace_back(testbed, settings, port);
}

void UsbTestBed::opened(const void* device, const std::string& path) {
    paths[device] = path;
}

void UsbTestBed::readReturned(const void* device, int result) {
    if (result < 0) {
        ++failures;
        return;
    }
    const std::string& path = paths[device];
    for (UsbNode& node : nodes) {
        if (result > 0 && node.path() == path) {
            node.reportRead();
        }
    }
}

} // namespace test_support
