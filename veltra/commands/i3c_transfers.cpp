// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "buses/I3c.hpp"
#include "commands/commands.hpp"
#include "commands/i3c_options.hpp"
#include "text/HexDump.hpp"

#include <memory>

namespace veltra {

namespace {

Json objectOf(Context& context, uint8_t address, const I3cWords& wanted, size_t count) {
    Json object = {{"op", context.session.operation().name}, {"address", address}};
    if (!wanted.registerWord.address.empty()) {
        object["register"] = wanted.registerWord.number();
    }
    if (!wanted.code.empty()) {
        object["code"] = wanted.parsedCode();
    }
    object["count"] = count;
    return object;
}

/// The address of a target of the table, or a legacy device's own.
uint8_t addressOf(I3c& bus, I3c::Way way, const std::string& target) {
    return way == I3c::Way::LegacyI2c ? parseAddress(target) : bus.resolve(target);
}

template <I3c::Way WayOfBus>
void read(const I3cWords& wanted, Context& context) {
    const uint16_t count = wanted.parsedCount();
    const Bytes registerBytes = wanted.registerWord.parsed();
    context.session.concern(wanted.target);
    I3c bus(context.session);
    const uint8_t address = addressOf(bus, WayOfBus, wanted.target);
    const Bytes data = bus.read(WayOfBus, address, registerBytes, count, wanted.flags());
    context.output.bytes(objectOf(context, address, wanted, data.size()), data,
                         hexDump(data, wanted.registerWord.number()));
}

template <I3c::Way WayOfBus>
void write(const I3cWords& wanted, Context& context) {
    const Bytes registerBytes = wanted.registerWord.parsed();
    const Bytes data = parseBytes(wanted.words, I3cWords::maxBytes);
    context.session.concern(wanted.target);
    I3c bus(context.session);
    const uint8_t address = addressOf(bus, WayOfBus, wanted.target);
    bus.write(WayOfBus, address, registerBytes, data, wanted.flags());
    context.output.result(objectOf(context, address, wanted, data.size()), "");
}

void hdrRead(const I3cWords& wanted, Context& context) {
    const uint16_t count = wanted.parsedCount();
    const uint8_t code = wanted.parsedCode();
    context.session.concern(wanted.target);
    I3c bus(context.session);
    const uint8_t address = bus.resolve(wanted.target);
    const Bytes data = bus.hdrRead(address, code, count);
    context.output.bytes(objectOf(context, address, wanted, data.size()), data, hexDump(data, 0));
}

void hdrWrite(const I3cWords& wanted, Context& context) {
    const uint8_t code = wanted.parsedCode();
    const Bytes data = parseBytes(wanted.words, I3cWords::maxBytes);
    context.session.concern(wanted.target);
    I3c bus(context.session);
    const uint8_t address = bus.resolve(wanted.target);
    bus.hdrWrite(address, code, data);
    context.output.result(objectOf(context, address, wanted, data.size()), "");
}

using Carry = void (*)(const I3cWords&, Context&);

/// Adds commands and their operands below one name.
class Adder {
public:
    Adder(Command below, Invocation& goesTo) : parent(below), invocation(goesTo) {}

    void add(const char* name, const char* description, Carry carry, bool reads, bool isHdr) {
        const auto wanted = std::make_shared<I3cWords>();
        const Command command = parent.addCommand(name, description);
        onChosen(command, invocation, [=](Context& context) { carry(*wanted, context); });
        positional(command, "TARGET", wanted->target, "0x09, pid:0123456789ab or static:0x48");
        if (isHdr) {
            positional(command, "CODE", wanted->code, "The HDR command code, 0 to 127");
        } else {
            addRegisterOptions(command, wanted->registerWord);
            command.addFlag("--no-7e", wanted->no7e, "Begins with the target's own address");
            command.addFlag("--no-stop", wanted->noStop, "Holds the bus for a repeated START");
        }
        if (reads) {
            positional(command, "COUNT", wanted->count, "How many bytes, up to 65535");
        } else {
            command.addOption("BYTES", wanted->words, "Numbers, hex:0011ff, str:text, @file, -")
                .required()
                .typeName("");
        }
    }

private:
    static void positional(Command command, const char* name, std::string& value,
                           const char* description) {
        command.addOption(name, value, description).required().typeName("");
    }

    Command parent;
    Invocation& invocation;
};

} // namespace

void addI3cTransfers(Command i3c, Invocation& invocation) {
    Adder sdr(i3c, invocation);
    sdr.add("read", "Reads from a target", read<I3c::Way::Sdr>, true, false);
    sdr.add("write", "Writes to a target", write<I3c::Way::Sdr>, false, false);
    const Command hdr = i3c.addCommand("hdr", "Transfers at double data rate");
    hdr.requireCommand();
    Adder ddr(hdr, invocation);
    ddr.add("read", "Reads from a target", hdrRead, true, true);
    ddr.add("write", "Writes to a target", hdrWrite, false, true);
    const Command i2c = i3c.addCommand("i2c", "Legacy I2C devices on the I3C bus");
    i2c.requireCommand();
    Adder legacy(i2c, invocation);
    legacy.add("read", "Reads from a device", read<I3c::Way::LegacyI2c>, true, false);
    legacy.add("write", "Writes to a device", write<I3c::Way::LegacyI2c>, false, false);
}

} // namespace veltra
