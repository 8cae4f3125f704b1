// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/AdapterBuses.hpp"

#include "buses/Spi.hpp"

#include <veltrasdk/status.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace veltra {

namespace {

/// As the kernel's drivers tell programs what went wrong.
int errorOf(const Failure& failure) {
    if (!failure.status) {
        return failure.exitStatus == ExitStatus::CommandLine ? EINVAL : EIO;
    }
    switch (*failure.status) {
    case ResultCode_NoResponse:
        return ETIMEDOUT;
    case ResultCode_NotConnected:
        return ENODEV;
    case VeltraStatus_NotAcknowledged:
        return ENXIO;
    case VeltraStatus_BusStuck:
        return EBUSY;
    case ResultCode_InvalidArgument:
    case VeltraStatus_InvalidParameter:
    case VeltraStatus_MalformedRequest:
        return EINVAL;
    default:
        return EIO;
    }
}

/// What no program expects, since a board's own supply and resistors are always there.
bool concernsPeople(const Failure& failure) {
    switch (failure.status.value_or(0)) {
    case VeltraStatus_NoVoltage:
    case VeltraStatus_NoPullUp:
    case ResultCode_NotConnected:
        return true;
    default:
        return false;
    }
}

} // namespace

int AdapterBuses::i2cRead(int bus, uint8_t address, const Bytes& written, uint16_t count, bool hold,
                          Bytes& data) {
    return attempt([&] { data = setUp(bus).read(address, written, count, hold); });
}

int AdapterBuses::i2cWrite(int bus, uint8_t address, const Bytes& data, bool hold) {
    return attempt([&] { setUp(bus).write(address, {}, data, hold); });
}

int AdapterBuses::spiTransfer(const devices::SpiSetting& setting, const Bytes& sent, uint16_t count,
                              Bytes& received) {
    SpiSettings settings;
    settings.chipSelect = setting.chipSelect;
    settings.mode = setting.mode;
    settings.bits = setting.bits;
    settings.clock = std::to_string(setting.clock);
    settings.lsbFirst = setting.isLsbFirst;
    settings.activeHigh = setting.isActiveHigh;
    return attempt([&] { received = Spi(session, settings).transfer(sent, count); });
}

void AdapterBuses::pause(unsigned microseconds) {
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

I2c AdapterBuses::setUp(int bus) {
    I2cSettings settings = typed;
    settings.bus = bus;
    session.concern("", bus);
    return {session, settings};
}

int AdapterBuses::attempt(const std::function<void()>& call) {
    try {
        call();
        return 0;
    } catch (const Failure& failure) {
        if (concernsPeople(failure) && told.insert(failure.text).second) {
            output.failure(failure);
        }
        return errorOf(failure);
    }
}

} // namespace veltra
