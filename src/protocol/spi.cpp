// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

namespace {

RequestFrame parameters(uint16_t transactionId, CommandCode command, SpiBitOrder bitOrder,
                        SpiMode mode, SpiDataWidth dataWidth, SpiChipSelect chipSelect,
                        SpiChipSelectPolarity polarity, uint32_t clockHz) {
    RequestFrame request(transactionId, command);
    request.u8(bitOrder).u8(mode).u8(dataWidth).u8(chipSelect).u8(polarity).u32(clockHz);
    return request;
}

} // namespace

uint16_t VeltraAsyncSDK::spiControllerInit(uint16_t transactionId, SpiBitOrder bitOrder,
                                           SpiMode mode, SpiDataWidth dataWidth,
                                           SpiChipSelect chipSelect, SpiChipSelectPolarity polarity,
                                           uint32_t clockHz) {
    return link->send(parameters(transactionId, CommandCode::SpiControllerInit, bitOrder, mode,
                                 dataWidth, chipSelect, polarity, clockHz));
}

uint16_t VeltraAsyncSDK::spiSetParameters(uint16_t transactionId, SpiBitOrder bitOrder,
                                          SpiMode mode, SpiDataWidth dataWidth,
                                          SpiChipSelect chipSelect, SpiChipSelectPolarity polarity,
                                          uint32_t clockHz) {
    return link->send(parameters(transactionId, CommandCode::SpiSetParameters, bitOrder, mode,
                                 dataWidth, chipSelect, polarity, clockHz));
}

uint16_t VeltraAsyncSDK::spiTransfer(uint16_t transactionId, std::vector<uint8_t>& sendData,
                                     uint16_t length) {
    return link->send(RequestFrame(transactionId, CommandCode::SpiTransfer)
                          .count16(sendData.size())
                          .u16(length)
                          .bytes(sendData));
}
