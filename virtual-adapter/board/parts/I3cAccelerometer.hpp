// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "model/i3c/I3cTarget.hpp"

namespace virtual_adapter {

/// An accelerometer on a module. When power comes to its socket it asks to join the bus. It knows
/// version 1.0 of I3C only: no capabilities, no target reset.
class I3cAccelerometer : public I3cTarget {
public:
    static const I3cCharacteristics itsKind;
    /// Those that it has besides those of every target.
    static std::vector<Setting> settings();

    /// What it measures on its three axes, in units of 1 g from -8 to 7.
    using Axes = std::array<double, 3>;

    explicit I3cAccelerometer(const I3cCharacteristics& characteristics = itsKind,
                              const Axes& axes = {0, 0, 1});

    void setSupply(bool isSupplied) override;
    [[nodiscard]] bool requestsHotJoin() const override { return joining; }
    void setDynamicAddress(uint8_t assigned) override;
    void resetWholeTarget() override;
    std::string set(const std::string& name, const std::string& value) override;

private:
    void writeRegister(size_t index, uint8_t value) override;

    void measure();

    Axes measured;
    bool joining = false;
};

} // namespace virtual_adapter
