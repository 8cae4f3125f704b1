// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"
#include "capi/Marshalling.hpp"

int16_t VeltraSDK_SpiControllerInit(VeltraSDK_Handle* handle, SpiBitOrder bitOrder, SpiMode mode,
                                    SpiDataWidth dataWidth, SpiChipSelect chipSelect,
                                    SpiChipSelectPolarity polarity, uint32_t clockHz) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.spiControllerInit(bitOrder, mode, dataWidth, chipSelect, polarity, clockHz);
    });
}

int16_t VeltraSDK_SpiSetParameters(VeltraSDK_Handle* handle, SpiBitOrder bitOrder, SpiMode mode,
                                   SpiDataWidth dataWidth, SpiChipSelect chipSelect,
                                   SpiChipSelectPolarity polarity, uint32_t clockHz) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.spiSetParameters(bitOrder, mode, dataWidth, chipSelect, polarity, clockHz);
    });
}

int16_t VeltraSDK_SpiTransfer(VeltraSDK_Handle* handle, const uint8_t* send, uint16_t sendLength,
                              uint8_t* receive, uint16_t length) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) {
        std::vector<uint8_t>& sent = copyIn(buffers.sent, send, send == nullptr ? 0 : sendLength);
        const uint16_t result = sdk.spiTransfer(sent, buffers.received, length);
        if (result == ResultCode_Success && receive != nullptr) {
            copyOut(buffers.received, receive);
        }
        return result;
    });
}
