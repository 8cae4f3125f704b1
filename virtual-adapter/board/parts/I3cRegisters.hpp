// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/parts/RegisterMap.hpp"
#include "model/i3c/I3cTarget.hpp"

namespace virtual_adapter {

/// An I3C target that its users describe by its registers.
class I3cRegisters : public I3cTarget {
public:
    I3cRegisters(const I3cCharacteristics& ofThisTarget, const SettingValues& values);

    void resetWholeTarget() override;
    std::string set(const std::string& name, const std::string& value) override {
        return registers.set(name, value);
    }

private:
    [[nodiscard]] uint8_t readRegister(size_t index) const override { return registers.at(index); }
    void writeRegister(size_t index, uint8_t value) override { registers.writeAt(index, value); }

    RegisterMap registers;
};

} // namespace virtual_adapter
