// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/parts/RegisterMap.hpp"
#include "model/spi/SpiTarget.hpp"

namespace virtual_adapter {

/// A device on the SPI bus that its users describe by its registers. A transfer begins with a
/// register's address, in which some bits say whether it is a read.
class SpiRegisters : public SpiTarget {
public:
    static constexpr unsigned maxWidth = 4;

    static std::vector<Setting> settings();
    /// As RegisterMap::complaintAbout.
    static std::string complaintAbout(const SettingValues& values);

    explicit SpiRegisters(const SettingValues& values);

    [[nodiscard]] bool understands(SpiMode mode, SpiChipSelectPolarity polarity) const override;
    Bytes transfer(const Bytes& sent) override;
    std::string set(const std::string& name, const std::string& value) override {
        return registers.set(name, value);
    }

private:
    RegisterMap registers;
    const Numbers modes;
    const unsigned readBits;
    const size_t dummyBytes;
};

} // namespace virtual_adapter
