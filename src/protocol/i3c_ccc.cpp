// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

uint16_t VeltraAsyncSDK::i3cCccTransfer(uint16_t transactionId, uint8_t address,
                                        I3cTransferDirection direction, I3cTransferMode mode,
                                        bool optionFlag, I3cCccType type, uint8_t length, CCC code,
                                        uint8_t definingByte, const std::vector<uint8_t>& data) {
    if (direction == I3cTransferDirection_Read && !data.empty()) {
        return link->refuse();
    }
    const uint32_t control =
        direction | mode << 1U | (optionFlag ? 1U : 0U) << 3U | static_cast<uint32_t>(type) << 4U;
    return link->send(RequestFrame(transactionId, CommandCode::I3cCccTransfer)
                          .u8(address)
                          .u8(static_cast<uint8_t>(control & 0xFFU))
                          .u8(length)
                          .u8(static_cast<uint8_t>(code & 0xFFU))
                          .u8(type == I3cCccType_WithoutDefiningByte ? 0 : definingByte)
                          .bytes(data));
}
