// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Answer.hpp"

namespace virtual_adapter {

/// The one I/O voltage that the I2C, SPI, UART and GPIO pins share.
class IoVoltage {
public:
    Answer set(ByteReader& request);

    /// The status of a request that needs the voltage and whose fields have all been read:
    /// without the voltage nothing else counts.
    [[nodiscard]] Status check(const ByteReader& request, bool valuesKnown) const;

    [[nodiscard]] bool isOn() const { return outputEnabled; }

private:
    bool outputEnabled = false;
};

} // namespace virtual_adapter
