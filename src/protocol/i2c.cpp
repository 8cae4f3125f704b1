// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

#include <numeric>

namespace {

RequestFrame parameters(uint16_t transactionId, CommandCode command, uint8_t busIndex,
                        uint32_t clockHz, uint8_t option) {
    RequestFrame request(transactionId, command);
    request.u8(busIndex).u32(clockHz).u8(option);
    return request;
}

/// What a write and a read have in common: the length is that of the data to write or to read, and
/// the register address travels as its number of bytes and one 32-bit value.
RequestFrame transfer(uint16_t transactionId, CommandCode command, uint8_t busIndex,
                      uint8_t targetAddress, const std::vector<uint8_t>& registerAddress,
                      size_t length, bool flag) {
    const uint32_t foldedAddress =
        std::accumulate(registerAddress.begin(), registerAddress.end(), uint32_t{0},
                        [](uint32_t folded, uint8_t byte) { return folded << 8U | byte; });
    RequestFrame request(transactionId, command);
    request.u8(busIndex)
        .count16(length)
        .u8(targetAddress)
        .u8(static_cast<uint8_t>(registerAddress.size()))
        .u32(foldedAddress)
        .flag(flag);
    return request;
}

} // namespace

uint16_t VeltraAsyncSDK::i2cControllerInit(uint16_t transactionId, uint8_t busIndex,
                                           uint32_t clockHz, uint8_t option) {
    return link->send(
        parameters(transactionId, CommandCode::I2cControllerInit, busIndex, clockHz, option));
}

uint16_t VeltraAsyncSDK::i2cSetParameters(uint16_t transactionId, uint8_t busIndex,
                                          uint32_t clockHz, uint8_t option) {
    return link->send(
        parameters(transactionId, CommandCode::I2cSetParameters, busIndex, clockHz, option));
}

uint16_t VeltraAsyncSDK::i2cSetPullUpResistors(uint16_t transactionId, uint8_t busIndex,
                                               uint8_t setting) {
    return link->send(
        RequestFrame(transactionId, CommandCode::I2cSetPullUpResistors).u8(busIndex).u8(setting));
}

uint16_t VeltraAsyncSDK::i2cScanBus(uint16_t transactionId, uint8_t busIndex, bool flag) {
    return link->send(RequestFrame(transactionId, CommandCode::I2cScanBus).u8(busIndex).flag(flag));
}

uint16_t VeltraAsyncSDK::i2cWrite(uint16_t transactionId, uint8_t busIndex, uint8_t targetAddress,
                                  const std::vector<uint8_t>& registerAddress,
                                  const std::vector<uint8_t>& data, bool flag) {
    if (registerAddress.size() > RequestFrame::maxSubAddressSize) {
        return link->refuse();
    }
    return link->send(transfer(transactionId, CommandCode::I2cWrite, busIndex, targetAddress,
                               registerAddress, data.size(), flag)
                          .bytes(data));
}

uint16_t VeltraAsyncSDK::i2cRead(uint16_t transactionId, uint8_t busIndex, uint8_t targetAddress,
                                 const std::vector<uint8_t>& registerAddress, uint16_t length,
                                 bool flag) {
    if (registerAddress.size() > RequestFrame::maxSubAddressSize) {
        return link->refuse();
    }
    return link->send(transfer(transactionId, CommandCode::I2cRead, busIndex, targetAddress,
                               registerAddress, length, flag));
}
