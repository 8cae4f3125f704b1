// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteWriter.hpp"
#include "model/Frame.hpp"

#include "protocol/CommandCode.hpp"

#include <string_view>

namespace virtual_adapter {

// Requests under the identifier 1, and the responses to them. What they are on the wire is held by
// one test of literal bytes for each command, in the room of its bus.

inline Bytes bytesOfText(std::string_view text) {
    return {text.begin(), text.end()};
}

inline ByteWriter header(CommandCode code) {
    ByteWriter frame;
    frame.u16(1).u16(static_cast<uint16_t>(code));
    return frame;
}

/// A response without a payload.
inline Frame answerOf(CommandCode code, uint16_t status) {
    return header(code).u16(status).take();
}

inline ByteWriter i2cTransfer(CommandCode code, uint8_t bus, uint8_t address, size_t length,
                              const Bytes& registerAddress, bool hold) {
    ByteWriter frame = header(code);
    frame.u8(bus)
        .u16(static_cast<uint16_t>(length))
        .u8(address)
        .u8(static_cast<uint8_t>(registerAddress.size()))
        .range(registerAddress.rbegin(), registerAddress.rend())
        .zeros(4 - registerAddress.size())
        .u8(hold ? 1 : 0);
    return frame;
}

/// The register address most significant byte first, as it goes over the bus.
inline Frame i2cWrite(uint8_t bus, uint8_t address, const Bytes& registerAddress, const Bytes& data,
                      bool hold = false) {
    return i2cTransfer(CommandCode::I2cWrite, bus, address, data.size(), registerAddress, hold)
        .bytes(data)
        .take();
}

inline Frame i2cRead(uint8_t bus, uint8_t address, const Bytes& registerAddress, uint16_t length,
                     bool hold = false) {
    return i2cTransfer(CommandCode::I2cRead, bus, address, length, registerAddress, hold).take();
}

/// The response to a read that brought @p data.
inline Frame i2cData(uint8_t bus, const Bytes& data) {
    return header(CommandCode::I2cRead)
        .u16(0)
        .u8(bus)
        .u16(static_cast<uint16_t>(data.size()))
        .bytes(data)
        .take();
}

inline Frame spiTransfer(const Bytes& sent, uint16_t receiveLength) {
    return header(CommandCode::SpiTransfer)
        .u16(static_cast<uint16_t>(sent.size()))
        .u16(receiveLength)
        .bytes(sent)
        .take();
}

/// The response to a transfer that brought @p data.
inline Frame spiData(const Bytes& data) {
    return header(CommandCode::SpiTransfer)
        .u16(0)
        .u16(static_cast<uint16_t>(data.size()))
        .bytes(data)
        .take();
}

} // namespace virtual_adapter
