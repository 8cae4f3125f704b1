// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Scans I2C bus 0 and prints the contents of the EEPROM at address 0x50.
#include "example.hpp"

#include <cctype>
#include <string>
#include <string_view>

namespace {

constexpr uint8_t bus = 0;
constexpr uint8_t eepromAddress = 0x50;
constexpr uint16_t eepromSize = 256;
constexpr size_t bytesPerLine = 16;
constexpr uint8_t sendAddressOnce = 0;
constexpr uint8_t pullUps4700Ohm = 2;

std::string hex(size_t byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    return {digits[byte / 16 % 16], digits[byte % 16]};
}

bool setUp(VeltraSDK& sdk) {
    return succeeded("Setting the voltage", sdk.i2cSetBusVoltage(3300, true)) &&
           succeeded("Initialising the controller",
                     sdk.i2cControllerInit(bus, 400'000, sendAddressOnce)) &&
           succeeded("Setting the pull-up resistors",
                     sdk.i2cSetPullUpResistors(bus, pullUps4700Ohm));
}

bool scan(VeltraSDK& sdk) {
    std::vector<uint8_t> addresses;
    uint8_t sevenBitCount = 0;
    uint8_t tenBitCount = 0;
    if (!succeeded("Scanning the bus",
                   sdk.i2cScanBus(addresses, &sevenBitCount, &tenBitCount, bus, false))) {
        return false;
    }
    std::cout << "Targets on bus " << int{bus} << ':';
    for (const uint8_t address : addresses) {
        std::cout << " 0x" << hex(address);
    }
    std::cout << '\n';
    return true;
}

bool dumpEeprom(VeltraSDK& sdk) {
    std::vector<uint8_t> contents;
    if (!succeeded("Reading the EEPROM",
                   sdk.i2cRead(bus, eepromAddress, {0x00}, eepromSize, contents, false))) {
        return false;
    }
    std::cout << "EEPROM at 0x" << hex(eepromAddress) << ":\n";
    for (size_t line = 0; line < contents.size(); line += bytesPerLine) {
        std::string text;
        std::cout << "  " << hex(line) << ": ";
        for (size_t i = line; i < line + bytesPerLine; ++i) {
            std::cout << ' ' << hex(contents[i]);
            text += std::isprint(contents[i]) != 0 ? static_cast<char>(contents[i]) : '.';
        }
        std::cout << "  " << text << '\n';
    }
    return true;
}

} // namespace

int main() {
    VeltraSDK sdk(1000);
    return connectOrExplain(sdk) && setUp(sdk) && scan(sdk) && dumpEeprom(sdk) ? 0 : 1;
}
