// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/capture_next.hpp"

#include <dlfcn.h>
#include <pthread.h>

namespace preload {

namespace {

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): written once.
NextHidapi next{};
pthread_once_t isLookedFor = PTHREAD_ONCE_INIT;
/// Where hidapi was loaded too late to be behind this library, as by an interpreter.
void* loaded = nullptr;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

template <typename Function>
void find(Function& function, const char* name) {
    void* address = dlsym(RTLD_NEXT, name);
    if (address == nullptr) {
        if (loaded == nullptr) {
            loaded = dlopen("libhidapi-libusb.so.0", RTLD_NOW | RTLD_LOCAL);
        }
        address = loaded != nullptr ? dlsym(loaded, name) : nullptr;
    }
    function = reinterpret_cast<Function>(address);
}

void findAll() {
    find(next.init, "hid_init");
    find(next.exit, "hid_exit");
    find(next.enumerate, "hid_enumerate");
    find(next.freeEnumeration, "hid_free_enumeration");
    find(next.openPath, "hid_open_path");
    find(next.write, "hid_write");
    find(next.readTimeout, "hid_read_timeout");
    find(next.close, "hid_close");
}

} // namespace

const NextHidapi& nextHidapi() {
    pthread_once(&isLookedFor, findAll);
    return next;
}

} // namespace preload
