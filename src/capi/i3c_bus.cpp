// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"
#include "capi/Marshalling.hpp"

#include <utility>

int16_t VeltraSDK_I3cSetBusVoltage(VeltraSDK_Handle* handle, uint16_t millivolts) {
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i3cSetBusVoltage(millivolts); });
}

int16_t VeltraSDK_I3cControllerInit(VeltraSDK_Handle* handle, I3cPushPullRate pushPullRate,
                                    I3cOpenDrainTransferRate openDrainRate, I2cTransferRate i2cRate,
                                    I3cDriveStrength driveStrength) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.i3cControllerInit(pushPullRate, openDrainRate, i2cRate, driveStrength);
    });
}

int16_t VeltraSDK_I3cSetParameters(VeltraSDK_Handle* handle, I3cPushPullRate pushPullRate,
                                   I3cOpenDrainTransferRate openDrainRate, I2cTransferRate i2cRate,
                                   I3cDriveStrength driveStrength) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.i3cSetParameters(pushPullRate, openDrainRate, i2cRate, driveStrength);
    });
}

int16_t VeltraSDK_I3cResetBus(VeltraSDK_Handle* handle) {
    return withSdk(handle, [](VeltraSDK& sdk) { return sdk.i3cResetBus(); });
}

int16_t VeltraSDK_I3cInitBus(VeltraSDK_Handle* handle, const I3cTargetInfo* targets,
                             uint8_t count) {
    std::vector<I3cTargetInfo> records;
    if (count != 0) {
        records.assign(targets, targets + count);
    }
    return withSdk(handle, [&](VeltraSDK& sdk) { return sdk.i3cInitBus(std::move(records)); });
}

int16_t VeltraSDK_I3cGetDeviceTable(VeltraSDK_Handle* handle, I3cTargetInfo* table,
                                    uint8_t capacity, uint8_t* count) {
    return withSdk(handle, [&](VeltraSDK& sdk) -> uint16_t {
        if (table == nullptr || count == nullptr) {
            return ResultCode_InvalidArgument;
        }
        std::vector<I3cTargetInfo> records;
        const uint16_t result = sdk.i3cGetDeviceTable(records);
        if (result == ResultCode_Success) {
            const size_t stored = std::min(records.size(), size_t{capacity});
            std::copy_n(records.begin(), stored, table);
            *count = static_cast<uint8_t>(stored);
        }
        return result;
    });
}

int16_t VeltraSDK_I3cSetTargetDeviceConfiguration(VeltraSDK_Handle* handle, uint8_t address,
                                                  I3cTargetConfiguration configuration) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.i3cSetTargetDeviceConfiguration(address, configuration);
    });
}
