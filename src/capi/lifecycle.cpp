// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"

VeltraSDK_Handle* VeltraSDK_Create(int32_t timeoutMs) {
    auto handle = std::make_unique<VeltraSDK_Handle>();
    handle->sdk = std::make_unique<VeltraSDK>(timeoutMs);
    return handle.release();
}

void VeltraSDK_Destroy(VeltraSDK_Handle* handle) {
    delete handle;
}

const char* VeltraSDK_GetVersion() {
    return VELTRASDK_VERSION;
}

bool VeltraSDK_Connect(VeltraSDK_Handle* handle, const char* path) {
    return handle != nullptr && handle->sdk->connect(path == nullptr ? "" : path);
}

bool VeltraSDK_ConnectWithSerialNumber(VeltraSDK_Handle* handle, const char* serialNumber) {
    return handle != nullptr && handle->sdk->connectWithSerialNumber(serialNumber);
}

void VeltraSDK_Disconnect(VeltraSDK_Handle* handle) {
    if (handle != nullptr) {
        handle->sdk->disconnect();
    }
}

bool VeltraSDK_IsConnected(VeltraSDK_Handle* handle) {
    return handle != nullptr && handle->sdk->isConnected();
}

void VeltraSDK_SetStrict(VeltraSDK_Handle* handle, bool strict) {
    if (handle != nullptr) {
        handle->sdk->setStrict(strict);
    }
}

int16_t VeltraSDK_SetOverlap(VeltraSDK_Handle* handle, uint8_t requests) {
    return withSdk(handle, [=](VeltraSDK& sdk) { return sdk.setOverlap(requests); });
}

uint64_t VeltraSDK_GetUnmatchedResponses(VeltraSDK_Handle* handle) {
    return handle == nullptr ? 0 : handle->sdk->getUnmatchedResponses();
}
