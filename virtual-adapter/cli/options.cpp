// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/options.hpp"

#include "cli/boards.hpp"

#include <CLI/Error.hpp>

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
        throw CLI::ValidationError(option, error.what());
    }
}

void readBoardOption(const std::string& option, AdapterSettings& settings,
                     const std::string& path) {
    try {
        putOnBoard(settings, path);
    } catch (const BoardFileError& error) {
        throw CLI::ValidationError(option, std::string("\n") + error.what());
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

void addAdapterOptions(CLI::App& command, AdapterSettings& settings) {
    for (const SettingText& setting : settingTexts()) {
        const auto read = [&setting, &settings](const std::string& text) {
            readSetting(setting, setting.option, settings, text);
        };
        const auto readEach = [read](const std::vector<std::string>& texts) {
            std::for_each(texts.begin(), texts.end(), read);
        };
        CLI::Option* const option =
            setting.repeats
                ? command.add_option_function<std::vector<std::string>>(setting.option, readEach,
                                                                        setting.help)
                : command.add_option_function<std::string>(setting.option, read, setting.help);
        option->type_name(setting.placeholder)
            ->default_str(setting.write(settings))
            ->allow_extra_args(false);
    }
    command
        .add_option_function<std::string>(
            "--board",
            [&settings](const std::string& path) { readBoardOption("--board", settings, path); },
            "What stands on the buses, described in this file; else the factory board")
        ->type_name("FILE");
}

void addAdapterOptions(CLI::App& command, AdapterChoice& choice) {
    addAdapterOptions(command, choice.settings);
    command
        .add_option("--adapter", choice.serialNumbers,
                    "Several adapters side by side: one of this serial number each time, with a "
                    "board of its own after '='")
        ->type_name("SERIAL[=FILE]")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->excludes("--serial");
}

void refuseHostFaults(const AdapterSettings& settings) {
    const bool hasOne =
        std::any_of(settings.faults.begin(), settings.faults.end(), [](const Fault& fault) {
            return spanOf(fault.kind) == FaultSpan::FromTheStart;
        });
    if (hasOne) {
        throw CLI::ValidationError(
            "--fault", "this one is the host's; only 'run' and 'serve --socket' have it");
    }
}

void addAdapterOptionsOnRealHost(CLI::App& command, AdapterSettings& settings) {
    addAdapterOptions(command, settings);
    command.get_option("--fault")->description(faultHelp(FaultsOf::Adapter));
}

} // namespace virtual_adapter
