// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

#include <algorithm>

size_t VeltraSDK_Enumerate(VeltraSDK_AdapterInfo* adapters, size_t capacity) {
    const std::vector<VeltraSDK_AdapterInfo> found = VeltraSDK::adapters();
    std::copy_n(found.begin(), std::min(found.size(), capacity), adapters);
    return found.size();
}

bool VeltraSDK_ShareHidapi() {
    return VeltraSDK::shareHidapi();
}
