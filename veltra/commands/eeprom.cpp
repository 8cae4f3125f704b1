// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Confirmation.hpp"
#include "Output.hpp"
#include "commands/commands.hpp"
#include "commands/i2c_options.hpp"
#include "eeprom/Programmer.hpp"

namespace veltra {

namespace {

struct Program {
    I2cSettings settings;
    std::string address;
    std::string file;
    unsigned pageBytes = 0;
    unsigned registerBytes = 1;
};

void program(const Program& wanted, Context& context) {
    const Eeprom eeprom{parseAddress(wanted.address), wanted.pageBytes, wanted.registerBytes};
    context.session.concern(hexNumber(eeprom.address, 2), wanted.settings.bus);
    const Bytes contents = readFile(wanted.file, size_t{1} << (8 * wanted.registerBytes));
    confirm(context.options, std::to_string(contents.size()) + " bytes of the EEPROM at " +
                                 hexNumber(eeprom.address, 2) + " will be overwritten");
    I2c bus(context.session, wanted.settings);
    programEeprom(bus, context.output, context.session.rehearses(), eeprom, contents);
    context.output.result({{"op", "i2c.program"},
                           {"bus", bus.bus()},
                           {"address", eeprom.address},
                           {"count", contents.size()},
                           {"verified", true}},
                          std::to_string(contents.size()) + " bytes written and verified");
}

} // namespace

void addEepromCommand(Command i2c, Invocation& invocation) {
    const Command command = i2c.addCommand("program", "Writes a file into an EEPROM, and verifies");
    const auto wanted = std::make_shared<Program>();
    addI2cOptions(command, wanted->settings);
    command.addOption("ADDR", wanted->address, "The EEPROM's address, 7 bits")
        .required()
        .typeName("");
    command.addOption("FILE", wanted->file, "The contents, from address 0 on; - is stdin")
        .required()
        .typeName("");
    command.addOption("--page", wanted->pageBytes, "The bytes of a page, as the data sheet says")
        .required()
        .typeName("BYTES")
        .range(1, 4096);
    command.addOption("--reg-bytes", wanted->registerBytes, "The address's bytes, 1 or 2")
        .required()
        .typeName("BYTES")
        .range(1, 2);
    onChosen(command, invocation, [wanted](Context& context) { program(*wanted, context); });
}

} // namespace veltra
