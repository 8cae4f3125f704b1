// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

namespace {

constexpr size_t receivedCountOffset = 6;
constexpr size_t receivedOffset = 8;

} // namespace

uint16_t VeltraSDK::spiControllerInit(SpiBitOrder bitOrder, SpiMode mode, SpiDataWidth dataWidth,
                                      SpiChipSelect chipSelect, SpiChipSelectPolarity polarity,
                                      uint32_t clockHz) {
    return engine->command(&VeltraAsyncSDK::spiControllerInit, bitOrder, mode, dataWidth,
                           chipSelect, polarity, clockHz);
}

uint16_t VeltraSDK::spiSetParameters(SpiBitOrder bitOrder, SpiMode mode, SpiDataWidth dataWidth,
                                     SpiChipSelect chipSelect, SpiChipSelectPolarity polarity,
                                     uint32_t clockHz) {
    return engine->command(&VeltraAsyncSDK::spiSetParameters, bitOrder, mode, dataWidth, chipSelect,
                           polarity, clockHz);
}

uint16_t VeltraSDK::spiTransfer(std::vector<uint8_t>& send, std::vector<uint8_t>& received,
                                uint16_t length) {
    return engine->ask(receivedOffset + length, &VeltraAsyncSDK::spiTransfer, send, length)
        .decoded([&](const ResponseFrame& response) {
            response.copyTo(received, receivedOffset, response.u16(receivedCountOffset));
        });
}
