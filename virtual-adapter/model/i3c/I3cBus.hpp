#pragma once

#include "board/parts/I3cAccelerometer.hpp"
#include "board/parts/I3cCompanion.hpp"
#include "board/parts/I3cMemory.hpp"
#include "board/parts/I3cTemperatureSensor.hpp"
#include "model/i2c/I2cController.hpp"

#include <vector>

namespace virtual_adapter {

/// Everything on the wires of the I3C bus: four I3C targets and two legacy I2C devices.
class I3cBus {
public:
    I3cBus();

    /// The I3C targets that have power.
    [[nodiscard]] std::vector<I3cTarget*> powered();
    /// The target that has @p address as its dynamic address, or null.
    I3cTarget* withDynamicAddress(uint8_t address);
    /// The target without a dynamic address that has @p address as its static one, or null.
    I3cTarget* unassigned(uint8_t staticAddress);

    /// Carries the legacy I2C transfers.
    I2cController& legacy() { return legacyController; }
    [[nodiscard]] static bool isLegacy(uint8_t address);
    /// Whether the legacy device at @p address follows the rate.
    [[nodiscard]] static bool follows(uint8_t address, I2cTransferRate rate);

    /// Takes the power away and gives it back.
    void cyclePower();

private:
    void attachLegacySensor();

    I3cTemperatureSensor sensor;
    I3cAccelerometer module;
    I3cCompanion companion;
    I3cMemory memory;
    I2cController legacyController;
};

} // namespace virtual_adapter
