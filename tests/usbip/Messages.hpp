// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usbip/Device.hpp"

#include <algorithm>
#include <cstdint>
#include <string>

// What a host says, as it is said on the wire.

namespace usbip {

inline const Bytes listRequest{0x01, 0x11, 0x80, 0x05, 0, 0, 0, 0};

inline Bytes importRequest(const std::string& busId = "1-1") {
    Bytes request{0x01, 0x11, 0x80, 0x03, 0, 0, 0, 0};
    request.insert(request.end(), busId.begin(), busId.end());
    request.resize(40);
    return request;
}

constexpr uint8_t towardsDevice = 0;
constexpr uint8_t towardsHost = 1;

inline Bytes submit(uint8_t sequence, uint8_t direction, uint8_t endpoint, uint8_t length,
                    const Bytes& setup = Bytes(8), const Bytes& data = {}) {
    Bytes command(48);
    command.at(3) = 1;
    command.at(7) = sequence;
    command.at(15) = direction;
    command.at(19) = endpoint;
    command.at(27) = length;
    std::copy(setup.begin(), setup.end(), command.begin() + 40);
    command.insert(command.end(), data.begin(), data.end());
    return command;
}

inline Bytes submitRead(uint8_t sequence) {
    return submit(sequence, towardsHost, 1, 64);
}

inline Bytes submitWrite(uint8_t sequence, const Bytes& report) {
    return submit(sequence, towardsDevice, 1, static_cast<uint8_t>(report.size()), Bytes(8),
                  report);
}

inline Bytes unlink(uint8_t sequence, uint8_t unlinked) {
    Bytes command(48);
    command.at(3) = 2;
    command.at(7) = sequence;
    command.at(23) = unlinked;
    return command;
}

inline Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline const Bytes selectConfiguration{0x00, 0x09, 1, 0, 0, 0, 0, 0};
inline const Bytes getDeviceDescriptor{0x80, 0x06, 0x00, 0x01, 0, 0, 18, 0};

} // namespace usbip
