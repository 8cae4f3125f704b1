// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Outbox.hpp"
#include "model/i2c/I2cController.hpp"
#include "model/i3c/I3cDeviceTable.hpp"

#include <veltrasdk/i3c.h>

namespace virtual_adapter {

/// The I3C controller: its supply, its settings, its device table and the bus that it works on.
class I3cController {
public:
    struct Settings {
        uint8_t pushPullRate;
        uint8_t openDrainRate;
        uint8_t i2cRate;
        uint8_t driveStrength;
    };

    /// Bus and outbox must outlive the controller.
    I3cController(I3cBus& itsBus, Outbox& toHost);

    /// Switches the supply of the bus; without it nothing on the bus keeps its state.
    void setSupply(bool supplied);
    /// Switches the controller on; the bus waits for `initialiseBus`.
    void init(const Settings& initial);
    Status setParameters(const Settings& changed);
    Status initialiseBus(const std::vector<I3cTargetInfo>& records);
    /// Takes every dynamic address away; the bus waits for `initialiseBus`.
    Status resetBus();

    [[nodiscard]] bool isSupplied() const { return hasSupply; }

    /// @p checked, the status of a request's fields, which counts only with the supply.
    [[nodiscard]] Status whenSupplied(Status checked) const {
        return hasSupply ? checked : Status::NoVoltage;
    }
    /// The same for a request that needs the initialised bus, when its fields are right.
    [[nodiscard]] Status onInitialisedBus(Status checked) const {
        const Status status = whenSupplied(checked);
        return status == Status::Success && !busInitialised ? Status::NotInitialised : status;
    }

    I3cBus& getBus() { return bus; }
    /// Carries the legacy transfers.
    I2cController& getLegacyController() { return legacyController; }
    I3cDeviceTable& getTable() { return table; }

    /// Whether the push-pull rate is one that the target follows.
    [[nodiscard]] bool isHeardBy(const I3cTarget& target) const;
    /// Whether a legacy device answers to the address at the rate of legacy transfers.
    [[nodiscard]] bool isHeardByLegacy(uint8_t address) const;

    /// Whether targets may join the running bus.
    void admitHotJoin(bool admitted) { hotJoinAdmitted = admitted; }

    /// Sends a START, a repeated one on the held bus. A legacy transfer that was left open ends
    /// there, without its STOP.
    void start();
    /// Leaves the bus held: the next transfer begins with a repeated START.
    void hold() { held = true; }
    /// Sends a STOP. On the free bus the targets raise what they have pending.
    void stop();

    /// Lets targets join and raise their interrupts, unless the bus is held.
    void serveRequests();

private:
    void serveHotJoin();
    void serveInterrupts();

    I3cBus& bus;
    Outbox& outbox;
    I2cController legacyController;
    I3cDeviceTable table;
    Settings settings{};
    bool hasSupply = false;
    bool controllerInitialised = false;
    bool busInitialised = false;
    bool hotJoinAdmitted = false;
    bool held = false;
};

} // namespace virtual_adapter
