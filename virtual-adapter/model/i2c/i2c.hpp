// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Answer.hpp"
#include "model/i2c/I2cController.hpp"
#include "model/system/voltage.hpp"

#include <array>
#include <cstddef>

namespace virtual_adapter {

/// The commands of the two I2C controllers.
class I2c {
public:
    static constexpr size_t busCount = 2;

    I2c(const IoVoltage& ioVoltage, std::array<I2cBus, busCount>& buses);

    Answer setPullUpResistors(ByteReader& request);
    Answer controllerInit(ByteReader& request);
    Answer setParameters(ByteReader& request);
    Answer write(ByteReader& request);
    Answer read(ByteReader& request);
    Answer scanBus(ByteReader& request);

private:
    Answer scan(ByteReader& request);

    const IoVoltage& voltage;
    std::array<I2cController, busCount> controllers;
};

} // namespace virtual_adapter
