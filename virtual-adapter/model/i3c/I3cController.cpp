#include "model/i3c/I3cController.hpp"

#include "model/i3c/i3c_records.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

void I3cController::setSupply(bool supplied) {
    if (!supplied) {
        targets.cyclePower();
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
    targets.legacy().getBus().stop();
    for (I3cTarget* target : targets.powered()) {
        target->disableEvents(i3c_event::all);
    }
    table.clear();
    hotJoinAdmitted = false;
    busInitialised = false;
    held = false;
    return Status::Success;
}

Dispatcher::Handler I3cController::whenSupplied(Dispatcher::Handler handler) const {
    return [this, handler = std::move(handler)](ByteReader& request) {
        return hasSupply ? handler(request) : Answer(Status::NoVoltage);
    };
}

bool I3cController::isHeardBy(const I3cTarget& target) const {
    // The enumerators count from the fastest rate down.
    return settings.pushPullRate >= target.characteristics().fastestRate;
}

bool I3cController::isHeardByLegacy(uint8_t address) const {
    return I3cBus::follows(address, static_cast<I2cTransferRate>(settings.i2cRate));
}

void I3cController::start() {
    targets.legacy().getBus().start(i3cBroadcastAddress, I2cDirection::Write);
}

void I3cController::stop() {
    held = false;
    targets.legacy().getBus().stop();
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
    for (I3cTarget* target : targets.powered()) {
        if (!target->requestsHotJoin()) {
            continue;
        }
        table.assignAll();
        if (target->dynamicAddress() == 0) {
            continue;
        }
        const I3cCharacteristics& kind = target->characteristics();
        Bytes payload(kind.pid.begin(), kind.pid.end());
        payload.insert(payload.end(), {kind.bcr, kind.dcr, target->dynamicAddress()});
        notifications.push(CommandCode::I3cHotJoinNotification, payload);
    }
}

void I3cController::serveInterrupts() {
    std::vector<I3cTarget*> contenders = targets.powered();
    std::sort(contenders.begin(), contenders.end(),
              [](const I3cTarget* left, const I3cTarget* right) {
                  return left->dynamicAddress() < right->dynamicAddress();
              });
    for (I3cTarget* target : contenders) {
        if (!target->requestsInterrupt() || !table.acceptsInterruptsOf(*target)) {
            continue;
        }
        Bytes payload = target->raiseInterrupt();
        const auto size = static_cast<uint8_t>(payload.size());
        payload.insert(payload.begin(), {target->dynamicAddress(), size});
        notifications.push(CommandCode::I3cIbiNotification, payload);
    }
}

} // namespace virtual_adapter
