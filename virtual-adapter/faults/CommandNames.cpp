// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/CommandNames.hpp"

namespace virtual_adapter {

namespace {

struct NamedCommand {
    CommandCode code;
    std::string name;
};

/// Every code is asked for its name, so that the table below is the only one.
const std::vector<NamedCommand>& namedCommands() {
    static const std::vector<NamedCommand> commands = [] {
        std::vector<NamedCommand> named;
        for (unsigned code = 0; code <= 0xFFFF; ++code) {
            const char* const name = commandName(static_cast<CommandCode>(code));
            if (name != nullptr) {
                named.push_back({static_cast<CommandCode>(code), name});
            }
        }
        return named;
    }();
    return commands;
}

} // namespace

// Without a default, so that the compiler names a command without a name.
const char* commandName(CommandCode code) {
    switch (code) {
    case CommandCode::EnterBootMode:
        return "enter-boot-mode";
    case CommandCode::I3cSetBusVoltage:
        return "i3c-set-bus-voltage";
    case CommandCode::SetI2cSpiUartGpioVoltage:
        return "set-i2c-spi-uart-gpio-voltage";
    case CommandCode::GetUsbString:
        return "get-usb-string";

    case CommandCode::I2cSetPullUpResistors:
        return "i2c-set-pull-up-resistors";
    case CommandCode::I2cControllerInit:
        return "i2c-controller-init";
    case CommandCode::I2cSetParameters:
        return "i2c-set-parameters";
    case CommandCode::I2cWrite:
        return "i2c-write";
    case CommandCode::I2cRead:
        return "i2c-read";
    case CommandCode::I2cScanBus:
        return "i2c-scan-bus";

    case CommandCode::SpiControllerInit:
        return "spi-controller-init";
    case CommandCode::SpiSetParameters:
        return "spi-set-parameters";
    case CommandCode::SpiTransfer:
        return "spi-transfer";

    case CommandCode::UartInit:
        return "uart-init";
    case CommandCode::UartSetParameters:
        return "uart-set-parameters";
    case CommandCode::UartSendMessage:
        return "uart-send-message";

    case CommandCode::GpioConfigurePin:
        return "gpio-configure-pin";
    case CommandCode::GpioDigitalWrite:
        return "gpio-digital-write";
    case CommandCode::GpioDigitalRead:
        return "gpio-digital-read";
    case CommandCode::GpioConfigureInterrupt:
        return "gpio-configure-interrupt";
    case CommandCode::GpioDisableInterrupt:
        return "gpio-disable-interrupt";

    case CommandCode::I3cControllerInit:
        return "i3c-controller-init";
    case CommandCode::I3cSetParameters:
        return "i3c-set-parameters";
    case CommandCode::I3cInitBus:
        return "i3c-init-bus";
    case CommandCode::I3cResetBus:
        return "i3c-reset-bus";
    case CommandCode::I3cGetDeviceTable:
        return "i3c-get-device-table";
    case CommandCode::I3cSetTargetDeviceConfiguration:
        return "i3c-set-target-device-configuration";
    case CommandCode::I3cPrivateTransfer:
        return "i3c-private-transfer";
    case CommandCode::I3cCccTransfer:
        return "i3c-ccc-transfer";
    case CommandCode::I3cBusPattern:
        return "i3c-bus-pattern";

    // What only the adapter says.
    case CommandCode::UartRxNotification:
    case CommandCode::GpioNotification:
    case CommandCode::I3cIbiNotification:
    case CommandCode::I3cHotJoinNotification:
        break;
    }
    return nullptr;
}

std::optional<CommandCode> findCommand(const std::string& name) {
    for (const NamedCommand& command : namedCommands()) {
        if (command.name == name) {
            return command.code;
        }
    }
    return {};
}

const std::vector<std::string>& commandNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> collected;
        for (const NamedCommand& command : namedCommands()) {
            collected.push_back(command.name);
        }
        return collected;
    }();
    return names;
}

} // namespace virtual_adapter
