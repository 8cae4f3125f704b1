// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "model/i3c/I3cTarget.hpp"

namespace virtual_adapter {

/// A temperature sensor that interrupts on demand.
class I3cTemperatureSensor : public I3cTarget {
public:
    static const I3cCharacteristics itsKind;
    /// The one that it has besides those of every target.
    static std::vector<Setting> settings();

    /// The sensor sits at a temperature in degrees Celsius, from -128 to 127, which it measures in
    /// steps of 1/256 of a degree.
    explicit I3cTemperatureSensor(const I3cCharacteristics& characteristics = itsKind,
                                  double temperature = 25.5);

    void resetWholeTarget() override;
    std::string set(const std::string& name, const std::string& value) override;

private:
    void writeRegister(size_t index, uint8_t value) override;
    void measure();

    double temperature;
};

} // namespace virtual_adapter
