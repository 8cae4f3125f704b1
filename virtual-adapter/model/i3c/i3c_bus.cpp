// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/i3c_bus.hpp"

#include "model/checks.hpp"
#include "model/i3c/i3c_records.hpp"

namespace virtual_adapter {

namespace {

constexpr unsigned minMillivolts = 1000;
constexpr unsigned maxMillivolts = 3300;

/// The payload of 0x1901 and 0x1902.
struct SettingsRequest {
    explicit SettingsRequest(ByteReader& request)
        : settings{request.u8(), request.u8(), request.u8(), request.u8()},
          status(check(request, settings.pushPullRate <= I3cPushPullRate_1_MHz &&
                                    settings.openDrainRate <= I3cOpenDrainTransferRate_0_4_MHz &&
                                    settings.i2cRate <= I2cTransferRate_0_1_MHz &&
                                    settings.driveStrength <= I3cDriveStrength_12_mA)) {}

    I3cController::Settings settings;
    Status status;
};

} // namespace

Answer I3cBusSetup::setVoltage(ByteReader& request) {
    const unsigned millivolts = request.u16();
    const bool off = millivolts == 0;
    const Status status = check(request, off || within(millivolts, minMillivolts, maxMillivolts));
    if (status == Status::Success) {
        controller.setSupply(!off);
    }
    return status;
}

Answer I3cBusSetup::controllerInit(ByteReader& request) {
    const SettingsRequest wanted(request);
    const Status status = controller.whenSupplied(wanted.status);
    if (status == Status::Success) {
        controller.init(wanted.settings);
    }
    return status;
}

Answer I3cBusSetup::setParameters(ByteReader& request) {
    const SettingsRequest wanted(request);
    const Status status = controller.whenSupplied(wanted.status);
    return status == Status::Success ? controller.setParameters(wanted.settings) : status;
}

Answer I3cBusSetup::initBus(ByteReader& request) {
    std::vector<I3cTargetInfo> records(request.u8());
    for (I3cTargetInfo& record : records) {
        record = readI3cRecord(request);
    }
    const Status status = controller.whenSupplied(check(request, true));
    return status == Status::Success ? controller.initialiseBus(records) : status;
}

Answer I3cBusSetup::resetBus(ByteReader& request) {
    const Status status = controller.whenSupplied(check(request, true));
    return status == Status::Success ? controller.resetBus() : status;
}

Answer I3cBusSetup::getDeviceTable(ByteReader& request) {
    Answer answer = listDevices(request);
    if (answer.status != Status::Success) {
        // A refusal counts no records for readers that ignore the status.
        answer.payload.countU8(0);
    }
    return answer;
}

Answer I3cBusSetup::listDevices(ByteReader& request) {
    const Status status = controller.onInitialisedBus(check(request, true));
    if (status != Status::Success) {
        return status;
    }
    const std::vector<I3cTargetInfo> records = controller.getTable().records();
    ByteWriter payload;
    payload.countU8(static_cast<uint8_t>(records.size()));
    for (const I3cTargetInfo& record : records) {
        writeI3cRecord(payload, record);
    }
    return {Status::Success, payload};
}

Answer I3cBusSetup::configureTarget(ByteReader& request) {
    const uint8_t address = request.u8();
    const uint8_t configuration = request.u8();
    Status status = controller.onInitialisedBus(
        check(request, configuration <= I3cTargetConfiguration_LegacyI2c));
    if (status != Status::Success) {
        return status;
    }
    status = controller.getTable().configure(address, configuration);
    // An interrupt that was refused may be acceptable now.
    controller.serveRequests();
    return status;
}

} // namespace virtual_adapter
