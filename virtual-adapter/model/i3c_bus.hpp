#pragma once

#include "model/I3cController.hpp"

namespace virtual_adapter {

/// The commands that set the I3C bus up.
class I3cBusSetup {
public:
    explicit I3cBusSetup(I3cController& ofTheBus) : controller(ofTheBus) {}

    void registerCommands(Dispatcher& dispatcher);

private:
    Answer setVoltage(PayloadReader& request);
    Answer controllerInit(PayloadReader& request);
    Answer setParameters(PayloadReader& request);
    Answer initBus(PayloadReader& request);
    Answer resetBus(PayloadReader& request);
    Answer getDeviceTable(PayloadReader& request);
    Answer configureTarget(PayloadReader& request);

    I3cController& controller;
};

} // namespace virtual_adapter
