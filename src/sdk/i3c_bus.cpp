// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

#include <utility>

static_assert(sizeof(I3cTargetInfo) == 16, "C callers hand over arrays of this stride");

namespace {

constexpr size_t recordCountOffset = 6;
constexpr size_t recordsOffset = 7;
constexpr size_t recordSize = 16;
constexpr size_t maxTableAnswer = recordsOffset + 255 * recordSize;

I3cTargetInfo targetAt(const ResponseFrame& response, size_t offset) {
    I3cTargetInfo target{};
    target.staticAddress = response.u8(offset);
    target.dynamicAddress = response.u8(offset + 1);
    response.copyTo(target.pid, offset + 2, sizeof(target.pid));
    target.bcr = response.u8(offset + 8);
    target.dcr = response.u8(offset + 9);
    target.maxWriteLength = response.u16(offset + 10);
    target.maxReadLength = response.u16(offset + 12);
    target.maxIbiPayloadSize = response.u8(offset + 14);
    target.configuration = response.u8(offset + 15);
    return target;
}

uint8_t lowByte(uint32_t value) {
    return static_cast<uint8_t>(value & 0xFFU);
}

} // namespace

uint16_t VeltraSDK::i3cSetBusVoltage(uint16_t millivolts) {
    return engine->command(&VeltraAsyncSDK::i3cSetBusVoltage, millivolts);
}

uint16_t VeltraSDK::i3cControllerInit(I3cPushPullRate pushPullRate,
                                      I3cOpenDrainTransferRate openDrainRate,
                                      I2cTransferRate i2cRate, I3cDriveStrength driveStrength) {
    return engine->command(&VeltraAsyncSDK::i3cControllerInit, lowByte(pushPullRate),
                           lowByte(openDrainRate), lowByte(i2cRate), lowByte(driveStrength));
}

uint16_t VeltraSDK::i3cSetParameters(I3cPushPullRate pushPullRate,
                                     I3cOpenDrainTransferRate openDrainRate,
                                     I2cTransferRate i2cRate, I3cDriveStrength driveStrength) {
    return engine->command(&VeltraAsyncSDK::i3cSetParameters, lowByte(pushPullRate),
                           lowByte(openDrainRate), lowByte(i2cRate), lowByte(driveStrength));
}

uint16_t VeltraSDK::i3cResetBus() {
    return engine->command(&VeltraAsyncSDK::i3cResetBus);
}

uint16_t VeltraSDK::i3cInitBus(std::vector<I3cTargetInfo> targets) {
    return engine->command(&VeltraAsyncSDK::i3cInitBus, std::move(targets));
}

uint16_t VeltraSDK::i3cGetDeviceTable(std::vector<I3cTargetInfo>& table) {
    return engine->ask(maxTableAnswer, &VeltraAsyncSDK::i3cGetDeviceTable)
        .decoded([&](const ResponseFrame& response) {
            table.resize(response.u8(recordCountOffset));
            size_t offset = recordsOffset;
            for (I3cTargetInfo& target : table) {
                target = targetAt(response, offset);
                offset += recordSize;
            }
        });
}

uint16_t VeltraSDK::i3cSetTargetDeviceConfiguration(uint8_t address,
                                                    I3cTargetConfiguration configuration) {
    return engine->command(&VeltraAsyncSDK::i3cSetTargetDeviceConfiguration, address,
                           configuration);
}
