// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include <veltrasdk/VeltraSDK.hpp>

#include "driver/Hidapi.hpp"
#include "driver/adapters.hpp"

std::vector<VeltraSDK_AdapterInfo> VeltraSDK::adapters() {
    return pluggedInAdapters();
}

bool VeltraSDK::shareHidapi() {
    return Hidapi::share();
}
