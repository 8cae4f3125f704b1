// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Answer.hpp"
#include "model/spi/SpiBus.hpp"
#include "model/system/voltage.hpp"

#include <optional>

namespace virtual_adapter {

/// The commands of the SPI controller.
class Spi {
public:
    Spi(const IoVoltage& ioVoltage, SpiBus& itsBus) : voltage(ioVoltage), bus(itsBus) {}

    Answer controllerInit(ByteReader& request);
    Answer setParameters(ByteReader& request);
    Answer transfer(ByteReader& request);

private:
    struct Settings {
        SpiBitOrder bitOrder;
        SpiMode mode;
        SpiDataWidth dataWidth;
        SpiChipSelect chipSelect;
        SpiChipSelectPolarity polarity;
    };

    /// Reads the payload that initialising and changing the parameters share.
    Status readSettings(ByteReader& request, Settings& settings) const;
    /// What is received while @p sent goes out.
    [[nodiscard]] Bytes exchange(const Bytes& sent) const;

    const IoVoltage& voltage;
    SpiBus& bus;
    /// Empty until the controller has been initialised.
    std::optional<Settings> current;
};

} // namespace virtual_adapter
