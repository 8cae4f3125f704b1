// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "devices/Device.hpp"

namespace devices {

/// /dev/i2c-N, as Linux's i2c-dev has it.
class I2cDevice : public Device {
public:
    /// @p bus is the adapter's.
    I2cDevice(Buses& itsBuses, int itsBus) : buses(itsBuses), bus(itsBus) {}

    std::unique_ptr<OpenedDevice> open() override;

private:
    Buses& buses;
    int bus;
};

} // namespace devices
