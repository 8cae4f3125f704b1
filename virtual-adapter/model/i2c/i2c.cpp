// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i2c/i2c.hpp"

#include "model/checks.hpp"

namespace virtual_adapter {

namespace {

constexpr size_t busCount = I2c::busCount;
constexpr uint32_t minClock = 10'000;
constexpr uint32_t maxClock = 1'000'000;
constexpr uint8_t maxAddress = 0x7F;
constexpr unsigned maxRegisterAddressLength = 4;
/// The pull-up settings are 0 (none), 1 (10 kOhm), 2 (4.7 kOhm) and 3 (2.2 kOhm).
constexpr unsigned strongestPullUp = 3;

/// The payload of 0x0901 and 0x0902.
struct Settings {
    explicit Settings(ByteReader& request)
        : busIndex(request.u8()), clock(request.u32()), option(request.u8()) {}

    size_t busIndex;
    uint32_t clock;
    uint8_t option;

    [[nodiscard]] bool valuesKnown() const {
        return busIndex < busCount && within(clock, minClock, maxClock) && option <= 1;
    }

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
        return busIndex < busCount && target <= maxAddress &&
               registerAddressLength <= maxRegisterAddressLength &&
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

/// The payload of a response to 0x0906.
ByteWriter scanned(const Bytes& addresses, const std::set<uint16_t>& tenBitAddresses) {
    ByteWriter payload;
    payload.u8(0)
        .countU8(static_cast<uint8_t>(addresses.size()))
        .countU8(static_cast<uint8_t>(tenBitAddresses.size()))
        .bytes(addresses);
    for (const uint16_t address : tenBitAddresses) {
        payload.u16(address);
    }
    return payload;
}

} // namespace

I2c::I2c(const IoVoltage& ioVoltage, std::array<I2cBus, busCount>& buses)
    : voltage(ioVoltage), controllers{I2cController(buses[0]), I2cController(buses[1])} {}

Answer I2c::setPullUpResistors(ByteReader& request) {
    const size_t busIndex = request.u8();
    const unsigned setting = request.u8();
    const Status status = voltage.check(request, busIndex < busCount && setting <= strongestPullUp);
    if (status == Status::Success) {
        controllers.at(busIndex).connectPullUp(setting != 0);
    }
    return status;
}

Answer I2c::controllerInit(ByteReader& request) {
    const Settings settings(request);
    const Status status = voltage.check(request, settings.valuesKnown());
    if (status == Status::Success) {
        controllers.at(settings.busIndex).init(settings.polling());
    }
    return status;
}

Answer I2c::setParameters(ByteReader& request) {
    const Settings settings(request);
    const Status status = voltage.check(request, settings.valuesKnown());
    return status == Status::Success
               ? controllers.at(settings.busIndex).setParameters(settings.polling())
               : status;
}

Answer I2c::write(ByteReader& request) {
    const Transfer transfer(request);
    const Bytes data = request.bytes(transfer.length);
    const Status status = voltage.check(request, transfer.valuesKnown());
    if (status != Status::Success) {
        return status;
    }
    Bytes bytes = transfer.registerAddressBytes();
    bytes.insert(bytes.end(), data.begin(), data.end());
    return controllers.at(transfer.busIndex).write(transfer.target, bytes, transfer.end());
}

Answer I2c::read(ByteReader& request) {
    const Transfer transfer(request);
    Status status = voltage.check(request, transfer.valuesKnown());
    if (status != Status::Success) {
        return status;
    }
    Bytes received;
    status = controllers.at(transfer.busIndex)
                 .read(transfer.target, transfer.registerAddressBytes(), transfer.length,
                       transfer.end(), received);
    if (status != Status::Success) {
        return status;
    }
    return {status, ByteWriter().u8(transfer.busIndex).countU16(transfer.length).bytes(received)};
}

Answer I2c::scanBus(ByteReader& request) {
    Answer answer = scan(request);
    if (answer.status != Status::Success) {
        // Without the two counts the host would take a refusal for a truncated list.
        answer.payload = scanned({}, {});
    }
    return answer;
}

Answer I2c::scan(ByteReader& request) {
    const size_t busIndex = request.u8();
    const unsigned tenBitToo = request.u8();
    Status status = voltage.check(request, busIndex < busCount && tenBitToo <= 1);
    if (status != Status::Success) {
        return status;
    }
    I2cController& controller = controllers.at(busIndex);
    Bytes addresses;
    status = controller.scan(addresses);
    if (status != Status::Success) {
        return status;
    }
    const std::set<uint16_t> none;
    return {Status::Success,
            scanned(addresses, tenBitToo == 1 ? controller.getBus().tenBitAddresses() : none)};
}

} // namespace virtual_adapter
