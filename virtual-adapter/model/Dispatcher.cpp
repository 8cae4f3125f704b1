// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/Dispatcher.hpp"

namespace virtual_adapter {

Dispatcher::Dispatcher(const AdapterVariant& variant, const std::string& serialNumber, Board& board,
                       Outbox& outbox)
    : system({"Veltra", variant.name, serialNumber, "virtual", "1.0.0"}),
      i2c(voltage, board.i2c),
      spi(voltage, board.spi),
      uart(voltage, board.uart.get(), outbox, variant),
      gpio(voltage, board.gpio, outbox),
      i3cController(board.i3c, outbox) {}

// Without a default, so that the compiler names a command that nobody carries out.
Answer Dispatcher::answer(CommandCode code, ByteReader& request) {
    switch (code) {
    case CommandCode::GetUsbString:
        return system.getUsbString(request);
    case CommandCode::EnterBootMode:
        return system.enterBootMode(request);

    case CommandCode::SetI2cSpiUartGpioVoltage:
        return voltage.set(request);

    case CommandCode::I2cSetPullUpResistors:
        return i2c.setPullUpResistors(request);
    case CommandCode::I2cControllerInit:
        return i2c.controllerInit(request);
    case CommandCode::I2cSetParameters:
        return i2c.setParameters(request);
    case CommandCode::I2cWrite:
        return i2c.write(request);
    case CommandCode::I2cRead:
        return i2c.read(request);
    case CommandCode::I2cScanBus:
        return i2c.scanBus(request);

    case CommandCode::SpiControllerInit:
        return spi.controllerInit(request);
    case CommandCode::SpiSetParameters:
        return spi.setParameters(request);
    case CommandCode::SpiTransfer:
        return spi.transfer(request);

    case CommandCode::UartInit:
        return uart.init(request);
    case CommandCode::UartSetParameters:
        return uart.setParameters(request);
    case CommandCode::UartSendMessage:
        return uart.sendMessage(request);

    case CommandCode::GpioConfigurePin:
        return gpio.configurePin(request);
    case CommandCode::GpioDigitalWrite:
        return gpio.digitalWrite(request);
    case CommandCode::GpioDigitalRead:
        return gpio.digitalRead(request);
    case CommandCode::GpioConfigureInterrupt:
        return gpio.configureInterrupt(request);
    case CommandCode::GpioDisableInterrupt:
        return gpio.disableInterrupt(request);

    case CommandCode::I3cSetBusVoltage:
        return i3cBusSetup.setVoltage(request);
    case CommandCode::I3cControllerInit:
        return i3cBusSetup.controllerInit(request);
    case CommandCode::I3cSetParameters:
        return i3cBusSetup.setParameters(request);
    case CommandCode::I3cInitBus:
        return i3cBusSetup.initBus(request);
    case CommandCode::I3cResetBus:
        return i3cBusSetup.resetBus(request);
    case CommandCode::I3cGetDeviceTable:
        return i3cBusSetup.getDeviceTable(request);
    case CommandCode::I3cSetTargetDeviceConfiguration:
        return i3cBusSetup.configureTarget(request);

    case CommandCode::I3cPrivateTransfer:
        return i3cTransfer.transfer(request);
    case CommandCode::I3cBusPattern:
        return i3cTransfer.busPattern(request);

    case CommandCode::I3cCccTransfer:
        return i3cCcc.transfer(request);

    // What only the adapter says.
    case CommandCode::UartRxNotification:
    case CommandCode::GpioNotification:
    case CommandCode::I3cIbiNotification:
    case CommandCode::I3cHotJoinNotification:
        break;
    }
    return Status::UnknownCommand;
}

} // namespace virtual_adapter
