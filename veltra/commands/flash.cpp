// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Confirmation.hpp"
#include "Output.hpp"
#include "commands/commands.hpp"
#include "commands/spi_options.hpp"
#include "flash/NorFlash.hpp"
#include "flash/Region.hpp"
#include "text/HexDump.hpp"

#include <memory>

namespace veltra {

namespace {

constexpr size_t maxFlashBytes = size_t{16} << 20U;

struct Flash {
    SpiSettings settings;
    std::string file;
    std::string offset = "0";
    std::string length;
};

Json objectOf(const char* op, const Flash& wanted, const Region& region) {
    return {{"op", op},
            {"cs", wanted.settings.chipSelect},
            {"offset", region.offset},
            {"count", region.bytes}};
}

void tellId(const Flash& wanted, Context& context, NorFlash& flash) {
    const FlashGeometry& geometry = flash.geometry();
    context.output.lastBytes = flash.identification();
    context.output.result({{"op", "spi.flash.id"},
                           {"cs", wanted.settings.chipSelect},
                           {"id", hexDigits(flash.identification())},
                           {"bytes", geometry.bytes},
                           {"erase_bytes", geometry.eraseBytes},
                           {"page_bytes", geometry.pageBytes},
                           {"sfdp", flash.describesItself()}},
                          hexWords(flash.identification()) + ", " +
                              std::to_string(geometry.bytes / 1024) + " KiB, erased in blocks of " +
                              std::to_string(geometry.eraseBytes) + " bytes" +
                              (flash.describesItself() ? "" : " (no SFDP: by its identification)"));
}

void read(const Flash& wanted, Context& context, NorFlash& flash) {
    const Region region = regionOf(wanted.offset, wanted.length, flash.geometry());
    const Bytes contents = flash.read(region.offset, region.bytes);
    const Json object = objectOf("spi.flash.read", wanted, region);
    if (wanted.file.empty() || wanted.file == "-") {
        context.output.bytes(object, contents, hexDump(contents, region.offset));
        return;
    }
    writeFile(wanted.file, contents);
    context.output.result(object,
                          std::to_string(contents.size()) + " bytes read into " + wanted.file);
}

void write(const Flash& wanted, Context& context, NorFlash& flash) {
    const Bytes contents = readFile(wanted.file, maxFlashBytes);
    const Region region = regionOf(wanted.offset, wanted.length, flash.geometry(), contents.size());
    confirm(context.options, std::to_string(contents.size()) +
                                 " bytes of the flash will be overwritten, from " +
                                 hexNumber(region.offset, 6) + " on");
    flash.write(region.offset, contents);
    context.output.result(objectOf("spi.flash.write", wanted, region),
                          std::to_string(contents.size()) + " bytes written and verified");
}

void erase(const Flash& wanted, Context& context, NorFlash& flash) {
    const Region region = regionOf(wanted.offset, wanted.length, flash.geometry());
    const uint32_t block = flash.geometry().eraseBytes;
    if (region.offset % block != 0 || region.bytes % block != 0) {
        throw Failure::ofUsage("it can only be erased in blocks of " + std::to_string(block) +
                               " bytes");
    }
    confirm(context.options, std::to_string(region.bytes) +
                                 " bytes of the flash will be erased, from " +
                                 hexNumber(region.offset, 6) + " on");
    flash.erase(region.offset, region.bytes);
    context.output.result(objectOf("spi.flash.erase", wanted, region),
                          std::to_string(region.bytes) + " bytes erased and verified");
}

void verify(const Flash& wanted, Context& context, NorFlash& flash) {
    const Bytes contents = readFile(wanted.file, maxFlashBytes);
    const Region region = regionOf(wanted.offset, wanted.length, flash.geometry(), contents.size());
    flash.verify(region.offset, contents);
    context.output.result(objectOf("spi.flash.verify", wanted, region),
                          std::to_string(contents.size()) + " bytes are as in " + wanted.file);
}

using Carry = void (*)(const Flash&, Context&, NorFlash&);

void carryOut(const Flash& wanted, Context& context, Carry carry) {
    context.session.concern("-c " + std::to_string(wanted.settings.chipSelect));
    if (context.session.rehearses()) {
        throw Failure::ofUsage(
            "what it sends depends on what the flash answers; there is no dry run");
    }
    Spi spi(context.session, wanted.settings);
    NorFlash flash(spi, context.output);
    flash.identify();
    carry(wanted, context, flash);
}

enum class File { None, Optional, Required };

void add(Command flash, Invocation& invocation, const char* name, const char* description,
         File file, Carry carry) {
    const Command command = flash.addCommand(name, description);
    const auto wanted = std::make_shared<Flash>();
    addSpiOptions(command, wanted->settings);
    if (file != File::None) {
        command.addOption("FILE", wanted->file, "The contents; - is stdin or stdout")
            .required(file == File::Required)
            .typeName("");
    }
    command.addOption("--offset", wanted->offset, "Where it begins, 0 unless given").typeName("N");
    command.addOption("--length", wanted->length, "How many bytes, the rest unless given")
        .typeName("N");
    onChosen(command, invocation, [=](Context& context) { carryOut(*wanted, context, carry); });
}

} // namespace

void addFlashCommands(Command spi, Invocation& invocation) {
    const Command flash = spi.addCommand("flash", "A serial NOR flash, by what it tells of itself");
    flash.requireCommand();
    add(flash, invocation, "id", "Tells what it is", File::None, tellId);
    add(flash, invocation, "read", "Reads it", File::Optional, read);
    add(flash, invocation, "write", "Writes a file into it, and verifies", File::Required, write);
    add(flash, invocation, "erase", "Erases it, and verifies", File::None, erase);
    add(flash, invocation, "verify", "Compares it with a file", File::Required, verify);
}

} // namespace veltra
