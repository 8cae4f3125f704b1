// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "system/Versions.hpp"

#include <veltrasdk/veltrasdk.h>

#include <dlfcn.h>

namespace veltra {

std::string libraryVersion() {
    return VeltraSDK_GetVersion();
}

std::string hidapiVersion() {
    // The library brings hidapi along; nothing here is linked with it.
    void* const symbol = dlsym(RTLD_DEFAULT, "hid_version_str");
    return symbol == nullptr ? "unknown" : reinterpret_cast<const char* (*)()>(symbol)();
}

} // namespace veltra
