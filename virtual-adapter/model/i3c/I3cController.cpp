// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/I3cController.hpp"

#include <algorithm>

namespace virtual_adapter {

I3cController::I3cController(I3cBus& itsBus, Outbox& toHost)
    : bus(itsBus), outbox(toHost), legacyController(bus.legacy()), table(bus) {
    legacyController.connectPullUp(true);
    legacyController.init(I2cController::Polling::Once);
}

void I3cController::setSupply(bool supplied) {
    if (!supplied) {
        bus.cyclePower();
        table.clear();
        controllerInitialised = false;
        busInitialised = false;
        held = false;
    }
    hasSupply = supplied;
}

void I3cController::init(const Settings& initial) {
    settings = initial;
    controllerInitialised = true;
    resetBus();
}

Status I3cController::setParameters(const Settings& changed) {
    if (!controllerInitialised) {
        return Status::NotInitialised;
    }
    settings = changed;
    return Status::Success;
}

Status I3cController::initialiseBus(const std::vector<I3cTargetInfo>& records) {
    Status status = table.check(records);
    if (status == Status::Success) {
        status = resetBus();
    }
    if (status == Status::Success) {
        busInitialised = true;
        status = table.initialise(records);
    }
    return status;
}

Status I3cController::resetBus() {
    if (!controllerInitialised) {
        return Status::NotInitialised;
    }
    bus.legacy().stop();
    bus.start(false);
    for (I3cTarget* target : bus.powered()) {
        target->disableEvents(i3c_event::all);
    }
    table.clear();
    hotJoinAdmitted = false;
    busInitialised = false;
    held = false;
    return Status::Success;
}

bool I3cController::isHeardBy(const I3cTarget& target) const {
    // The enumerators count from the fastest rate down.
    return settings.pushPullRate >= target.characteristics().fastestRate;
}

bool I3cController::isHeardByLegacy(uint8_t address) const {
    return bus.isLegacyAt(address, static_cast<I2cTransferRate>(settings.i2cRate));
}

void I3cController::start() {
    bus.start(held);
}

void I3cController::stop() {
    held = false;
    bus.legacy().stop();
    serveRequests();
}

void I3cController::serveRequests() {
    if (!held) {
        serveHotJoin();
        serveInterrupts();
    }
}

void I3cController::serveHotJoin() {
    if (!hotJoinAdmitted) {
        return;
    }
    for (I3cTarget* target : bus.powered()) {
        if (!target->requestsHotJoin()) {
            continue;
        }
        bus.start(false);
        table.assignAll();
        if (target->dynamicAddress() == 0) {
            continue;
        }
        const I3cCharacteristics& kind = target->characteristics();
        outbox.notify(CommandCode::I3cHotJoinNotification,
                      ByteWriter()
                          .range(kind.pid.begin(), kind.pid.end())
                          .u8(kind.bcr)
                          .u8(kind.dcr)
                          .u8(target->dynamicAddress()));
    }
}

void I3cController::serveInterrupts() {
    std::vector<I3cTarget*> contenders = bus.powered();
    std::sort(contenders.begin(), contenders.end(),
              [](const I3cTarget* left, const I3cTarget* right) {
                  return left->dynamicAddress() < right->dynamicAddress();
              });
    for (I3cTarget* target : contenders) {
        if (!target->requestsInterrupt() || !table.acceptsInterruptsOf(*target)) {
            continue;
        }
        bus.start(false);
        const Bytes payload = target->raiseInterrupt();
        outbox.notify(CommandCode::I3cIbiNotification,
                      ByteWriter()
                          .u8(target->dynamicAddress())
                          .countU8(static_cast<uint8_t>(payload.size()))
                          .bytes(payload));
    }
}

} // namespace virtual_adapter
