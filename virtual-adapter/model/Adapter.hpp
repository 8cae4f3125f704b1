#pragma once

#include "model/AdapterVariant.hpp"
#include "model/Dispatcher.hpp"
#include "model/Outbox.hpp"
#include "model/gpio/gpio.hpp"
#include "model/i2c/i2c.hpp"
#include "model/i3c/i3c_bus.hpp"
#include "model/i3c/i3c_ccc.hpp"
#include "model/i3c/i3c_transfer.hpp"
#include "model/spi/spi.hpp"
#include "model/system/system.hpp"
#include "model/system/voltage.hpp"
#include "model/uart/uart.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// A behavioural model of the adapter. It has no input or output of its own, no clock and no
/// thread: the frames it answers are a function of the requests it was given.
class Adapter {
public:
    /// The model's name and @p serialNumber appear among the adapter's identity strings.
    Adapter(const AdapterVariant& variant, const std::string& serialNumber);

    Adapter(const Adapter&) = delete;
    Adapter& operator=(const Adapter&) = delete;

    /// Carries a request out. Returns the response, unless the request has no whole header, and
    /// behind it the notifications that the request gave rise to.
    std::vector<Frame> handle(const Frame& request);

    [[nodiscard]] bool inBootMode() const { return system.inBootMode(); }

private:
    Dispatcher dispatcher;
    Outbox notifications;
    System system;
    IoVoltage voltage;
    I2c i2c{voltage};
    Spi spi{voltage};
    Uart uart;
    Gpio gpio{voltage, notifications};
    I3cController i3cController{notifications};
    I3cBusSetup i3cBusSetup{i3cController};
    I3cTransfer i3cTransfer{i3cController};
    I3cCcc i3cCcc{i3cController};
};

} // namespace virtual_adapter
