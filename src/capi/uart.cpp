// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Handle.hpp"
#include "capi/Marshalling.hpp"

int16_t VeltraSDK_UartInit(VeltraSDK_Handle* handle, UartBaudRate baudRate,
                           UartHwHandshake handshake, UartParity parity, UartDataSize dataSize,
                           UartStopBit stopBit) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.uartInit(baudRate, handshake, parity, dataSize, stopBit);
    });
}

int16_t VeltraSDK_UartSetParameters(VeltraSDK_Handle* handle, UartBaudRate baudRate,
                                    UartHwHandshake handshake, UartParity parity,
                                    UartDataSize dataSize, UartStopBit stopBit) {
    return withSdk(handle, [&](VeltraSDK& sdk) {
        return sdk.uartSetParameters(baudRate, handshake, parity, dataSize, stopBit);
    });
}

int16_t VeltraSDK_UartSendMessage(VeltraSDK_Handle* handle, const uint8_t* message,
                                  uint16_t length) {
    return withBuffers(handle, [&](VeltraSDK& sdk, OperationBuffers& buffers) {
        return sdk.uartSendMessage(copyIn(buffers.sent, message, length));
    });
}
