// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/PartCatalogue.hpp"

#include "board/BoardDescription.hpp"

#include <gtest/gtest.h>

#include <set>
#include <utility>

using virtual_adapter::findPart;
using virtual_adapter::PartBus;
using virtual_adapter::partCatalogue;
using virtual_adapter::PartKind;
using virtual_adapter::Settable;
using virtual_adapter::Setting;
using virtual_adapter::SettingKind;
using virtual_adapter::SettingValues;

namespace {

/// The defaults, and what is required.
SettingValues plainValues(const PartKind& kind) {
    SettingValues values;
    for (const Setting& setting : kind.settings) {
        if (const auto byDefault = setting.valueByDefault()) {
            values.put(setting.name, *byDefault);
        }
        if (setting.isRequired && setting.kind == SettingKind::Pid) {
            values.put(setting.name, std::string("0461000000aa"));
        }
    }
    return values;
}

/// The part as it is made from plain values; null for one that nothing is made for.
std::unique_ptr<Settable> made(const PartKind& kind) {
    const SettingValues values = plainValues(kind);
    if (kind.makeI2c) {
        return std::move(kind.makeI2c(values).front());
    }
    if (kind.makeSpi) {
        return kind.makeSpi(values, nullptr);
    }
    if (kind.makeI3c) {
        return kind.makeI3c(values, [](bool) {});
    }
    return kind.makeUart ? kind.makeUart() : nullptr;
}

TEST(PartCatalogue, EveryNameStandsOnceForABus) {
    std::set<std::pair<PartBus, std::string>> names;
    for (const PartKind& kind : partCatalogue()) {
        EXPECT_TRUE(names.insert({kind.bus, kind.name}).second) << kind.name;
        EXPECT_EQ(findPart(kind.bus, kind.name), &kind);
    }
    EXPECT_EQ(findPart(PartBus::Uart, "lm75"), nullptr);
}

TEST(PartCatalogue, EveryDefaultIsAllowed) {
    for (const PartKind& kind : partCatalogue()) {
        for (const Setting& setting : kind.settings) {
            EXPECT_TRUE(setting.byDefault.empty() || setting.valueByDefault())
                << kind.name << ' ' << setting.name;
            EXPECT_FALSE(setting.isRequired && setting.valueByDefault())
                << kind.name << ' ' << setting.name;
        }
        const std::string complaint =
            kind.isProgram() ? "" : kind.complaintAbout(plainValues(kind));
        EXPECT_EQ(complaint, "") << kind.name;
    }
}

TEST(PartCatalogue, EverySettingThatChangesCanBeSetToItsDefault) {
    size_t changing = 0;
    for (const PartKind& kind : partCatalogue()) {
        const std::unique_ptr<Settable> part = made(kind);
        for (const Setting& setting : kind.settings) {
            if (part == nullptr || setting.kind == SettingKind::RegisterContents) {
                continue;
            }
            EXPECT_EQ(part->set(setting.name, setting.byDefault).empty(), setting.changes)
                << kind.name << ' ' << setting.name;
            changing += setting.changes ? 1 : 0;
        }
    }
    EXPECT_EQ(changing, 10U + 1 + 1 + 3); // EEPROMs, two sensors, three axes
}

TEST(PartCatalogue, WhatCannotBeSetIsSaidWithWhatCan) {
    const std::unique_ptr<Settable> sensor = made(*findPart(PartBus::I2c, "lm75"));
    EXPECT_EQ(sensor->set("humidity", "1"),
              "there is no setting 'humidity' that changes; there is: temperature");
    EXPECT_EQ(sensor->set("temperature", "126"),
              "temperature: '126' is not allowed; allowed is a decimal number from -55 to 125 "
              "degrees Celsius");
    const std::unique_ptr<Settable> eeprom = made(*findPart(PartBus::I2c, "24c02"));
    EXPECT_EQ(eeprom->set("write_protected", "yes"),
              "write_protected: 'yes' is not allowed; allowed is true or false");
    EXPECT_EQ(eeprom->set("contents", "hex:00"),
              "there is no setting 'contents' that changes; there is: write_protected");
}

TEST(PartCatalogue, AnEepromHasAnAddressForEvery256BytesThatItsRegisterAddressDoesNotReach) {
    const std::vector<std::pair<std::string, unsigned>> expected{
        {"24c01", 1}, {"24c02", 1}, {"24c04", 2}, {"24c08", 4}, {"24c16", 8}, {"24c512", 1}};
    for (const auto& [name, addresses] : expected) {
        EXPECT_EQ(findPart(PartBus::I2c, name)->addresses, addresses) << name;
        EXPECT_EQ(findPart(PartBus::I2c, name)
                      ->makeI2c(plainValues(*findPart(PartBus::I2c, name)))
                      .size(),
                  addresses)
            << name;
    }
}

} // namespace
