// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "commands/commands.hpp"
#include "commands/i2c_options.hpp"
#include "text/AddressGrid.hpp"
#include "text/HexDump.hpp"

#include <algorithm>

namespace veltra {

namespace {

constexpr uint32_t dumpReadBytes = 4096;

struct Scan {
    I2cSettings settings;
    bool tenBit = false;
};

void scan(const Scan& wanted, Context& context) {
    context.session.concern("", wanted.settings.bus);
    I2c bus(context.session, wanted.settings);
    const I2c::Found found = bus.scan(wanted.tenBit);
    Json object = {{"op", "i2c.scan"},
                   {"bus", bus.bus()},
                   {"addresses", std::vector<int>(found.addresses.begin(), found.addresses.end())}};
    std::string text = addressGrid(found.addresses);
    if (wanted.tenBit) {
        object["addresses_10bit"] = found.tenBitAddresses;
        text += "\n10-bit:";
        for (const uint16_t address : found.tenBitAddresses) {
            text += " " + hexNumber(address, 3);
        }
    }
    context.output.result(object, text);
}

struct Dump {
    I2cSettings settings;
    std::string address;
    std::string range = "0x00-0xff";
    unsigned registerBytes = 1;
};

void dump(const Dump& wanted, Context& context) {
    const uint8_t address = parseAddress(wanted.address);
    const Range range = parseRange(wanted.range, wanted.registerBytes == 1 ? 0xFF : 0xFFFF);
    context.session.concern(hexNumber(address, 2), wanted.settings.bus);
    I2c bus(context.session, wanted.settings);
    Bytes data;
    for (uint32_t at = range.first; at <= range.last; at += dumpReadBytes) {
        const auto count = static_cast<uint16_t>(std::min(dumpReadBytes, range.last - at + 1));
        const Bytes next =
            bus.read(address, parseRegister(std::to_string(at), wanted.registerBytes), count);
        data.insert(data.end(), next.begin(), next.end());
    }
    context.output.bytes({{"op", "i2c.dump"},
                          {"bus", bus.bus()},
                          {"address", address},
                          {"first", range.first},
                          {"last", range.last}},
                         data, hexDump(data, range.first));
}

} // namespace

void addI2cCommands(Command app, Invocation& invocation) {
    const Command i2c = app.addCommand("i2c", "The two I2C buses");
    i2c.requireCommand();

    const Command scanCommand = i2c.addCommand("scan", "Shows which addresses are acknowledged");
    const auto scanned = std::make_shared<Scan>();
    addI2cOptions(scanCommand, scanned->settings);
    scanCommand.addFlag("--10bit", scanned->tenBit, "Looks for 10-bit addresses too");
    onChosen(scanCommand, invocation, [scanned](Context& context) { scan(*scanned, context); });

    addI2cTransfers(i2c, invocation);

    const Command dumpCommand = i2c.addCommand("dump", "Reads a range of registers");
    const auto dumped = std::make_shared<Dump>();
    addI2cOptions(dumpCommand, dumped->settings);
    dumpCommand.addOption("ADDR", dumped->address, "The target's address, 7 bits")
        .required()
        .typeName("");
    dumpCommand.addOption("FIRST-LAST", dumped->range, "The registers, 0x00-0xff unless given")
        .typeName("");
    dumpCommand.addOption("--reg-bytes", dumped->registerBytes, "The register's bytes, 1 or 2")
        .typeName("BYTES")
        .range(1, 2);
    onChosen(dumpCommand, invocation, [dumped](Context& context) { dump(*dumped, context); });

    addEepromCommand(i2c, invocation);
}

} // namespace veltra
