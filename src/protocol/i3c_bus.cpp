// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

#include <algorithm>
#include <iterator>

namespace {

RequestFrame parameters(uint16_t transactionId, CommandCode command, uint8_t pushPullRate,
                        uint8_t openDrainRate, uint8_t i2cRate, uint8_t driveStrength) {
    RequestFrame request(transactionId, command);
    request.u8(pushPullRate).u8(openDrainRate).u8(i2cRate).u8(driveStrength);
    return request;
}

constexpr size_t recordSize = 16;

void encode(const I3cTargetInfo& target, uint8_t* record) {
    record[0] = target.staticAddress;
    record[1] = target.dynamicAddress;
    std::copy(std::begin(target.pid), std::end(target.pid), record + 2);
    record[8] = target.bcr;
    record[9] = target.dcr;
    record[10] = static_cast<uint8_t>(target.maxWriteLength & 0xFFU);
    record[11] = static_cast<uint8_t>(target.maxWriteLength >> 8U);
    record[12] = static_cast<uint8_t>(target.maxReadLength & 0xFFU);
    record[13] = static_cast<uint8_t>(target.maxReadLength >> 8U);
    record[14] = target.maxIbiPayloadSize;
    record[15] = target.configuration;
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
    std::vector<uint8_t> records(count * recordSize);
    for (size_t index = 0; index < count; ++index) {
        encode(targets[index], &records[index * recordSize]);
    }
    return link->send(
        RequestFrame(transactionId, CommandCode::I3cInitBus).u8(count).bytes(records));
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
