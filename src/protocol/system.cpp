// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

uint16_t VeltraAsyncSDK::enterBootMode(uint16_t transactionId) {
    const uint16_t result = link->send(RequestFrame(transactionId, CommandCode::EnterBootMode));
    if (result == ResultCode_Success) {
        disconnect();
    }
    return result;
}

uint16_t VeltraAsyncSDK::getUsbString(uint16_t transactionId, uint8_t index) {
    return link->send(RequestFrame(transactionId, CommandCode::GetUsbString).u8(index));
}
