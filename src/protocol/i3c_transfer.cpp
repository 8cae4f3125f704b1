// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

namespace {

using Bytes = std::vector<uint8_t>;

/// One kind of private transfer: where its bits lie in the transfer-control byte.
struct Kind {
    I3cTransferDirection direction;
    I3cTransferMode mode;
};

constexpr Kind sdrWrite{I3cTransferDirection_Write, I3cTransferMode_Sdr};
constexpr Kind sdrRead{I3cTransferDirection_Read, I3cTransferMode_Sdr};
constexpr Kind hdrDdrWrite{I3cTransferDirection_Write, I3cTransferMode_HdrDdr};
constexpr Kind hdrDdrRead{I3cTransferDirection_Read, I3cTransferMode_HdrDdr};
constexpr Kind legacyI2cWrite{I3cTransferDirection_Write, I3cTransferMode_LegacyI2c};
constexpr Kind legacyI2cRead{I3cTransferDirection_Read, I3cTransferMode_LegacyI2c};

constexpr uint8_t noHdrCommand = 0;
constexpr uint8_t targetResetPattern = 0;
constexpr uint8_t hdrExitPattern = 1;

/// What all transfers begin with.
RequestFrame beginningOf(uint16_t transactionId, Kind kind, uint8_t address, uint8_t hdrCommand,
                         I3cTransferFlags flags) {
    const uint32_t control = kind.direction | kind.mode << 1U | flags << 3U;
    RequestFrame request(transactionId, CommandCode::I3cPrivateTransfer);
    request.u8(address).u8(static_cast<uint8_t>(control & 0xFFU)).u8(hdrCommand);
    return request;
}

/// @p length is the number of bytes to write or to read.
RequestFrame transfer(uint16_t transactionId, Kind kind, uint8_t address, const Bytes& subAddress,
                      I3cTransferFlags flags, size_t length) {
    return beginningOf(transactionId, kind, address, noHdrCommand, flags)
        .u8(static_cast<uint8_t>(subAddress.size()))
        .subAddress(subAddress)
        .count16(length);
}

RequestFrame hdrDdrTransfer(uint16_t transactionId, Kind kind, uint8_t address, uint8_t hdrCommand,
                            size_t length) {
    constexpr uint8_t noSubAddress = 0;
    return beginningOf(transactionId, kind, address, hdrCommand, I3cTransferFlags_None)
        .u8(noSubAddress)
        .u32(0)
        .count16(length);
}

} // namespace

uint16_t VeltraAsyncSDK::i3cSdrWrite(uint16_t transactionId, uint8_t address,
                                     const Bytes& subAddress, const Bytes& data,
                                     I3cTransferFlags flags) {
    if (subAddress.size() > RequestFrame::maxSubAddressSize) {
        return link->refuse();
    }
    return link->send(
        transfer(transactionId, sdrWrite, address, subAddress, flags, data.size()).bytes(data));
}

uint16_t VeltraAsyncSDK::i3cSdrRead(uint16_t transactionId, uint8_t address,
                                    const Bytes& subAddress, uint16_t length,
                                    I3cTransferFlags flags) {
    if (subAddress.size() > RequestFrame::maxSubAddressSize) {
        return link->refuse();
    }
    return link->send(transfer(transactionId, sdrRead, address, subAddress, flags, length));
}

uint16_t VeltraAsyncSDK::i3cHdrDdrWrite(uint16_t transactionId, uint8_t address, uint8_t hdrCommand,
                                        const Bytes& data) {
    return link->send(
        hdrDdrTransfer(transactionId, hdrDdrWrite, address, hdrCommand, data.size()).bytes(data));
}

uint16_t VeltraAsyncSDK::i3cHdrDdrRead(uint16_t transactionId, uint8_t address, uint8_t hdrCommand,
                                       uint16_t length) {
    return link->send(hdrDdrTransfer(transactionId, hdrDdrRead, address, hdrCommand, length));
}

uint16_t VeltraAsyncSDK::i3cLegacyI2cWrite(uint16_t transactionId, uint8_t address,
                                           const Bytes& subAddress, const Bytes& data,
                                           I3cTransferFlags flags) {
    if (subAddress.size() > RequestFrame::maxSubAddressSize) {
        return link->refuse();
    }
    return link->send(
        transfer(transactionId, legacyI2cWrite, address, subAddress, flags, data.size())
            .bytes(data));
}

uint16_t VeltraAsyncSDK::i3cLegacyI2cRead(uint16_t transactionId, uint8_t address,
                                          const Bytes& subAddress, uint16_t length,
                                          I3cTransferFlags flags) {
    if (subAddress.size() > RequestFrame::maxSubAddressSize) {
        return link->refuse();
    }
    return link->send(transfer(transactionId, legacyI2cRead, address, subAddress, flags, length));
}

uint16_t VeltraAsyncSDK::i3cTargetResetPattern(uint16_t transactionId) {
    return link->send(
        RequestFrame(transactionId, CommandCode::I3cBusPattern).u8(targetResetPattern));
}

uint16_t VeltraAsyncSDK::i3cHdrExitPattern(uint16_t transactionId) {
    return link->send(RequestFrame(transactionId, CommandCode::I3cBusPattern).u8(hdrExitPattern));
}
