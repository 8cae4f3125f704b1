#pragma once

#include "model/I2cController.hpp"
#include "model/voltage.hpp"

#include <array>

namespace virtual_adapter {

/// The commands of the two I2C controllers.
class I2c {
public:
    explicit I2c(const IoVoltage& ioVoltage);

    void registerCommands(Dispatcher& dispatcher);

private:
    Answer setPullUpResistors(PayloadReader& request);
    Answer controllerInit(PayloadReader& request);
    Answer setParameters(PayloadReader& request);
    Answer write(PayloadReader& request);
    Answer read(PayloadReader& request);
    Answer scanBus(PayloadReader& request);

    const IoVoltage& voltage;
    std::array<I2cController, 2> controllers;
};

} // namespace virtual_adapter
