// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "AdapterChoice.hpp"
#include "Output.hpp"
#include "Restart.hpp"
#include "Session.hpp"
#include "commands/commands.hpp"
#include "doctor/Diagnosis.hpp"
#include "system/Versions.hpp"

#include <algorithm>
#include <unistd.h>

namespace veltra {

namespace {

using State = Check::State;

/// Through a session's way of opening, so that what it says is what other commands would. One that
/// is open already is asked: its adapter is taken.
std::string talkTo(const VeltraSDK_AdapterInfo& adapter, Context& context) {
    Options thisOne = context.options;
    thisOne.device = adapter.path;
    Session own(thisOne, context.output);
    Session& session = context.session.isOpen() ? context.session : own;
    try {
        for (uint8_t index = 1; index <= 5; ++index) {
            Bytes text;
            session.perform(
                "identity string " + std::to_string(index),
                [&](VeltraSDK& sdk) { return sdk.getUsbString(text, index); }, &text);
        }
        return "";
    } catch (const Failure& failure) {
        return failure.text;
    }
}

std::string inWords(const Check& check) {
    const char* const state = check.state == State::Ok     ? " ok    "
                              : check.state == State::Fail ? " FAIL  "
                                                           : " skip  ";
    std::string name = check.name;
    name.resize(std::max<size_t>(name.size(), 10), ' ');
    return state + name + "  " + check.text +
           (check.cure.empty() ? "" : "\n       do: " + check.cure);
}

void doctor(Context& context) {
    Machine machine;
    machine.mayOpen = [](const std::filesystem::path& node) {
        return access(node.c_str(), R_OK | W_OK) == 0;
    };
    machine.adapters = [] { return VeltraSDK::adapters(); };
    machine.program = thisProgram();
    machine.device = context.options.device;
    machine.talkTo = [&](const VeltraSDK_AdapterInfo& adapter) { return talkTo(adapter, context); };
    machine.hidapiVersion = hidapiVersion();
    machine.libraryVersion = libraryVersion();
    size_t faults = 0;
    for (const Check& check : diagnose(machine)) {
        faults += check.state == State::Fail ? 1 : 0;
        context.output.result({{"op", "doctor"},
                               {"check", check.name},
                               {"state", check.state == State::Ok     ? "ok"
                                         : check.state == State::Fail ? "fail"
                                                                      : "skip"},
                               {"text", check.text},
                               {"do", check.cure.empty() ? Json(nullptr) : Json(check.cure)}},
                              inWords(check));
    }
    if (faults > 0) {
        throw Failure(ExitStatus::NoAdapter, "fault",
                      std::to_string(faults) + (faults == 1 ? " check failed" : " checks failed"));
    }
}

} // namespace

void addDoctorCommand(Command app, Invocation& invocation) {
    onChosen(app.addCommand("doctor", "Looks for what stands between you and an adapter"),
             invocation, doctor);
}

} // namespace veltra
