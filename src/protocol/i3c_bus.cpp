// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

namespace {

RequestFrame parameters(uint16_t transactionId, CommandCode command, uint8_t pushPullRate,
                        uint8_t openDrainRate, uint8_t i2cRate, uint8_t driveStrength) {
    RequestFrame request(transactionId, command);
    request.u8(pushPullRate).u8(openDrainRate).u8(i2cRate).u8(driveStrength);
    return request;
}

void append(RequestFrame& request, const I3cTargetInfo& target) {
    request.u8(target.staticAddress).u8(target.dynamicAddress);
    for (const uint8_t byte : target.pid) {
        request.u8(byte);
    }
    request.u8(target.bcr)
        .u8(target.dcr)
        .u16(target.maxWriteLength)
        .u16(target.maxReadLength)
        .u8(target.maxIbiPayloadSize)
        .u8(target.configuration);
}

} // namespace

uint16_t VeltraAsyncSDK::i3cSetBusVoltage(uint16_t transactionId, uint16_t millivolts) {
    return link->send(RequestFrame(transactionId, CommandCode::I3cSetBusVoltage).u16(millivolts));
}

uint16_t VeltraAsyncSDK::i3cControllerInit(uint16_t transactionId, uint8_t pushPullRate,
                                           uint8_t openDrainRate, uint8_t i2cRate,
                                           uint8_t driveStrength) {
    return link->send(parameters(transactionId, CommandCode::I3cControllerInit, pushPullRate,
                                 openDrainRate, i2cRate, driveStrength));
}

uint16_t VeltraAsyncSDK::i3cSetParameters(uint16_t transactionId, uint8_t pushPullRate,
                                          uint8_t openDrainRate, uint8_t i2cRate,
                                          uint8_t driveStrength) {
    return link->send(parameters(transactionId, CommandCode::I3cSetParameters, pushPullRate,
                                 openDrainRate, i2cRate, driveStrength));
}

// Part of the interface: a vector taken by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
uint16_t VeltraAsyncSDK::i3cInitBus(uint16_t transactionId, std::vector<I3cTargetInfo> targets) {
    const auto count = static_cast<uint8_t>(targets.size() & 0xFFU);
    RequestFrame request(transactionId, CommandCode::I3cInitBus, count * sizeof(I3cTargetInfo));
    request.u8(count);
    for (uint8_t index = 0; index < count; ++index) {
        append(request, targets[index]);
    }
    return link->send(request);
}

uint16_t VeltraAsyncSDK::i3cResetBus(uint16_t transactionId) {
    return link->send(RequestFrame(transactionId, CommandCode::I3cResetBus));
}

uint16_t VeltraAsyncSDK::i3cGetDeviceTable(uint16_t transactionId) {
    return link->send(RequestFrame(transactionId, CommandCode::I3cGetDeviceTable));
}

uint16_t VeltraAsyncSDK::i3cSetTargetDeviceConfiguration(uint16_t transactionId, uint8_t address,
                                                         I3cTargetConfiguration configuration) {
    return link->send(RequestFrame(transactionId, CommandCode::I3cSetTargetDeviceConfiguration)
                          .u8(address)
                          .u8(configuration));
}
