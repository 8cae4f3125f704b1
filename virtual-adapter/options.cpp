#include "options.hpp"

#include <CLI/Error.hpp>

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

void requireFaultOfAdapter(const AdapterSettings& settings) {
    if (isHostFault(settings.fault.kind)) {
        throw CLI::ValidationError("--fault", "this one is the host's; only 'run' has it");
    }
}

} // namespace virtual_adapter
