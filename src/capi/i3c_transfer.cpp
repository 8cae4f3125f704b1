// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"
#include "capi/Marshalling.hpp"

namespace {

using Bytes = std::vector<uint8_t>;

/// What the three reads have in common: @p read takes the receiving vector and returns the result
/// code.
template <typename Read>
uint16_t readInto(uint8_t* data, uint16_t* count, Bytes& received, const Read& read) {
    if (data == nullptr || count == nullptr) {
        return ResultCode_InvalidArgument;
    }
    const uint16_t result = read(received);
    if (result == ResultCode_Success) {
        copyOut(received, data);
        *count = static_cast<uint16_t>(received.size());
    }
    return result;
}

} // namespace

int16_t VeltraSDK_I3cSdrWrite(VeltraSDK_Handle* handle, uint8_t address, const uint8_t* subAddress,
                              uint8_t subAddressLength, const uint8_t* data, uint16_t dataLength,
                              I3cTransferFlags flags) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (!isSubAddress(subAddress, subAddressLength) || isMissing(data, dataLength)) {
            return ResultCode_InvalidArgument;
        }
        return sdk.i3cSdrWrite(address, copyIn(buffers.subAddress, subAddress, subAddressLength),
                               copyIn(buffers.sent, data, dataLength), flags);
    });
}

int16_t VeltraSDK_I3cSdrRead(VeltraSDK_Handle* handle, uint8_t address, const uint8_t* subAddress,
                             uint8_t subAddressLength, uint16_t length, uint8_t* data,
                             uint16_t* count, I3cTransferFlags flags) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (!isSubAddress(subAddress, subAddressLength)) {
            return ResultCode_InvalidArgument;
        }
        return readInto(data, count, buffers.received, [&](Bytes& received) {
            return sdk.i3cSdrRead(address, copyIn(buffers.subAddress, subAddress, subAddressLength),
                                  length, received, flags);
        });
    });
}

int16_t VeltraSDK_I3cHdrDdrWrite(VeltraSDK_Handle* handle, uint8_t address, uint8_t hdrCommand,
                                 const uint8_t* data, uint16_t dataLength) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (isMissing(data, dataLength)) {
            return ResultCode_InvalidArgument;
        }
        return sdk.i3cHdrDdrWrite(address, hdrCommand, copyIn(buffers.sent, data, dataLength));
    });
}

int16_t VeltraSDK_I3cHdrDdrRead(VeltraSDK_Handle* handle, uint8_t address, uint8_t hdrCommand,
                                uint16_t length, uint16_t* count, uint8_t* data) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) {
        return readInto(data, count, buffers.received, [&](Bytes& received) {
            return sdk.i3cHdrDdrRead(address, hdrCommand, length, received);
        });
    });
}

int16_t VeltraSDK_I3cLegacyI2CWrite(VeltraSDK_Handle* handle, uint8_t address,
                                    const uint8_t* subAddress, uint8_t subAddressLength,
                                    const uint8_t* data, uint16_t dataLength,
                                    I3cTransferFlags flags) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (!isSubAddress(subAddress, subAddressLength) || isMissing(data, dataLength)) {
            return ResultCode_InvalidArgument;
        }
        return sdk.i3cLegacyI2cWrite(address,
                                     copyIn(buffers.subAddress, subAddress, subAddressLength),
                                     copyIn(buffers.sent, data, dataLength), flags);
    });
}

int16_t VeltraSDK_I3cLegacyI2CRead(VeltraSDK_Handle* handle, uint8_t address,
                                   const uint8_t* subAddress, uint8_t subAddressLength,
                                   uint16_t length, uint8_t* data, uint16_t* count,
                                   I3cTransferFlags flags) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) -> uint16_t {
        if (!isSubAddress(subAddress, subAddressLength)) {
            return ResultCode_InvalidArgument;
        }
        return readInto(data, count, buffers.received, [&](Bytes& received) {
            return sdk.i3cLegacyI2cRead(address,
                                        copyIn(buffers.subAddress, subAddress, subAddressLength),
                                        length, received, flags);
        });
    });
}

int16_t VeltraSDK_I3cTargetResetPattern(VeltraSDK_Handle* handle) {
    return withSdk(handle, [](VeltraSDK& sdk) { return sdk.i3cTargetResetPattern(); });
}

int16_t VeltraSDK_I3cHdrExitPattern(VeltraSDK_Handle* handle) {
    return withSdk(handle, [](VeltraSDK& sdk) { return sdk.i3cHdrExitPattern(); });
}
