// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The eight functions of hidapi, as the library calls them: handed on to the stand-in, and told to
// its recorder.
#include "support/ScriptedHid.hpp"

#include <hidapi.h>

namespace {

using test_support::Bytes;
using test_support::ScriptedHid;

thread_local bool serving = false;

/// What the stand-in does in between is not the library's doing.
class Serving {
public:
    Serving() { serving = true; }
    ~Serving() { serving = false; }
    Serving(const Serving&) = delete;
    Serving& operator=(const Serving&) = delete;
};

template <typename Describe>
void record(const Describe& describe) {
    if (const ScriptedHid::Recorder recorder = ScriptedHid::instance().recorder()) {
        recorder(describe());
    }
}

std::string hexLine(const unsigned char* data, int size) {
    return test_support::hexLine(Bytes(data, data + size));
}

} // namespace

bool ScriptedHid::isServing() {
    return serving;
}

// Visible, so that they stand in front of hidapi's own in a program that links the shared library.
#pragma GCC visibility push(default)
extern "C" {

int hid_init(void) {
    const Serving now;
    record([] { return "hid_init()"; });
    return ScriptedHid::instance().init();
}

int hid_exit(void) {
    const Serving now;
    record([] { return "hid_exit()"; });
    return ScriptedHid::instance().exit();
}

hid_device_info* hid_enumerate(unsigned short vendorId, unsigned short productId) {
    const Serving now;
    record([&] {
        return "hid_enumerate(" + std::to_string(vendorId) + ", " + std::to_string(productId) + ")";
    });
    return static_cast<hid_device_info*>(ScriptedHid::instance().enumerate(vendorId, productId));
}

void hid_free_enumeration(hid_device_info* devices) {
    const Serving now;
    record([&] {
        return std::string("hid_free_enumeration(") + (devices == nullptr ? "null" : "list") + ")";
    });
    ScriptedHid::instance().freeEnumeration(devices);
}

hid_device* hid_open_path(const char* path) {
    const Serving now;
    record([&] { return "hid_open_path(" + std::string(path) + ")"; });
    return static_cast<hid_device*>(ScriptedHid::instance().openPath(path));
}

void hid_close(hid_device* device) {
    const Serving now;
    record([] { return "hid_close(device)"; });
    ScriptedHid::instance().close(device);
}

int hid_write(hid_device* device, const unsigned char* data, size_t length) {
    const Serving now;
    record([&] { return "hid_write(device, " + hexLine(data, static_cast<int>(length)) + ")"; });
    return ScriptedHid::instance().write(device, data, length);
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds) {
    const Serving now;
    const int result = ScriptedHid::instance().readTimeout(device, data, length, milliseconds);
    if (result != 0) {
        record([&] {
            return "hid_read_timeout(device, " + std::to_string(length) + ", " +
                   std::to_string(milliseconds) +
                   "): " + (result < 0 ? "-1" : hexLine(data, result));
        });
    }
    return result;
}

} // extern "C"
#pragma GCC visibility pop
