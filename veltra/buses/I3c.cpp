// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "buses/I3c.hpp"

#include "i3c/Target.hpp"

#include <algorithm>

namespace veltra {

namespace {

constexpr uint8_t broadcastAddress = 0x7E;
constexpr uint8_t hdrReadBit = 0x80; // users name the seven bits beside it

const Named<I3cPushPullRate> pushPullRates[] = {
    {"12.5M", I3cPushPullRate_12_5_MHz}, {"10M", I3cPushPullRate_10_MHz},
    {"8M", I3cPushPullRate_8_MHz},       {"6M", I3cPushPullRate_6_MHz},
    {"4M", I3cPushPullRate_4_MHz},       {"2M", I3cPushPullRate_2_MHz},
    {"1M", I3cPushPullRate_1_MHz}};
const Named<I3cOpenDrainTransferRate> openDrainRates[] = {
    {"4M", I3cOpenDrainTransferRate_4_MHz},
    {"2.5M", I3cOpenDrainTransferRate_2_5_MHz},
    {"1M", I3cOpenDrainTransferRate_1_MHz},
    {"400k", I3cOpenDrainTransferRate_0_4_MHz}};
const Named<I2cTransferRate> i2cRates[] = {{"1M", I2cTransferRate_1_MHz},
                                           {"400k", I2cTransferRate_0_4_MHz},
                                           {"100k", I2cTransferRate_0_1_MHz}};
const Named<I3cDriveStrength> strengths[] = {{"2mA", I3cDriveStrength_2_mA},
                                             {"4mA", I3cDriveStrength_4_mA},
                                             {"8mA", I3cDriveStrength_8_mA},
                                             {"12mA", I3cDriveStrength_12_mA}};

/// The settings as the adapter takes them.
struct Rates {
    explicit Rates(const I3cSettings& settings)
        : pushPull(parseName("push-pull rate", settings.pushPull, pushPullRates)),
          openDrain(parseName("open-drain rate", settings.openDrain, openDrainRates)),
          i2c(parseName("I2C rate", settings.i2c, i2cRates)),
          drive(parseName("drive strength", settings.drive, strengths)),
          words("push-pull " + settings.pushPull + ", open-drain " + settings.openDrain + ", I2C " +
                settings.i2c + ", " + settings.drive) {}

