// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"
#include "capi/Marshalling.hpp"

int16_t VeltraSDK_I2cControllerInit(VeltraSDK_Handle* handle, uint8_t busIndex, uint32_t clockHz,
                                    uint8_t option) {
    return withSdk(
        handle, [&](VeltraSDK& sdk) { return sdk.i2cControllerInit(busIndex, clockHz, option); });
}

int16_t VeltraSDK_I2cSetParameters(VeltraSDK_Handle* handle, uint8_t busIndex, uint32_t clockHz,
                                   uint8_t option) {
    return withSdk(handle,
                   [&](VeltraSDK& sdk) { return sdk.i2cSetParameters(busIndex, clockHz, option); });
}

int16_t VeltraSDK_I2cSetPullUpResistors(VeltraSDK_Handle* handle, uint8_t busIndex,
                                        uint8_t setting) {
    return withSdk(handle,
                   [&](VeltraSDK& sdk) { return sdk.i2cSetPullUpResistors(busIndex, setting); });
}

int16_t VeltraSDK_I2cScanBus(VeltraSDK_Handle* handle, uint8_t* addresses, uint8_t size,
                             uint8_t* sevenBitCount, uint8_t* tenBitCount, uint8_t busIndex,
                             bool flag) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        // The bus index and the counts are the operation's to check.
        if (addresses == nullptr) {
            return ResultCode_InvalidArgument;
        }
        std::vector<uint8_t>& found = buffers.received;
        const uint16_t result = sdk.i2cScanBus(found, sevenBitCount, tenBitCount, busIndex, flag);
        if (result != ResultCode_Success) {
            return result;
        }
        if (found.size() > size) {
            return ResultCode_InvalidArgument;
        }
        copyOut(found, addresses);
        return result;
    });
}

int16_t VeltraSDK_I2cWrite(VeltraSDK_Handle* handle, uint8_t busIndex, uint8_t targetAddress,
                           const uint8_t* registerAddress, uint8_t registerAddressLength,
                           const uint8_t* data, uint32_t dataLength, bool flag) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (!isSubAddress(registerAddress, registerAddressLength) || isMissing(data, dataLength)) {
            return ResultCode_InvalidArgument;
        }
        return sdk.i2cWrite(busIndex, targetAddress,
                            copyIn(buffers.subAddress, registerAddress, registerAddressLength),
                            copyIn(buffers.sent, data, dataLength), flag);
    });
}

int16_t VeltraSDK_I2cRead(VeltraSDK_Handle* handle, uint8_t busIndex, uint8_t targetAddress,
                          const uint8_t* registerAddress, uint8_t registerAddressLength,
                          uint16_t length, uint8_t* data, bool flag) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (!isSubAddress(registerAddress, registerAddressLength) || data == nullptr) {
            return ResultCode_InvalidArgument;
        }
        const uint16_t result =
            sdk.i2cRead(busIndex, targetAddress,
                        copyIn(buffers.subAddress, registerAddress, registerAddressLength), length,
                        buffers.received, flag);
        if (result == ResultCode_Success) {
            copyOut(buffers.received, data);
        }
        return result;
    });
}
