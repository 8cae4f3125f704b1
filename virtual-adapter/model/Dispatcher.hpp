// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Board.hpp"
#include "bytes/ByteReader.hpp"
#include "model/AdapterVariant.hpp"
#include "model/gpio/gpio.hpp"
#include "model/i2c/i2c.hpp"
#include "model/i3c/i3c_bus.hpp"
#include "model/i3c/i3c_ccc.hpp"
#include "model/i3c/i3c_transfer.hpp"
#include "model/spi/spi.hpp"
#include "model/system/system.hpp"
#include "model/system/voltage.hpp"
#include "model/uart/uart.hpp"

#include "protocol/CommandCode.hpp"

namespace virtual_adapter {

/// The families of commands, and which command is whose.
class Dispatcher {
public:
    /// Board and outbox must outlive the dispatcher.
    Dispatcher(const AdapterVariant& variant, const std::string& serialNumber, Board& board,
               Outbox& outbox);

    /// Carries the command out whose payload @p request reads.
    Answer answer(CommandCode code, ByteReader& request);

    // What the world around the adapter reaches.
    Uart& getUart() { return uart; }
    Gpio& getGpio() { return gpio; }
    I3cController& getI3cController() { return i3cController; }

    [[nodiscard]] bool inBootMode() const { return system.inBootMode(); }

private:
    System system;
    IoVoltage voltage;
    I2c i2c;
    Spi spi;
    Uart uart;
    Gpio gpio;
    I3cController i3cController;
    I3cBusSetup i3cBusSetup{i3cController};
    I3cTransfer i3cTransfer{i3cController};
    I3cCcc i3cCcc{i3cController};
};

} // namespace virtual_adapter
