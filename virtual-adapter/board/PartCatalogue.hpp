// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "board/parts/SpiFlash.hpp"
#include "model/i2c/I2cTarget.hpp"
#include "model/i3c/I3cTarget.hpp"
#include "model/spi/SpiTarget.hpp"
#include "model/uart/UartTarget.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace virtual_adapter {

/// The bus that a part is made for. Parts for I2C also stand on the I3C bus, as legacy devices.
enum class PartBus { I2c, I2cTenBit, Spi, Uart, I3c };

/// One kind of part: a row of the catalogue. It is made by the function of its bus; of a kind that
/// is a program of the user's there is none, and a 10-bit address needs none.
struct PartKind {
    /// One target for each address that the part has.
    using MakeI2c = std::vector<std::unique_ptr<I2cTarget>>(const SettingValues& settings);
    /// @p keeper may be empty.
    using MakeSpi = std::unique_ptr<SpiTarget>(const SettingValues& settings,
                                               const SpiFlash::Keeper& keeper);
    using MakeUart = std::unique_ptr<UartTarget>();
    /// @p switchSupply is for a part that switches a supply.
    using MakeI3c = std::unique_ptr<I3cTarget>(
        const SettingValues& settings, const std::function<void(bool supplied)>& switchSupply);

    PartBus bus;
    std::string name;
    /// What it is, as it follows the name.
    std::string text;
    std::vector<Setting> settings;
    /// How many addresses of its bus it answers to, from its own on.
    unsigned addresses = 1;

    std::function<MakeI2c> makeI2c;
    std::function<MakeSpi> makeSpi;
    std::function<MakeUart> makeUart;
    std::function<MakeI3c> makeI3c;

    /// What is wrong with settings that are each allowed by itself; empty when nothing is. The
    /// first word is the name of a setting.
    std::function<std::string(const SettingValues&)> complaintAbout;

    [[nodiscard]] bool isProgram() const;
};

/// Every kind of part that a board can have, by bus.
const std::vector<PartKind>& partCatalogue();

/// Null when the bus has no such part.
const PartKind* findPart(PartBus bus, const std::string& name);

} // namespace virtual_adapter
