// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

namespace {

constexpr size_t readCountOffset = 8;
constexpr size_t readDataOffset = 10;

/// The decoding of the three reads.
auto into(std::vector<uint8_t>& data) {
    return [&data](const ResponseFrame& response) {
        response.copyTo(data, readDataOffset, response.u16(readCountOffset));
    };
}

} // namespace

uint16_t VeltraSDK::i3cSdrWrite(uint8_t address, const std::vector<uint8_t>& subAddress,
                                const std::vector<uint8_t>& data, I3cTransferFlags flags) {
    return engine->command(&VeltraAsyncSDK::i3cSdrWrite, address, subAddress, data, flags);
}

uint16_t VeltraSDK::i3cSdrRead(uint8_t address, const std::vector<uint8_t>& subAddress,
                               uint16_t length, std::vector<uint8_t>& data,
                               I3cTransferFlags flags) {
    return engine
        ->ask(readDataOffset + length, &VeltraAsyncSDK::i3cSdrRead, address, subAddress, length,
              flags)
        .decoded(into(data));
}

uint16_t VeltraSDK::i3cHdrDdrWrite(uint8_t address, uint8_t hdrCommand,
                                   const std::vector<uint8_t>& data) {
    return engine->command(&VeltraAsyncSDK::i3cHdrDdrWrite, address, hdrCommand, data);
}

uint16_t VeltraSDK::i3cHdrDdrRead(uint8_t address, uint8_t hdrCommand, uint16_t length,
                                  std::vector<uint8_t>& data) {
    return engine
        ->ask(readDataOffset + length, &VeltraAsyncSDK::i3cHdrDdrRead, address, hdrCommand, length)
        .decoded(into(data));
}

uint16_t VeltraSDK::i3cLegacyI2cWrite(uint8_t address, const std::vector<uint8_t>& subAddress,
                                      const std::vector<uint8_t>& data, I3cTransferFlags flags) {
    return engine->command(&VeltraAsyncSDK::i3cLegacyI2cWrite, address, subAddress, data, flags);
}

uint16_t VeltraSDK::i3cLegacyI2cRead(uint8_t address, const std::vector<uint8_t>& subAddress,
                                     uint16_t length, std::vector<uint8_t>& data,
                                     I3cTransferFlags flags) {
    return engine
        ->ask(readDataOffset + length, &VeltraAsyncSDK::i3cLegacyI2cRead, address, subAddress,
              length, flags)
        .decoded(into(data));
}

uint16_t VeltraSDK::i3cTargetResetPattern() {
    return engine->command(&VeltraAsyncSDK::i3cTargetResetPattern);
}

uint16_t VeltraSDK::i3cHdrExitPattern() {
    return engine->command(&VeltraAsyncSDK::i3cHdrExitPattern);
}
