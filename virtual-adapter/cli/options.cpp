// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/options.hpp"

#include <CLI/Error.hpp>

#include <set>
#include <stdexcept>

namespace virtual_adapter {

void addAdapterOptions(CLI::App& command, AdapterSettings& settings) {
    for (const SettingText& setting : settingTexts()) {
        const auto read = [&setting, &settings](const std::string& text) {
            try {
                setting.read(settings, text);
            } catch (const std::invalid_argument& error) {
                throw CLI::ValidationError(setting.option, error.what());
            }
        };
        command.add_option_function<std::string>(setting.option, read, setting.help)
            ->type_name(setting.placeholder)
            ->default_str(setting.write(settings));
    }
}

void addAdapterOptionsOnRealHost(CLI::App& command, AdapterSettings& settings) {
    addAdapterOptions(command, settings);
    std::string names;
    std::set<std::string> hostFaults;
    for (const FaultName& fault : faultNames()) {
        if (isHostFault(fault.kind)) {
            hostFaults.insert(fault.name);
        } else {
            names += (names.empty() ? "" : ", ") + std::string(fault.name);
        }
    }
    command.get_option("--fault")
        ->description("What goes wrong: " + names)
        ->check([hostFaults](const std::string& name) {
            return hostFaults.count(name) > 0 ? "this one is the host's; only 'run' has it" : "";
        });
}

} // namespace virtual_adapter
