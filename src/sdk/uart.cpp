#include "sdk/Transaction.hpp"

uint16_t VeltraSDK::uartSetBusVoltage(uint16_t millivolts, bool flag) {
    return transact([&](uint16_t id) { return asyncSdk->uartSetBusVoltage(id, millivolts, flag); });
}

uint16_t VeltraSDK::uartInit(UartBaudRate baudRate, UartHwHandshake handshake, UartParity parity,
                             UartDataSize dataSize, UartStopBit stopBit) {
    return transact([&](uint16_t id) {
        return asyncSdk->uartInit(id, baudRate, handshake, parity, dataSize, stopBit);
    });
}

uint16_t VeltraSDK::uartSetParameters(UartBaudRate baudRate, UartHwHandshake handshake,
                                      UartParity parity, UartDataSize dataSize,
                                      UartStopBit stopBit) {
    return transact([&](uint16_t id) {
        return asyncSdk->uartSetParameters(id, baudRate, handshake, parity, dataSize, stopBit);
    });
}

uint16_t VeltraSDK::uartSendMessage(const std::vector<uint8_t>& message) {
    return transact([&](uint16_t id) { return asyncSdk->uartSendMessage(id, message); });
}
