#include "model/i2c/i2c.hpp"

#include "board/parts/I2cEeprom.hpp"
#include "board/parts/I2cTemperatureSensor.hpp"
#include "model/checks.hpp"

namespace virtual_adapter {

namespace {

constexpr size_t busCount = 2;
constexpr uint32_t lowestClock = 10'000;
constexpr uint32_t highestClock = 1'000'000;
constexpr uint8_t highestAddress = 0x7F;
constexpr unsigned longestRegisterAddress = 4;
/// The pull-up settings are 0 (none), 1 (10 kOhm), 2 (4.7 kOhm) and 3 (2.2 kOhm).
constexpr unsigned strongestPullUp = 3;

/// The payload of 0x0901 and 0x0902.
struct Settings {
    explicit Settings(ByteReader& request)
        : busIndex(request.u8()),
          clock(request.u32()),
          option(request.u8()),
          status(check(request, busIndex < busCount && within(clock, lowestClock, highestClock) &&
                                    option <= 1)) {}

    size_t busIndex;
    uint32_t clock;
    uint8_t option;
    Status status;

    [[nodiscard]] I2cController::Polling polling() const {
        return option == 1 ? I2cController::Polling::UntilReady : I2cController::Polling::Once;
    }
};

/// What the payloads of 0x0904 and 0x0905 have in common.
struct Transfer {
    explicit Transfer(ByteReader& request)
        : busIndex(request.u8()),
          length(request.u16()),
          target(request.u8()),
          registerAddressLength(request.u8()),
          registerAddress(request.u32()),
          hold(request.u8()) {}

    uint8_t busIndex;
    uint16_t length;
    uint8_t target;
    unsigned registerAddressLength;
    uint32_t registerAddress;
    uint8_t hold;

    [[nodiscard]] bool valuesKnown() const {
        return busIndex < busCount && target <= highestAddress &&
               registerAddressLength <= longestRegisterAddress &&
               uint64_t{registerAddress} >> 8U * registerAddressLength == 0 && hold <= 1;
    }

    /// Most significant byte first, as the bus carries it.
    [[nodiscard]] Bytes registerAddressBytes() const {
        Bytes bytes;
        for (unsigned i = registerAddressLength; i > 0; --i) {
            bytes.push_back(static_cast<uint8_t>(registerAddress >> 8U * (i - 1) & 0xFFU));
        }
        return bytes;
    }

    [[nodiscard]] I2cController::End end() const {
        return hold == 1 ? I2cController::End::Hold : I2cController::End::Stop;
    }
};

} // namespace

I2c::I2c(const IoVoltage& ioVoltage) : voltage(ioVoltage) {
    I2cBus& first = controllers[0].getBus();
    first.attach(0x48, std::make_unique<I2cTemperatureSensor>(2 * 25));
    first.attach(0x50, std::make_unique<I2cEeprom>(I2cEeprom::geometry24C02,
                                                   "Hello from the virtual adapter!"));
    first.attach(0x51, std::make_unique<I2cEeprom>(I2cEeprom::geometry24C256, ""));

    I2cBus& second = controllers[1].getBus();
    second.attach(0x48, std::make_unique<I2cTemperatureSensor>(-21));
    second.attach(0x50, std::make_unique<I2cEeprom>(I2cEeprom::geometry24C02, "Hello from bus 1!"));
    second.attach(0x51, std::make_unique<I2cEeprom>(I2cEeprom::geometry24C256, "32 KiB on bus 1"));
    second.attachTenBit(0x1A2);
}

void I2c::registerCommands(Dispatcher& dispatcher) {
    dispatcher.on(CommandCode::I2cSetPullUpResistors,
                  voltage.required([this](auto& request) { return setPullUpResistors(request); }));
    dispatcher.on(CommandCode::I2cControllerInit,
                  voltage.required([this](auto& request) { return controllerInit(request); }));
    dispatcher.on(CommandCode::I2cSetParameters,
                  voltage.required([this](auto& request) { return setParameters(request); }));
    dispatcher.on(CommandCode::I2cWrite,
                  voltage.required([this](auto& request) { return write(request); }));
    dispatcher.on(CommandCode::I2cRead,
                  voltage.required([this](auto& request) { return read(request); }));
    const auto scan = voltage.required([this](auto& request) { return scanBus(request); });
    dispatcher.on(CommandCode::I2cScanBus, [scan](auto& request) {
        const Answer answer = scan(request);
        // Without the two counts the host would take a refusal for a truncated list.
        return answer.status == Status::Success ? answer : Answer(answer.status, Bytes(3));
    });
}

Answer I2c::setPullUpResistors(ByteReader& request) {
    const size_t busIndex = request.u8();
    const unsigned setting = request.u8();
    const Status status = check(request, busIndex < busCount && setting <= strongestPullUp);
    if (status == Status::Success) {
        controllers.at(busIndex).connectPullUp(setting != 0);
    }
    return status;
}

Answer I2c::controllerInit(ByteReader& request) {
    const Settings settings(request);
    if (settings.status == Status::Success) {
        controllers.at(settings.busIndex).init(settings.polling());
    }
    return settings.status;
}

Answer I2c::setParameters(ByteReader& request) {
    const Settings settings(request);
    if (settings.status != Status::Success) {
        return settings.status;
    }
    return controllers.at(settings.busIndex).setParameters(settings.polling());
}

Answer I2c::write(ByteReader& request) {
    const Transfer transfer(request);
    const Bytes data = request.bytes(transfer.length);
    const Status status = check(request, transfer.valuesKnown());
    if (status != Status::Success) {
        return status;
    }
    Bytes bytes = transfer.registerAddressBytes();
    bytes.insert(bytes.end(), data.begin(), data.end());
    return controllers.at(transfer.busIndex).write(transfer.target, bytes, transfer.end());
}

Answer I2c::read(ByteReader& request) {
    const Transfer transfer(request);
    Status status = check(request, transfer.valuesKnown());
    if (status != Status::Success) {
        return status;
    }
    Bytes payload{transfer.busIndex};
    appendU16(payload, transfer.length);
    status = controllers.at(transfer.busIndex)
                 .read(transfer.target, transfer.registerAddressBytes(), transfer.length,
                       transfer.end(), payload);
    return status == Status::Success ? Answer(status, payload) : Answer(status);
}

Answer I2c::scanBus(ByteReader& request) {
    const size_t busIndex = request.u8();
    const unsigned tenBitToo = request.u8();
    Status status = check(request, busIndex < busCount && tenBitToo <= 1);
    if (status != Status::Success) {
        return status;
    }
    I2cController& controller = controllers.at(busIndex);
    Bytes addresses;
    status = controller.scan(addresses);
    if (status != Status::Success) {
        return status;
    }
    Bytes payload{0, static_cast<uint8_t>(addresses.size()), 0};
    payload.insert(payload.end(), addresses.begin(), addresses.end());
    if (tenBitToo == 1) {
        for (const uint16_t address : controller.getBus().tenBitAddresses()) {
            appendU16(payload, address);
            ++payload[2];
        }
    }
    return {Status::Success, payload};
}

} // namespace virtual_adapter
