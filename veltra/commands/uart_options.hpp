// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/Uart.hpp"
#include "commands/commands.hpp"

namespace veltra {

/// The options that every UART command takes.
inline void addUartOptions(Command command, UartSettings& settings) {
    command.addOption("-B,--baud", settings.baudRate, "The line rate, 115200 unless given")
        .typeName("BAUD");
    command.addOption("-p,--parity", settings.parity, "none, odd or even; none unless given")
        .typeName("PARITY");
    command.addOption("--data", settings.dataBits, "The data bits, 8 unless given")
        .typeName("BITS")
        .range(5, 8);
    command.addOption("--stop", settings.stopBits, "The stop bits, 1 unless given")
        .typeName("BITS")
        .range(1, 2);
    command.addFlag("--rts-cts", settings.rtsCts, "Flow control by RTS and CTS");
}

} // namespace veltra
