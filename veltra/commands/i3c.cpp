// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "buses/I3c.hpp"
#include "Output.hpp"
#include "commands/commands.hpp"
#include "commands/i3c_options.hpp"
#include "i3c/Target.hpp"

#include <memory>

namespace veltra {

namespace {

struct Wanted {
    I3cSettings settings;
    std::vector<std::string> targets;
    std::string target;
    std::string choice;
};

void tellTable(Context& context, const std::vector<I3cTargetInfo>& targets) {
    context.output.line(tableOf(targets));
    for (const I3cTargetInfo& target : targets) {
        context.output.result(jsonOf(target), "");
    }
}

void init(const Wanted& wanted, Context& context) {
    std::vector<I3cTargetInfo> records;
    for (const std::string& target : wanted.targets) {
        records.push_back(parseTarget(target));
    }
    I3c bus(context.session);
    bus.initialise(wanted.settings, records);
    tellTable(context, bus.table());
}

void reset(const Wanted& /*wanted*/, Context& context) {
    I3c(context.session).reset();
    context.output.result({{"op", "i3c.reset"}}, "");
}

void list(const Wanted& /*wanted*/, Context& context) {
    tellTable(context, I3c(context.session).table());
}

void info(const Wanted& wanted, Context& context) {
    context.session.concern(wanted.target);
    I3c bus(context.session);
    const uint8_t address = bus.resolve(wanted.target);
    Json object = {{"op", "i3c.info"}, {"address", address}};
    std::string text = "address    " + hexNumber(address, 2);
    for (const char* const name :
         {"getpid", "getbcr", "getdcr", "getmwl", "getmrl", "getstatus", "getcaps", "getmxds"}) {
        const std::optional<Bytes> reply = bus.ask(name, address);
        object[name] = reply ? Json(hexDigits(*reply)) : Json(nullptr);
        std::string label = name;
        label.resize(11, ' ');
        text += "\n" + label + (reply ? hexWords(*reply) : "not acknowledged");
    }
    context.output.result(object, text);
}

void speed(const Wanted& wanted, Context& context) {
    I3c(context.session).setSpeed(wanted.settings);
    context.output.result({{"op", "i3c.speed"}}, "");
}

void ibi(const Wanted& wanted, Context& context) {
    context.session.concern(wanted.target);
    I3c bus(context.session);
    const uint8_t address = bus.resolve(wanted.target);
    bus.acceptInterrupts(address, wanted.choice == "on");
    context.output.result({{"op", "i3c.ibi"}, {"address", address}, {"on", wanted.choice == "on"}},
                          "");
}

void hotjoin(const Wanted& wanted, Context& context) {
    const bool on = wanted.choice == "on";
    I3c(context.session).ccc(parseCcc(on ? "enec" : "disec", {"0x08"}, "", ""), 0);
    context.output.result({{"op", "i3c.hotjoin"}, {"on", on}}, "");
}

void pattern(const Wanted& wanted, Context& context) {
    I3c(context.session).drivePattern(wanted.choice);
    context.output.result({{"op", "i3c.pattern"}, {"pattern", wanted.choice}}, "");
}

using Carry = void (*)(const Wanted&, Context&);

} // namespace

void addI3cCommands(Command app, Invocation& invocation) {
    const Command i3c = app.addCommand("i3c", "The I3C bus");
    i3c.requireCommand();
    const auto add = [&](const char* name, const char* description, Carry carry) {
        const auto wanted = std::make_shared<Wanted>();
        const Command command = i3c.addCommand(name, description);
        onChosen(command, invocation, [=](Context& context) { carry(*wanted, context); });
        return std::pair<Command, Wanted&>(command, *wanted);
    };
    const auto addTarget = [](Command command, Wanted& wanted) {
        command.addOption("TARGET", wanted.target, "0x09, pid:0123456789ab or static:0x48")
            .required()
            .typeName("");
    };
    const auto addChoice = [](Command command, Wanted& wanted, const char* name,
                              const std::vector<std::string>& choices) {
        command.addOption(name, wanted.choice, join(choices, " or "))
            .required()
            .typeName("")
            .oneOf(choices);
    };

    auto [initCommand, toInit] =
        add("init", "Initialises controller and bus, shows the table", init);
    addI3cSettings(initCommand, toInit.settings);
    initCommand
        .addOption("--target", toInit.targets,
                   "A target that is expected: static=0x48,dynamic=0x09,pid=...,mwl=64,mrl=64,"
                   "ibi-max=8,ibi=accept|reject,legacy; without any all are found")
        .typeName("RECORD")
        .oneEachTime();
    add("reset", "Takes every address away", reset);
    add("list", "Shows the controller's table", list);
    auto [infoCommand, toAsk] = add("info", "Asks a target everything about itself", info);
    addTarget(infoCommand, toAsk);
    auto [speedCommand, toSet] = add("speed", "Changes the rates", speed);
    addI3cSettings(speedCommand, toSet.settings);
    auto [ibiCommand, toAccept] = add("ibi", "Lets a target interrupt, or not", ibi);
    addTarget(ibiCommand, toAccept);
    addChoice(ibiCommand, toAccept, "STATE", {"on", "off"});
    auto [hotjoinCommand, toJoin] = add("hotjoin", "Lets targets join, or not", hotjoin);
    addChoice(hotjoinCommand, toJoin, "STATE", {"on", "off"});
    auto [patternCommand, toDrive] =
        add("pattern", "Drives the target reset or the HDR exit pattern", pattern);
    addChoice(patternCommand, toDrive, "PATTERN", {"reset", "exit"});
    addI3cCcc(i3c, invocation);
    addI3cTransfers(i3c, invocation);
}

} // namespace veltra
