// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/PartCatalogue.hpp"

#include "board/parts/I2cEeprom.hpp"
#include "board/parts/I2cRegisters.hpp"
#include "board/parts/I2cTemperatureSensor.hpp"
#include "board/parts/I3cAccelerometer.hpp"
#include "board/parts/I3cCompanion.hpp"
#include "board/parts/I3cMemory.hpp"
#include "board/parts/I3cRegisters.hpp"
#include "board/parts/I3cSettings.hpp"
#include "board/parts/I3cTemperatureSensor.hpp"
#include "board/parts/SpiLoopback.hpp"
#include "board/parts/SpiRegisters.hpp"
#include "board/parts/UartLoopback.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

const char* const program = "program";

using I2cTargets = std::vector<std::unique_ptr<I2cTarget>>;
using Settings = std::vector<Setting>;

PartKind kindOf(PartBus bus, const char* name, std::string text, Settings settings) {
    PartKind kind{};
    kind.bus = bus;
    kind.name = name;
    kind.text = std::move(text);
    kind.settings = std::move(settings);
    kind.addresses = 1;
    kind.complaintAbout = [](const SettingValues&) { return std::string(); };
    return kind;
}

Settings operator+(Settings left, const Settings& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// --- I2C ----------------------------------------------------------------------------------------

template <typename Part>
I2cTargets alone(std::unique_ptr<Part> part) {
    I2cTargets targets;
    targets.push_back(std::move(part));
    return targets;
}

PartKind eeprom(const char* name, const I2cEeprom::Geometry& layout) {
    const std::string addressed =
        layout.busAddresses() == 1
            ? std::to_string(layout.registerAddressBytes) + " of register address"
            : "at " + std::to_string(layout.busAddresses()) + " addresses, one for each 256 bytes";
    PartKind kind = kindOf(PartBus::I2c, name,
                           "an EEPROM of " + std::to_string(layout.size) + " bytes in pages of " +
                               std::to_string(layout.pageSize) + ", " + addressed,
                           I2cEeprom::settings(layout));
    kind.addresses = layout.busAddresses();
    kind.makeI2c = [layout](const SettingValues& values) {
        return I2cEeprom::atItsAddresses(std::make_unique<I2cEeprom>(
            layout, values.get<Bytes>("contents"), values.get<bool>("write_protected")));
    };
    return kind;
}

PartKind i2cTemperatureSensor() {
    PartKind kind =
        kindOf(PartBus::I2c, "lm75", "a temperature sensor with the registers of an LM75",
               I2cTemperatureSensor::settings());
    kind.makeI2c = [](const SettingValues& values) {
        return alone(std::make_unique<I2cTemperatureSensor>(values.get<double>("temperature")));
    };
    return kind;
}

PartKind i2cRegisters() {
    PartKind kind = kindOf(PartBus::I2c, "registers", "any device that is made of registers",
                           RegisterMap::settings(I2cRegisters::maxWidth));
    kind.makeI2c = [](const SettingValues& values) {
        return alone(std::make_unique<I2cRegisters>(values));
    };
    kind.complaintAbout = RegisterMap::complaintAbout;
    return kind;
}

PartKind programOn(PartBus bus) {
    return kindOf(bus, program, "a program of yours",
                  {Setting::plain("command", SettingKind::CommandLine,
                                  "the program and its arguments; it starts in the directory of "
                                  "the board's file")
                       .required()});
}

std::vector<PartKind> i2cParts() {
    return {
        eeprom("24c01", {128, 8, 1}),
        eeprom("24c02", I2cEeprom::geometry24C02),
        eeprom("24c04", {512, 16, 1}),
        eeprom("24c08", {1024, 16, 1}),
        eeprom("24c16", {2048, 16, 1}),
        eeprom("24c32", {4096, 32, 2}),
        eeprom("24c64", {8192, 32, 2}),
        eeprom("24c128", {16384, 64, 2}),
        eeprom("24c256", I2cEeprom::geometry24C256),
        eeprom("24c512", {65536, 128, 2}),
        i2cTemperatureSensor(),
        i2cRegisters(),
        programOn(PartBus::I2c),
        kindOf(PartBus::I2cTenBit, "ten-bit", "a 10-bit address that scans find, and nothing more",
               {}),
    };
}

// --- SPI and UART -------------------------------------------------------------------------------

PartKind spiFlash() {
    PartKind kind = kindOf(PartBus::Spi, "nor-flash", "a NOR flash that tells what it is",
                           SpiFlash::settings());
    kind.makeSpi = [](const SettingValues& values, const SpiFlash::Keeper& keeper) {
        auto flash =
            std::make_unique<SpiFlash>(static_cast<size_t>(values.get<uint64_t>("size")),
                                       values.get<Bytes>("image"), values.getOr<Bytes>("jedec_id"));
        flash->keepWith(keeper);
        return flash;
    };
    kind.complaintAbout = SpiFlash::complaintAbout;
    return kind;
}

PartKind spiRegisters() {
    PartKind kind = kindOf(PartBus::Spi, "registers", "any device that is made of registers",
                           SpiRegisters::settings());
    kind.makeSpi = [](const SettingValues& values, const SpiFlash::Keeper&) {
        return std::make_unique<SpiRegisters>(values);
    };
    kind.complaintAbout = SpiRegisters::complaintAbout;
    return kind;
}

PartKind spiLoopback() {
    PartKind kind =
        kindOf(PartBus::Spi, "loopback", "a wire: what is sent is received, in every mode", {});
    kind.makeSpi = [](const SettingValues&, const SpiFlash::Keeper&) {
        return std::make_unique<SpiLoopback>();
    };
    return kind;
}

PartKind uartLoopback() {
    PartKind kind = kindOf(PartBus::Uart, "loopback", "a wire: what is sent is received", {});
    kind.makeUart = [] { return std::make_unique<UartLoopback>(); };
    return kind;
}

// --- I3C ----------------------------------------------------------------------------------------

PartKind i3cKind(const char* name, std::string text, Settings settings) {
    PartKind kind = kindOf(PartBus::I3c, name, std::move(text), std::move(settings));
    kind.complaintAbout = complaintAboutI3c;
    return kind;
}

PartKind i3cRegisters() {
    PartKind kind = i3cKind("registers", "any target that is made of registers",
                            i3cSettings() + RegisterMap::settings(1));
    kind.makeI3c = [](const SettingValues& values, const auto&) {
        return std::make_unique<I3cRegisters>(i3cCharacteristics(values), values);
    };
    kind.complaintAbout = [](const SettingValues& values) {
        const std::string complaint = complaintAboutI3c(values);
        return complaint.empty() ? RegisterMap::complaintAbout(values) : complaint;
    };
    return kind;
}

PartKind i3cTemperatureSensor() {
    PartKind kind =
        i3cKind("temperature-sensor", "a temperature sensor that interrupts on demand",
                i3cSettings(I3cTemperatureSensor::itsKind) + I3cTemperatureSensor::settings());
    kind.makeI3c = [](const SettingValues& values, const auto&) {
        return std::make_unique<I3cTemperatureSensor>(i3cCharacteristics(values),
                                                      values.get<double>("temperature"));
    };
    return kind;
}

PartKind i3cCompanion() {
    PartKind kind = i3cKind("companion", "a microcontroller that switches the supply of others",
                            i3cSettings(I3cCompanion::itsKind) + I3cCompanion::settings());
    kind.makeI3c = [](const SettingValues& values, const std::function<void(bool)>& switchSupply) {
        return std::make_unique<I3cCompanion>(switchSupply, i3cCharacteristics(values));
    };
    return kind;
}

PartKind i3cMemory() {
    PartKind kind = i3cKind("memory", "4096 bytes of memory, reached in SDR and in HDR-DDR",
                            i3cSettings(I3cMemory::itsKind));
    kind.makeI3c = [](const SettingValues& values, const auto&) {
        return std::make_unique<I3cMemory>(i3cCharacteristics(values));
    };
    return kind;
}

PartKind i3cAccelerometer() {
    PartKind kind =
        i3cKind("accelerometer", "an accelerometer that asks to join when it gets its supply",
                i3cSettings(I3cAccelerometer::itsKind) + I3cAccelerometer::settings());
    kind.makeI3c = [](const SettingValues& values, const auto&) {
        return std::make_unique<I3cAccelerometer>(i3cCharacteristics(values),
                                                  I3cAccelerometer::Axes{values.get<double>("x"),
                                                                         values.get<double>("y"),
                                                                         values.get<double>("z")});
    };
    return kind;
}

std::vector<PartKind> everyPart() {
    std::vector<PartKind> parts = i2cParts();
    for (PartKind& kind :
         std::vector<PartKind>{spiFlash(), spiRegisters(), spiLoopback(), programOn(PartBus::Spi),
                               uartLoopback(), i3cRegisters(), i3cTemperatureSensor(),
                               i3cCompanion(), i3cMemory(), i3cAccelerometer()}) {
        parts.push_back(std::move(kind));
    }
    return parts;
}

} // namespace

bool PartKind::isProgram() const {
    return name == program;
}

const std::vector<PartKind>& partCatalogue() {
    static const std::vector<PartKind> parts = everyPart();
    return parts;
}

const PartKind* findPart(PartBus bus, const std::string& name) {
    const std::vector<PartKind>& parts = partCatalogue();
    const auto found = std::find_if(parts.begin(), parts.end(), [&](const PartKind& kind) {
        return kind.bus == bus && kind.name == name;
    });
    return found == parts.end() ? nullptr : &*found;
}

} // namespace virtual_adapter
