// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/Uart.hpp"

namespace veltra {

/// Joins the user's terminal and the UART, letter by letter, until Ctrl+] is typed. Whatever
/// happens, the terminal is afterwards as it was.
void runTerminal(Uart& uart, Output& output);

} // namespace veltra
