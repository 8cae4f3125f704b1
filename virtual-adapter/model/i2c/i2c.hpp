#pragma once

#include "model/i2c/I2cController.hpp"
#include "model/system/voltage.hpp"

#include <array>

namespace virtual_adapter {

/// The commands of the two I2C controllers.
class I2c {
public:
    explicit I2c(const IoVoltage& ioVoltage);

    void registerCommands(Dispatcher& dispatcher);

private:
    Answer setPullUpResistors(ByteReader& request);
    Answer controllerInit(ByteReader& request);
    Answer setParameters(ByteReader& request);
    Answer write(ByteReader& request);
    Answer read(ByteReader& request);
    Answer scanBus(ByteReader& request);

    const IoVoltage& voltage;
    std::array<I2cController, 2> controllers;
};

} // namespace virtual_adapter
