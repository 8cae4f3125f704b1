// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/options.hpp"

#include "cli/boards.hpp"

#include <algorithm>
#include <stdexcept>

namespace virtual_adapter {

namespace {

const SettingText& serialNumberText() {
    for (const SettingText& setting : settingTexts()) {
        if (setting.option == std::string("--serial")) {
            return setting;
        }
    }
    throw std::logic_error("no setting is the serial number");
}

void readSetting(const SettingText& setting, const std::string& option, AdapterSettings& settings,
                 const std::string& text) {
    try {
        setting.read(settings, text);
    } catch (const std::invalid_argument& error) {
        throw command_line::Refusal(option, error.what());
    }
}

void readBoardOption(const std::string& option, AdapterSettings& settings,
                     const std::string& path) {
    try {
        putOnBoard(settings, path);
    } catch (const BoardFileError& error) {
        throw command_line::Refusal(option, std::string("\n") + error.what());
    } catch (const std::runtime_error& error) {
        throw command_line::Refusal(option, error.what());
    }
}

} // namespace

std::vector<AdapterSettings> AdapterChoice::all() const {
    if (serialNumbers.empty()) {
        return {settings};
    }
    std::vector<AdapterSettings> each(serialNumbers.size(), settings);
    for (size_t i = 0; i < each.size(); ++i) {
        const size_t end = serialNumbers[i].find('=');
        readSetting(serialNumberText(), "--adapter", each[i], serialNumbers[i].substr(0, end));
        if (end != std::string::npos) {
            readBoardOption("--adapter", each[i], serialNumbers[i].substr(end + 1));
        }
    }
    return each;
}

void addAdapterOptions(command_line::Command command, AdapterSettings& settings) {
    for (const SettingText& setting : settingTexts()) {
        const auto read = [&setting, &settings](const std::string& text) {
            readSetting(setting, setting.option, settings, text);
        };
        const auto readEach = [read](const std::vector<std::string>& texts) {
            std::for_each(texts.begin(), texts.end(), read);
        };
        const command_line::Option option =
            setting.repeats ? command.addOption(setting.option, readEach, setting.help)
                            : command.addOption(setting.option, read, setting.help);
        option.typeName(setting.placeholder).defaultText(setting.write(settings)).oneEachTime();
    }
    command
        .addOption(
            "--board",
            [&settings](const std::string& path) { readBoardOption("--board", settings, path); },
            "What stands on the buses, described in this file; else the factory board")
        .typeName("FILE");
}

void addAdapterOptions(command_line::Command command, AdapterChoice& choice) {
    addAdapterOptions(command, choice.settings);
    command
        .addOption("--adapter", choice.serialNumbers,
                   "Several adapters side by side: one of this serial number each time, with a "
                   "board of its own after '='")
        .typeName("SERIAL[=FILE]")
        .repeatable()
        .excludes("--serial");
}

void refuseHostFaults(const AdapterSettings& settings) {
    const bool hasOne =
        std::any_of(settings.faults.begin(), settings.faults.end(), [](const Fault& fault) {
            return spanOf(fault.kind) == FaultSpan::FromTheStart;
        });
    if (hasOne) {
        throw command_line::Refusal(
            "--fault", "this one is the host's; only 'run' and 'serve --socket' have it");
    }
}

void addAdapterOptionsOnRealHost(command_line::Command command, AdapterSettings& settings) {
    addAdapterOptions(command, settings);
    command.option("--fault").help(faultHelp(FaultsOf::Adapter));
}

} // namespace virtual_adapter
