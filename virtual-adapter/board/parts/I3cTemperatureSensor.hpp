// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/i3c/I3cTarget.hpp"

namespace virtual_adapter {

/// A temperature sensor that sits at 25.5 degrees Celsius and interrupts on demand.
class I3cTemperatureSensor : public I3cTarget {
public:
    I3cTemperatureSensor();

private:
    void writeRegister(size_t index, uint8_t value) override;
};

} // namespace virtual_adapter