    I3cPushPullRate pushPull;
    I3cOpenDrainTransferRate openDrain;
    I2cTransferRate i2c;
    I3cDriveStrength drive;
    std::string words;
};

std::string wordsOf(const char* verb, uint8_t address, const Bytes& registerBytes) {
    return std::string(verb) + ": address " + hexNumber(address, 2) +
           (registerBytes.empty() ? "" : ", register " + hexDigits(registerBytes));
}

std::string wordsOf(I3cTransferFlags flags) {
    return std::string((flags & I3cTransferFlags_SkipBroadcastAddress) != 0 ? ", no 0x7e" : "") +
           ((flags & I3cTransferFlags_NoStop) != 0 ? ", no STOP" : "");
}

} // namespace

void I3c::initialise(const I3cSettings& settings, const std::vector<I3cTargetInfo>& targets) {
    const Rates rates(settings);
    session.perform("i3c controller: " + rates.words, [&](VeltraSDK& sdk) {
        return sdk.i3cControllerInit(rates.pushPull, rates.openDrain, rates.i2c, rates.drive);
    });
    session.perform("i3c bus: initialise, " + std::to_string(targets.size()) + " records",
                    [&](VeltraSDK& sdk) { return sdk.i3cInitBus(targets); });
}

void I3c::setSpeed(const I3cSettings& settings) {
    const Rates rates(settings);
    session.perform("i3c parameters: " + rates.words, [&](VeltraSDK& sdk) {
        return sdk.i3cSetParameters(rates.pushPull, rates.openDrain, rates.i2c, rates.drive);
    });
}

void I3c::reset() {
    session.perform("i3c bus: reset", [](VeltraSDK& sdk) { return sdk.i3cResetBus(); });
}

std::vector<I3cTargetInfo> I3c::table() {
    std::vector<I3cTargetInfo> targets;
    session.perform("i3c device table",
                    [&](VeltraSDK& sdk) { return sdk.i3cGetDeviceTable(targets); });
    return targets;
}

uint8_t I3c::resolve(const std::string& text) {
    const size_t colon = text.find(':');
    const std::string kind = text.substr(0, colon);
    if (colon == std::string::npos) {
        return parseAddress(text);
    }
    const std::string value = text.substr(colon + 1);
    const Bytes pid = kind == "pid" ? parsePid(value) : Bytes();
    const uint8_t fixed = kind == "static" ? parseAddress(value) : uint8_t{0};
    if (kind != "pid" && kind != "static") {
        throw Failure::ofUsage("target '" + text +
                               "' is none: 0x09, pid:0123456789ab and static:0x48 are");
    }
    for (const I3cTargetInfo& target : table()) {
        const bool same = pid.empty() ? target.staticAddress == fixed && !isLegacy(target)
                                      : std::equal(pid.begin(), pid.end(), target.pid);
        if (same && target.dynamicAddress != 0) {
            return target.dynamicAddress;
        }
    }
    if (session.rehearses()) {
        return 0; // the table, which nobody has read, would tell
    }
    throw Failure(ExitStatus::Refused, "target", "no target on the bus is " + text)
        .advise("See which there are: veltra i3c list");
}

void I3c::acceptInterrupts(uint8_t address, bool accept) {
    const auto configuration =
        accept ? I3cTargetConfiguration_AcceptIbi : I3cTargetConfiguration_RejectIbi;
    session.perform(std::string("i3c target ") + hexNumber(address, 2) + ": interrupts " +
                        (accept ? "accepted" : "rejected"),
                    [=](VeltraSDK& sdk) {
                        return sdk.i3cSetTargetDeviceConfiguration(address, configuration);
                    });
    ccc(parseCcc(accept ? "enec" : "disec", {std::to_string(address), "1"}, "", ""), address);
}

void I3c::drivePattern(const std::string& name) {
    session.perform("i3c pattern: " + name, [&](VeltraSDK& sdk) {
        return name == "reset" ? sdk.i3cTargetResetPattern() : sdk.i3cHdrExitPattern();
    });
}

uint16_t I3c::attemptCcc(const CccRequest& request, uint8_t address, Bytes& reply) {
    const bool broadcast = request.target.empty();
    const auto direction = request.isRead ? I3cTransferDirection_Read : I3cTransferDirection_Write;
    const auto type =
        request.definingByte ? I3cCccType_WithDefiningByte : I3cCccType_WithoutDefiningByte;
    // Of a direct code the data phase counts, of a broadcast what follows the code.
    const size_t length = request.isRead
                              ? request.count
                              : request.data.size() + (broadcast && request.definingByte ? 1 : 0);
    return session.attempt(
        "i3c ccc: " + hexNumber(request.code, 2) + ", " +
            (broadcast ? "broadcast" : "address " + hexNumber(address, 2)) +
            (request.definingByte ? ", defining byte " + hexNumber(*request.definingByte, 2) : "") +
            (request.isRead         ? ", length " + std::to_string(request.count)
             : request.data.empty() ? ""
                                    : ", bytes " + hexWords(request.data)),
        [&](VeltraSDK& sdk) {
            return sdk.i3cCccTransfer(broadcast ? broadcastAddress : address, direction,
                                      I3cTransferMode_Sdr, false, type,
                                      static_cast<uint8_t>(length), static_cast<CCC>(request.code),
                                      request.definingByte.value_or(0), request.data, reply);
        },
        &reply);
}

Bytes I3c::ccc(const CccRequest& request, uint8_t address) {
    Bytes reply;
    const uint16_t result = attemptCcc(request, address, reply);
    if (result != ResultCode_Success) {
        throw session.failureOf(result);
    }
    return reply;
}

std::optional<Bytes> I3c::ask(const std::string& name, uint8_t address) {
    Bytes reply;
    const uint16_t result =
        attemptCcc(parseCcc(name, {std::to_string(address)}, "", ""), address, reply);
    if (result == VeltraStatus_NotAcknowledged || result == VeltraStatus_DataNotAcknowledged) {
        return std::nullopt;
    }
    if (result != ResultCode_Success) {
        throw session.failureOf(result);
    }
    return reply;
}

Bytes I3c::read(Way way, uint8_t address, const Bytes& registerBytes, uint16_t count,
                I3cTransferFlags flags) {
    Bytes data;
    const char* const verb = way == Way::Sdr ? "i3c read" : "i3c legacy i2c read";
    session.perform(
        wordsOf(verb, address, registerBytes) + ", length " + std::to_string(count) +
            wordsOf(flags),
        [&](VeltraSDK& sdk) {
            return way == Way::Sdr
                       ? sdk.i3cSdrRead(address, registerBytes, count, data, flags)
                       : sdk.i3cLegacyI2cRead(address, registerBytes, count, data, flags);
        },
        &data);
    return data;
}

void I3c::write(Way way, uint8_t address, const Bytes& registerBytes, const Bytes& data,
                I3cTransferFlags flags) {
    const char* const verb = way == Way::Sdr ? "i3c write" : "i3c legacy i2c write";
    session.perform(
        wordsOf(verb, address, registerBytes) + ", bytes " + hexWords(data) + wordsOf(flags),
        [&](VeltraSDK& sdk) {
            return way == Way::Sdr ? sdk.i3cSdrWrite(address, registerBytes, data, flags)
                                   : sdk.i3cLegacyI2cWrite(address, registerBytes, data, flags);
        });
}

Bytes I3c::hdrRead(uint8_t address, uint8_t code, uint16_t count) {
    const uint8_t command = code | hdrReadBit;
    Bytes data;
    session.perform(
        "i3c hdr read: address " + hexNumber(address, 2) + ", code " + hexNumber(code, 2) +
            ", length " + std::to_string(count),
        [&](VeltraSDK& sdk) { return sdk.i3cHdrDdrRead(address, command, count, data); }, &data);
    return data;
}

void I3c::hdrWrite(uint8_t address, uint8_t code, const Bytes& data) {
    session.perform("i3c hdr write: address " + hexNumber(address, 2) + ", code " +
                        hexNumber(code, 2) + ", bytes " + hexWords(data),
                    [&](VeltraSDK& sdk) { return sdk.i3cHdrDdrWrite(address, code, data); });
}

} // namespace veltra
