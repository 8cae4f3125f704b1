#include "model/i3c/i3c_bus.hpp"

#include "model/checks.hpp"
#include "model/i3c/i3c_records.hpp"

namespace virtual_adapter {

namespace {

constexpr unsigned lowestMillivolts = 1000;
constexpr unsigned highestMillivolts = 3300;

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

void I3cBusSetup::registerCommands(Dispatcher& dispatcher) {
    dispatcher.on(CommandCode::I3cSetBusVoltage,
                  [this](auto& request) { return setVoltage(request); });
    const auto onSupplied = [&](CommandCode command, Answer (I3cBusSetup::*handler)(ByteReader&)) {
        dispatcher.on(command, controller.whenSupplied([this, handler](ByteReader& request) {
            return (this->*handler)(request);
        }));
    };
    onSupplied(CommandCode::I3cControllerInit, &I3cBusSetup::controllerInit);
    onSupplied(CommandCode::I3cSetParameters, &I3cBusSetup::setParameters);
    onSupplied(CommandCode::I3cInitBus, &I3cBusSetup::initBus);
    onSupplied(CommandCode::I3cResetBus, &I3cBusSetup::resetBus);

    onSupplied(CommandCode::I3cSetTargetDeviceConfiguration, &I3cBusSetup::configureTarget);

    const auto table =
        controller.whenSupplied([this](auto& request) { return getDeviceTable(request); });
    dispatcher.on(CommandCode::I3cGetDeviceTable, [table](auto& request) {
        const Answer answer = table(request);
        // A refusal counts no records for readers that ignore the status.
        return answer.status == Status::Success ? answer : Answer(answer.status, Bytes{0});
    });
}

Answer I3cBusSetup::setVoltage(ByteReader& request) {
    const unsigned millivolts = request.u16();
    const bool off = millivolts == 0;
    const Status status =
        check(request, off || within(millivolts, lowestMillivolts, highestMillivolts));
    if (status == Status::Success) {
        controller.setSupply(!off);
    }
    return status;
}

Answer I3cBusSetup::controllerInit(ByteReader& request) {
    const SettingsRequest wanted(request);
    if (wanted.status == Status::Success) {
        controller.init(wanted.settings);
    }
    return wanted.status;
}

Answer I3cBusSetup::setParameters(ByteReader& request) {
    const SettingsRequest wanted(request);
    return wanted.status == Status::Success ? controller.setParameters(wanted.settings)
                                            : wanted.status;
}

Answer I3cBusSetup::initBus(ByteReader& request) {
    std::vector<I3cTargetInfo> records(request.u8());
    for (I3cTargetInfo& record : records) {
        record = readI3cRecord(request);
    }
    const Status status = check(request, true);
    return status == Status::Success ? controller.initialiseBus(records) : status;
}

Answer I3cBusSetup::resetBus(ByteReader& request) {
    const Status status = check(request, true);
    return status == Status::Success ? controller.resetBus() : status;
}

Answer I3cBusSetup::getDeviceTable(ByteReader& request) {
    const Status status = controller.onInitialisedBus(check(request, true));
    if (status != Status::Success) {
        return status;
    }
    const std::vector<I3cTargetInfo> records = controller.getTable().records();
    Bytes payload{static_cast<uint8_t>(records.size())};
    for (const I3cTargetInfo& record : records) {
        appendI3cRecord(payload, record);
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
