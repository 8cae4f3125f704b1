// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

/// The command code of every frame: the group in the high byte, the operation in the low byte.
enum class CommandCode : uint16_t {
    EnterBootMode = 0x0402,
    I3cSetBusVoltage = 0x0404,
    SetI2cSpiUartGpioVoltage = 0x0405,
    GetUsbString = 0x0407,

    I2cSetPullUpResistors = 0x0802,
    I2cControllerInit = 0x0901,
    I2cSetParameters = 0x0902,
    I2cWrite = 0x0904,
    I2cRead = 0x0905,
    I2cScanBus = 0x0906,

    SpiControllerInit = 0x0D01,
    SpiSetParameters = 0x0D02,
    SpiTransfer = 0x0D04,

    UartInit = 0x1002,
    UartSetParameters = 0x1003,
    UartSendMessage = 0x1005,

    GpioConfigurePin = 0x1401,
    GpioDigitalWrite = 0x1402,
    GpioDigitalRead = 0x1403,
    GpioConfigureInterrupt = 0x1404,
    GpioDisableInterrupt = 0x1405,

    I3cControllerInit = 0x1901,
    I3cSetParameters = 0x1902,
    I3cInitBus = 0x1904,
    I3cResetBus = 0x1905,
    I3cGetDeviceTable = 0x1906,
    I3cSetTargetDeviceConfiguration = 0x1907,
    I3cPrivateTransfer = 0x1908,
    I3cCccTransfer = 0x1909,
    I3cBusPattern = 0x190A,

    // Unsolicited frames: bit 7 of the operation byte is set.
    UartRxNotification = 0x1081,
    GpioNotification = 0x1481,
    I3cIbiNotification = 0x1981,
    I3cHotJoinNotification = 0x1982,
};
