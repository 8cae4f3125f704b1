// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "buses/I2c.hpp"

#include <algorithm>

namespace veltra {

namespace {

const Named<uint8_t> pullUps[] = {{"none", 0}, {"10k", 1}, {"4k7", 2}, {"2k2", 3}};

uint8_t pullUpOf(const I2cSettings& settings) {
    return settings.pullUp.empty() ? uint8_t{0} : parseName("pull-up", settings.pullUp, pullUps);
}

std::string registerInWords(const Bytes& registerBytes) {
    return registerBytes.empty() ? "" : ", register " + hexDigits(registerBytes);
}

std::string holdInWords(bool hold) {
    return hold ? ", no STOP" : "";
}

std::string nameOf(uint8_t bus) {
    return "i2c bus " + std::to_string(bus);
}

} // namespace

void checkWords(const I2cSettings& settings) {
    parseFrequency(settings.clock);
    pullUpOf(settings);
}

I2c::I2c(Session& over, const I2cSettings& settings)
    : session(over), index(static_cast<uint8_t>(settings.bus)) {
    const uint32_t clock = parseFrequency(settings.clock);
    const uint8_t retry = settings.retryBusy ? 1 : 0;
    const std::string name = nameOf(index);
    const uint8_t pullUp = pullUpOf(settings);
    session.supplyPins();
    session.setUp(name,
                  name + ": " + std::to_string(clock) + " Hz" + (retry != 0 ? ", retrying" : ""),
                  [=](VeltraSDK& sdk) { return sdk.i2cControllerInit(index, clock, retry); });
    if (!settings.pullUp.empty()) {
        session.setUp(name + " pull-ups", name + ": pull-ups " + settings.pullUp,
                      [=](VeltraSDK& sdk) { return sdk.i2cSetPullUpResistors(index, pullUp); });
    }
}

std::string I2c::request(const std::string& verb, uint8_t address) const {
    return "i2c " + verb + ": bus " + std::to_string(index) + ", address " + hexNumber(address, 2);
}

I2c::Found I2c::scan(bool tenBit) {
    Bytes list;
    uint8_t sevenBitCount = 0;
    uint8_t tenBitCount = 0;
    perform(
        "i2c scan: bus " + std::to_string(index) + (tenBit ? ", 10-bit addresses too" : ""),
        [&](VeltraSDK& sdk) {
            return sdk.i2cScanBus(list, &sevenBitCount, &tenBitCount, index, tenBit);
        },
        &list);
    Found found;
    const size_t sevenBits = std::min<size_t>(sevenBitCount, list.size());
    found.addresses.assign(list.begin(), list.begin() + static_cast<ptrdiff_t>(sevenBits));
    for (size_t at = sevenBits; at + 1 < list.size(); at += 2) {
        found.tenBitAddresses.push_back(static_cast<uint16_t>(list[at] | list[at + 1] << 8U));
    }
    return found;
}

Bytes I2c::read(uint8_t address, const Bytes& registerBytes, uint16_t count, bool hold) {
    Bytes data;
    perform(
        request("read", address) + registerInWords(registerBytes) + ", length " +
            std::to_string(count) + holdInWords(hold),
        [&](VeltraSDK& sdk) {
            return sdk.i2cRead(index, address, registerBytes, count, data, hold);
        },
        &data);
    return data;
}

void I2c::write(uint8_t address, const Bytes& registerBytes, const Bytes& data, bool hold) {
    perform(
        request("write", address) + registerInWords(registerBytes) + ", bytes " + hexWords(data) +
            holdInWords(hold),
        [&](VeltraSDK& sdk) { return sdk.i2cWrite(index, address, registerBytes, data, hold); });
}

bool I2c::acknowledges(uint8_t address) {
    const uint16_t result = session.attempt(request("ask", address), [&](VeltraSDK& sdk) {
        return sdk.i2cWrite(index, address, {}, {}, false);
    });
    if (result == VeltraStatus_NotAcknowledged) {
        return false;
    }
    require(result);
    return true;
}

void I2c::perform(const std::string& words, const Session::Call& call, const Bytes* answer) {
    require(session.attempt(words, call, answer));
}

void I2c::require(uint16_t result) {
    if (result == VeltraStatus_BusStuck) {
        session.forget(nameOf(index)); // the next command initialises it, which may free it
    }
    if (result != ResultCode_Success) {
        throw session.failureOf(result);
    }
}

} // namespace veltra
