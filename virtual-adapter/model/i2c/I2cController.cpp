// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i2c/I2cController.hpp"

namespace virtual_adapter {

namespace {

constexpr uint8_t firstScannedAddress = 0x08;
constexpr uint8_t lastScannedAddress = 0x77;

} // namespace

void I2cController::init(Polling addressPolling) {
    bus.stop();
    bus.free();
    polling = addressPolling;
    initialised = true;
}

Status I2cController::setParameters(Polling addressPolling) {
    if (!initialised) {
        return Status::NotInitialised;
    }
    polling = addressPolling;
    return Status::Success;
}

Status I2cController::write(uint8_t address, const Bytes& bytes, End end) {
    Status status = readiness();
    if (status == Status::Success) {
        status = finish(send(address, bytes), end);
    }
    return status;
}

Status I2cController::read(uint8_t address, const Bytes& registerAddress, size_t length, End end,
                           Bytes& received) {
    Status status = readiness();
    if (status != Status::Success) {
        return status;
    }
    if (!registerAddress.empty()) {
        status = send(address, registerAddress);
    }
    if (status == Status::Success) {
        status = start(address, I2cDirection::Read);
    }
    if (status == Status::Success) {
        const Bytes bytes = bus.read(length);
        received.insert(received.end(), bytes.begin(), bytes.end());
    }
    return finish(status, end);
}

Status I2cController::scan(Bytes& acknowledged) {
    const Status status = readiness();
    if (status != Status::Success) {
        return status;
    }
    for (uint8_t address = firstScannedAddress; address <= lastScannedAddress; ++address) {
        if (bus.start(address, I2cDirection::Write)) {
            acknowledged.push_back(address);
        }
        bus.stop();
    }
    return Status::Success;
}

Status I2cController::readiness() const {
    if (!initialised) {
        return Status::NotInitialised;
    }
    if (!pulledUp) {
        return Status::NoPullUp;
    }
    return bus.isHeldLow() ? Status::BusStuck : Status::Success;
}

Status I2cController::start(uint8_t address, I2cDirection direction) {
    for (auto attempts = static_cast<unsigned>(polling); attempts > 0; --attempts) {
        if (bus.start(address, direction)) {
            return Status::Success;
        }
    }
    return Status::NotAcknowledged;
}

Status I2cController::send(uint8_t address, const Bytes& bytes) {
    const Status status = start(address, I2cDirection::Write);
    if (status != Status::Success) {
        return status;
    }
    return bus.write(bytes) == bytes.size() ? Status::Success : Status::DataNotAcknowledged;
}

Status I2cController::finish(Status status, End end) {
    if (status != Status::Success || end == End::Stop) {
        bus.stop();
    }
    return status;
}

} // namespace virtual_adapter
