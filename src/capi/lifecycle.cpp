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
