// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "devices/Buses.hpp"

#include <cstdint>
#include <memory>

namespace devices {

using virtual_adapter::ByteReader;

/// What a system call returns: an error number below zero, or its result, and data beside it.
struct Answer {
    int32_t result = 0;
    Bytes data{};
};

inline Answer refusal(int error) {
    return {-error, {}};
}

/// What an ioctl that asks for a number is told.
inline Answer numberAnswer(uint32_t number) {
    Answer answer;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        answer.data.push_back(static_cast<uint8_t>(number >> shift & 0xFFU));
    }
    return answer;
}

/// A device as one open left it; descriptors that were copied from one another share it.
class OpenedDevice {
public:
    OpenedDevice() = default;
    virtual ~OpenedDevice() = default;
    OpenedDevice(const OpenedDevice&) = delete;
    OpenedDevice& operator=(const OpenedDevice&) = delete;

    /// An ioctl; the arguments are what the program says they are.
    virtual Answer control(uint32_t request, ByteReader& arguments) = 0;
    virtual Answer read(uint32_t count) = 0;
    virtual Answer write(const Bytes& data) = 0;
};

/// What a name below /dev stands for.
class Device {
public:
    Device() = default;
    virtual ~Device() = default;
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    virtual std::unique_ptr<OpenedDevice> open() = 0;
};

} // namespace devices
