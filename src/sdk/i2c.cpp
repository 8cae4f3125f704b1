// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

namespace {

constexpr uint8_t maxBusIndex = 1;
constexpr size_t sevenBitCountOffset = 7;
constexpr size_t tenBitCountOffset = 8;
constexpr size_t dataOffset = 9;
// As many addresses as the two counts can tell, of one and of two bytes.
constexpr size_t maxScanAnswer = dataOffset + size_t{3} * 255;

} // namespace

uint16_t VeltraSDK::i2cControllerInit(uint8_t busIndex, uint32_t clockHz, uint8_t option) {
    return engine->command(&VeltraAsyncSDK::i2cControllerInit, busIndex, clockHz, option);
}

uint16_t VeltraSDK::i2cSetParameters(uint8_t busIndex, uint32_t clockHz, uint8_t option) {
    return engine->command(&VeltraAsyncSDK::i2cSetParameters, busIndex, clockHz, option);
}

uint16_t VeltraSDK::i2cSetPullUpResistors(uint8_t busIndex, uint8_t setting) {
    return engine->command(&VeltraAsyncSDK::i2cSetPullUpResistors, busIndex, setting);
}

uint16_t VeltraSDK::i2cScanBus(std::vector<uint8_t>& addresses, uint8_t* sevenBitCount,
                               uint8_t* tenBitCount, uint8_t busIndex, bool flag) {
    if (busIndex > maxBusIndex || sevenBitCount == nullptr || tenBitCount == nullptr) {
        return ResultCode_InvalidArgument;
    }
    return engine->ask(maxScanAnswer, &VeltraAsyncSDK::i2cScanBus, busIndex, flag)
        .judged([&](const ResponseFrame& response) -> uint16_t {
            const uint8_t sevenBit = response.u8(sevenBitCountOffset);
            const uint8_t tenBit = response.u8(tenBitCountOffset);
            const size_t length = sevenBit + 2U * tenBit;
            // The caller may want only one of them, and name one variable for both.
            *sevenBitCount = sevenBit;
            *tenBitCount = tenBit;
            if (!response.holds(dataOffset + length)) {
                return ResultCode_ShortResponse;
            }
            response.copyTo(addresses, dataOffset, length);
            return response.status();
        });
}

uint16_t VeltraSDK::i2cWrite(uint8_t busIndex, uint8_t targetAddress,
                             const std::vector<uint8_t>& registerAddress,
                             const std::vector<uint8_t>& data, bool flag) {
    return engine->command(&VeltraAsyncSDK::i2cWrite, busIndex, targetAddress, registerAddress,
                           data, flag);
}

uint16_t VeltraSDK::i2cRead(uint8_t busIndex, uint8_t targetAddress,
                            const std::vector<uint8_t>& registerAddress, uint16_t length,
                            std::vector<uint8_t>& data, bool flag) {
    return engine
        ->ask(dataOffset + length, &VeltraAsyncSDK::i2cRead, busIndex, targetAddress,
              registerAddress, length, flag)
        .decoded([&](const ResponseFrame& response) { response.copyTo(data, dataOffset, length); });
}
