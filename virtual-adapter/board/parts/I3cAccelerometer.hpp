// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/i3c/I3cTarget.hpp"

namespace virtual_adapter {

/// An accelerometer on a module. When power comes to its socket it asks to join the bus. It knows
/// version 1.0 of I3C only: no capabilities, no target reset.
class I3cAccelerometer : public I3cTarget {
public:
    I3cAccelerometer();

    void setSupply(bool isSupplied) override;
    [[nodiscard]] bool requestsHotJoin() const override { return joining; }
    void setDynamicAddress(uint8_t assigned) override;

private:
    void writeRegister(size_t index, uint8_t value) override;

    bool joining = false;
};

} // namespace virtual_adapter
