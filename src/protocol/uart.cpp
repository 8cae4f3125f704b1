// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

namespace {

RequestFrame parameters(uint16_t transactionId, CommandCode command, UartBaudRate baudRate,
                        UartHwHandshake handshake, UartParity parity, UartDataSize dataSize,
                        UartStopBit stopBit) {
    RequestFrame request(transactionId, command);
    request.u8(baudRate).u8(handshake).u8(parity).u8(dataSize).u8(stopBit);
    return request;
}

} // namespace

uint16_t VeltraAsyncSDK::uartInit(uint16_t transactionId, UartBaudRate baudRate,
                                  UartHwHandshake handshake, UartParity parity,
                                  UartDataSize dataSize, UartStopBit stopBit) {
    return link->send(parameters(transactionId, CommandCode::UartInit, baudRate, handshake, parity,
                                 dataSize, stopBit));
}

uint16_t VeltraAsyncSDK::uartSetParameters(uint16_t transactionId, UartBaudRate baudRate,
                                           UartHwHandshake handshake, UartParity parity,
                                           UartDataSize dataSize, UartStopBit stopBit) {
    return link->send(parameters(transactionId, CommandCode::UartSetParameters, baudRate, handshake,
                                 parity, dataSize, stopBit));
}

uint16_t VeltraAsyncSDK::uartSendMessage(uint16_t transactionId,
                                         const std::vector<uint8_t>& message) {
    return link->send(RequestFrame(transactionId, CommandCode::UartSendMessage)
                          .count16(message.size())
                          .bytes(message));
}
