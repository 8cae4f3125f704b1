// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "devices/Device.hpp"

namespace devices {

/// /dev/spidevB.C, as Linux's spidev has it: its settings are the device's, whoever has it open.
class SpiDevice : public Device {
public:
    SpiDevice(Buses& itsBuses, int chipSelect) : buses(itsBuses) {
        setting.chipSelect = chipSelect;
    }

    std::unique_ptr<OpenedDevice> open() override;

private:
    friend class OpenedSpiDevice;

    Buses& buses;
    SpiSetting setting;
    unsigned opened = 0;
};

} // namespace devices
