// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Output.hpp"
#include "Session.hpp"
#include "commands/commands.hpp"
#include "system/Versions.hpp"

#include <algorithm>
#include <iterator>

namespace veltra {

namespace {

const char* const names[] = {"manufacturer", "model", "serial", "hardware", "firmware"};

void info(Context& context) {
    Session& session = context.session;
    Json object = {{"op", "info"}};
    std::string text;
    const auto tell = [&](const std::string& name, const std::string& value) {
        object[name] = value;
        text += name + ":" + std::string(14 - name.size(), ' ') + printable(value) + "\n";
    };
    for (size_t at = 0; at < std::size(names); ++at) {
        const auto index = static_cast<uint8_t>(at + 1);
        Bytes string;
        session.perform(
            "identity string " + std::to_string(index),
            [&](VeltraSDK& sdk) { return sdk.getUsbString(string, index); }, &string);
        tell(names[at], std::string(string.begin(), string.end()));
    }
    tell("library", libraryVersion());
    tell("hidapi", hidapiVersion());
    context.output.result(object, text.substr(0, text.size() - 1));
}

} // namespace

void addInfoCommand(Command app, Invocation& invocation) {
    onChosen(app.addCommand("info", "Reads the adapter's five strings; tells the versions"),
             invocation, info);
}

} // namespace veltra
