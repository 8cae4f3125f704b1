// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "commands/commands.hpp"
#include "commands/i2c_options.hpp"
#include "text/Descriptors.hpp"
#include "text/HexDump.hpp"

namespace veltra {

namespace {

constexpr size_t maxBytes = 0xFFFF;

struct Transfer {
    I2cSettings settings;
    std::string address;
    RegisterWord registerWord;
    std::string count;
    std::vector<std::string> words;
};

Json objectOf(const char* op, const I2c& bus, uint8_t address, const RegisterWord& registerWord) {
    Json object = {{"op", op}, {"bus", bus.bus()}, {"address", address}};
    if (!registerWord.address.empty()) {
        object["register"] = registerWord.number();
    }
    return object;
}

void read(const Transfer& wanted, Context& context) {
    const uint8_t address = parseAddress(wanted.address);
    const auto count = static_cast<uint16_t>(parseNumber("count", wanted.count, 0, maxBytes));
    const Bytes registerBytes = wanted.registerWord.parsed();
    context.session.concern(hexNumber(address, 2), wanted.settings.bus);
    I2c bus(context.session, wanted.settings);
    const Bytes data = bus.read(address, registerBytes, count);
    Json object = objectOf("i2c.read", bus, address, wanted.registerWord);
    object["count"] = count;
    context.output.bytes(object, data, hexDump(data, wanted.registerWord.number()));
}

void write(const Transfer& wanted, Context& context) {
    const uint8_t address = parseAddress(wanted.address);
    const Bytes registerBytes = wanted.registerWord.parsed();
    const Bytes data = parseBytes(wanted.words, maxBytes);
    context.session.concern(hexNumber(address, 2), wanted.settings.bus);
    I2c bus(context.session, wanted.settings);
    bus.write(address, registerBytes, data);
    Json object = objectOf("i2c.write", bus, address, wanted.registerWord);
    object["count"] = data.size();
    context.output.result(object, "");
}

void transfer(const Transfer& wanted, Context& context) {
    const std::vector<I2cMessage> messages = parseDescriptors(wanted.words);
    context.session.concern("", wanted.settings.bus);
    I2c bus(context.session, wanted.settings);
    Bytes all;
    std::vector<std::string> reads;
    std::string text;
    for (const I2cMessage& message : messages) {
        const bool hold = &message != &messages.back();
        if (!message.isRead) {
            bus.write(message.address, {}, message.data, hold);
            continue;
        }
        const Bytes data = bus.read(message.address, {}, message.length, hold);
        reads.push_back(hexDigits(data));
        text += (text.empty() ? "" : "\n") + hexWords(data);
        all.insert(all.end(), data.begin(), data.end());
    }
    context.output.bytes({{"op", "i2c.transfer"}, {"bus", bus.bus()}, {"reads", reads}}, all, text);
}

using Carry = void (*)(const Transfer&, Context&);

std::shared_ptr<Transfer> add(Command command, Invocation& invocation, Carry carry) {
    auto wanted = std::make_shared<Transfer>();
    addI2cOptions(command, wanted->settings);
    onChosen(command, invocation, [=](Context& context) { carry(*wanted, context); });
    return wanted;
}

void addAddress(Command command, Transfer& wanted) {
    command.addOption("ADDR", wanted.address, "The target's address, 7 bits")
        .required()
        .typeName("");
    addRegisterOptions(command, wanted.registerWord);
}

} // namespace

void addI2cTransfers(Command i2c, Invocation& invocation) {
    const Command readCommand = i2c.addCommand("read", "Reads from a target");
    const auto toRead = add(readCommand, invocation, read);
    addAddress(readCommand, *toRead);
    readCommand.addOption("COUNT", toRead->count, "How many bytes, up to 65535")
        .required()
        .typeName("");

    const Command writeCommand = i2c.addCommand("write", "Writes to a target");
    const auto toWrite = add(writeCommand, invocation, write);
    addAddress(writeCommand, *toWrite);
    writeCommand
        .addOption("BYTES", toWrite->words, "Numbers, hex:0011ff, str:text, @file; - is stdin")
        .required()
        .typeName("");

    const Command transferCommand =
        i2c.addCommand("transfer", "Messages in one transaction, as i2ctransfer has them");
    const auto messages = add(transferCommand, invocation, transfer);
    transferCommand
        .addOption("DESC", messages->words,
                   "{r|w}LENGTH[@ADDR], and behind a write its bytes; the last one with = is "
                   "repeated, with + counted up")
        .required()
        .typeName("");
}

} // namespace veltra
