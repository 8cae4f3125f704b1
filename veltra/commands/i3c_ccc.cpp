// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "buses/I3c.hpp"
#include "commands/commands.hpp"

#include <memory>

namespace veltra {

namespace {

struct Wanted {
    std::string code;
    std::vector<std::string> words;
    std::string definingByte;
    std::string count;
};

void ccc(const Wanted& wanted, Context& context) {
    const CccRequest request =
        parseCcc(wanted.code, wanted.words, wanted.definingByte, wanted.count);
    context.session.concern(wanted.code + (request.target.empty() ? "" : " " + request.target));
    I3c bus(context.session);
    // SETDASA reaches a target that has no dynamic address yet, at its static one.
    const bool byStatic = request.target.rfind("static:", 0) == 0 && wanted.code == "setdasa";
    const uint8_t address = request.target.empty() ? uint8_t{0}
                            : byStatic             ? parseAddress(request.target.substr(7))
                                                   : bus.resolve(request.target);
    const Bytes reply = bus.ccc(request, address);
    const Json object = {{"op", "i3c.ccc"},
                         {"name", wanted.code},
                         {"code", request.code},
                         {"address", request.target.empty() ? Json(nullptr) : Json(address)}};
    if (request.isRead) {
        context.output.bytes(object, reply, hexWords(reply));
    } else {
        context.output.result(object, "");
    }
}

} // namespace

void addI3cCcc(Command i3c, Invocation& invocation) {
    const auto wanted = std::make_shared<Wanted>();
    const Command command = i3c.addCommand("ccc", "Sends a Common Command Code");
    command.addOption("NAME", wanted->code, "As in the standard, in lower case, or 0xNN")
        .required()
        .typeName("");
    command.addOption("VALUES", wanted->words, "[TARGET] [VALUES...]; no target is all of them")
        .typeName("");
    command.addOption("--def", wanted->definingByte, "The defining byte").typeName("BYTE");
    command.addOption("--count", wanted->count, "Reads so many bytes").typeName("N");
    onChosen(command, invocation, [wanted](Context& context) { ccc(*wanted, context); });
}

} // namespace veltra
