// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

uint16_t VeltraSDK::uartInit(UartBaudRate baudRate, UartHwHandshake handshake, UartParity parity,
                             UartDataSize dataSize, UartStopBit stopBit) {
    return engine->command(&VeltraAsyncSDK::uartInit, baudRate, handshake, parity, dataSize,
                           stopBit);
}

uint16_t VeltraSDK::uartSetParameters(UartBaudRate baudRate, UartHwHandshake handshake,
                                      UartParity parity, UartDataSize dataSize,
                                      UartStopBit stopBit) {
    return engine->command(&VeltraAsyncSDK::uartSetParameters, baudRate, handshake, parity,
                           dataSize, stopBit);
}

uint16_t VeltraSDK::uartSendMessage(const std::vector<uint8_t>& message) {
    return engine->command(&VeltraAsyncSDK::uartSendMessage, message);
}
