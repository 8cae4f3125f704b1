// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/Uart.hpp"

#include <CLI/CLI.hpp>

namespace veltra {

/// The options that every UART command takes.
inline void addUartOptions(CLI::App& command, UartSettings& settings) {
    command.add_option("-B,--baud", settings.baudRate, "The line rate, 115200 unless given")
        ->type_name("BAUD");
    command.add_option("-p,--parity", settings.parity, "none, odd or even; none unless given")
        ->type_name("PARITY");
    command.add_option("--data", settings.dataBits, "The data bits, 8 unless given")
        ->type_name("BITS")
        ->check(CLI::Range(5, 8));
    command.add_option("--stop", settings.stopBits, "The stop bits, 1 unless given")
        ->type_name("BITS")
        ->check(CLI::Range(1, 2));
    command.add_flag("--rts-cts", settings.rtsCts, "Flow control by RTS and CTS");
}

} // namespace veltra
