#include "capi/Handle.hpp"
#include "capi/Marshalling.hpp"

namespace {

using Bytes = std::vector<uint8_t>;

/// What the three reads have in common: @p read takes the receiving vector, which holds @p length
/// zeros at first, and returns the result code.
template <typename Read>
uint16_t readInto(uint8_t* data, uint16_t* count, uint16_t length, const Read& read) {
    if (data == nullptr || count == nullptr) {
        return ResultCode_InvalidArgument;
    }
    Bytes received(length);
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
    return withSdk(handle, [&](VeltraSDK& sdk) -> uint16_t {
        if (!isSubAddress(subAddress, subAddressLength) || isMissing(data, dataLength)) {
            return ResultCode_InvalidArgument;
        }
        return sdk.i3cSdrWrite(address, copyIn(subAddress, subAddressLength),
                               copyIn(data, dataLength), flags);
    });
}

int16_t VeltraSDK_I3cSdrRead(VeltraSDK_Handle* handle, uint8_t address, const uint8_t* subAddress,
                             uint8_t subAddressLength, uint16_t length, uint8_t* data,
                             uint16_t* count, I3cTransferFlags flags) {
    return withSdk(handle, [&](VeltraSDK& sdk) -> uint16_t {
        if (!isSubAddress(subAddress, subAddressLength)) {
            return ResultCode_InvalidArgument;
        }
        return readInto(data, count, length, [&](Bytes& received) {
            return sdk.i3cSdrRead(address, copyIn(subAddress, subAddressLength), length, received,
                                  flags);
        });
    });
}

int16_t VeltraSDK_I3cHdrDdrWrite(VeltraSDK_Handle* handle, uint8_t address, uint8_t hdrCommand,
                                 const uint8_t* data, uint16_t dataLength) {
    return withSdk(handle, [&](VeltraSDK& sdk) -> uint16_t {
        if (isMissing(data, dataLength)) {
            return ResultCode_InvalidArgument;
        }
        return sdk.i3cHdrDdrWrite(address, hdrCommand, copyIn(data, dataLength));
    });
}

int16_t VeltraSDK_I3cHdrDdrRead(VeltraSDK_Handle* handle, uint8_t address, uint8_t hdrCommand,
                                uint16_t length, uint16_t* count, uint8_t* data) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return readInto(data, count, length, [&](Bytes& received) {
            return sdk.i3cHdrDdrRead(address, hdrCommand, length, received);
        });
    });
}

int16_t VeltraSDK_I3cLegacyI2CWrite(VeltraSDK_Handle* handle, uint8_t address,
                                    const uint8_t* subAddress, uint8_t subAddressLength,
                                    const uint8_t* data, uint16_t dataLength,
                                    I3cTransferFlags flags) {
    return withSdk(handle, [&](VeltraSDK& sdk) -> uint16_t {
        if (!isSubAddress(subAddress, subAddressLength) || isMissing(data, dataLength)) {
            return ResultCode_InvalidArgument;
        }
        return sdk.i3cLegacyI2cWrite(address, copyIn(subAddress, subAddressLength),
                                     copyIn(data, dataLength), flags);
    });
}

int16_t VeltraSDK_I3cLegacyI2CRead(VeltraSDK_Handle* handle, uint8_t address,
                                   const uint8_t* subAddress, uint8_t subAddressLength,
                                   uint16_t length, uint8_t* data, uint16_t* count,
                                   I3cTransferFlags flags) {
    return withSdk(handle, [&](VeltraSDK& sdk) -> uint16_t {
        if (!isSubAddress(subAddress, subAddressLength)) {
            return ResultCode_InvalidArgument;
        }
        return readInto(data, count, length, [&](Bytes& received) {
            return sdk.i3cLegacyI2cRead(address, copyIn(subAddress, subAddressLength), length,
                                        received, flags);
        });
    });
}

int16_t VeltraSDK_I3cTargetResetPattern(VeltraSDK_Handle* handle) {
    return withSdk(handle, [](VeltraSDK& sdk) { return sdk.i3cTargetResetPattern(); });
}

int16_t VeltraSDK_I3cHdrExitPattern(VeltraSDK_Handle* handle) {
    return withSdk(handle, [](VeltraSDK& sdk) { return sdk.i3cHdrExitPattern(); });
}
