// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/I3cTarget.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr uint8_t bcrLimitedDataSpeed = 0x01;
constexpr uint8_t bcrIbiPayload = 0x04;
constexpr uint8_t bcrAdvancedCapabilities = 0x20;
constexpr uint8_t hdrModeDdr = 0x01;

constexpr uint16_t minWriteLimit = 8;
constexpr uint16_t minReadLimit = 16;

// The formats of GETSTATUS, GETCAPS and GETMXDS.
constexpr uint8_t formatStandard = 0x00;
constexpr uint8_t formatTestPattern = 0x5A;

constexpr uint8_t peripheralResetMilliseconds = 1;
constexpr uint8_t wholeTargetResetMilliseconds = 10;

/// The rate in the words of GETMXDS (MIPI I3C Basic v1.1.1, section 5.1.9.3.18), which has none for
/// 10 MHz and none below 2 MHz.
uint8_t maxSustainedRate(I3cPushPullRate fastest) {
    switch (fastest) {
    case I3cPushPullRate_12_5_MHz:
        return 0;
    case I3cPushPullRate_10_MHz:
    case I3cPushPullRate_8_MHz:
        return 1;
    case I3cPushPullRate_6_MHz:
        return 2;
    case I3cPushPullRate_4_MHz:
        return 3;
    case I3cPushPullRate_2_MHz:
    case I3cPushPullRate_1_MHz:
        break;
    }
    return 4;
}

} // namespace

I3cTarget::I3cTarget(const I3cCharacteristics& ofThisKind, Bytes contents, size_t pointerBytes)
    : kind(ofThisKind),
      initialRegisters(std::move(contents)),
      pointerSize(pointerBytes),
      registers(initialRegisters) {
    resetPeripheral();
}

void I3cTarget::setSupply(bool isSupplied) {
    if (isSupplied != supplied) {
        supplied = isSupplied;
        joins = false;
        resetWholeTarget();
    }
}

void I3cTarget::join() {
    setSupply(true);
    joins = true;
}

void I3cTarget::setDynamicAddress(uint8_t assigned) {
    address = assigned;
    joins = joins && assigned == 0;
}

bool I3cTarget::hasIbiPayload() const {
    return (kind.bcr & bcrIbiPayload) != 0;
}

bool I3cTarget::supportsHdrDdr() const {
    return (kind.hdrModes & hdrModeDdr) != 0;
}

bool I3cTarget::hasLimitedDataSpeed() const {
    return (kind.bcr & bcrLimitedDataSpeed) != 0;
}

bool I3cTarget::hasAdvancedCapabilities() const {
    return (kind.bcr & bcrAdvancedCapabilities) != 0;
}

void I3cTarget::setMaxWriteLength(uint16_t length) {
    writeLimit = std::clamp(length, minWriteLimit, kind.maxWriteLength);
}

void I3cTarget::setMaxReadLength(uint16_t length) {
    readLimit = std::clamp(length, minReadLimit, kind.maxReadLength);
}

void I3cTarget::setMaxIbiPayloadSize(uint8_t size) {
    ibiPayloadLimit = std::min(size, kind.maxIbiPayloadSize);
}

void I3cTarget::enableEvents(uint8_t named) {
    events |= named;
}

void I3cTarget::disableEvents(uint8_t named) {
    events &= static_cast<uint8_t>(~named);
}

bool I3cTarget::requestsInterrupt() const {
    return pendingInterrupt.has_value() && (events & i3c_event::interrupt) != 0 && address != 0;
}

Bytes I3cTarget::raiseInterrupt() {
    Bytes payload = std::exchange(pendingInterrupt, std::nullopt).value_or(Bytes{});
    if (ibiPayloadLimit != 0 && payload.size() > ibiPayloadLimit) {
        payload.resize(ibiPayloadLimit);
    }
    return payload;
}

std::optional<Bytes> I3cTarget::status(DefiningByte definingByte) {
    if (definingByte.has_value() && !hasAdvancedCapabilities()) {
        return {};
    }
    const std::optional<Bytes> reply =
        definingByte.value_or(formatStandard) == formatStandard
            ? Bytes{0x00, static_cast<uint8_t>(pendingInterrupt.has_value() ? 1 : 0)}
            : specialStatus(*definingByte);
    if (reply.has_value()) {
        resetEscalates = false;
    }
    return reply;
}

std::optional<Bytes> I3cTarget::capabilities(DefiningByte definingByte) const {
    constexpr uint8_t minorVersion = 0x01;
    constexpr uint8_t definingBytesInCapsAndStatus = 0x18;
    if (!hasAdvancedCapabilities()) {
        return {};
    }
    switch (definingByte.value_or(formatStandard)) {
    case formatStandard:
        return Bytes{kind.hdrModes, minorVersion, definingBytesInCapsAndStatus, 0x00};
    case formatTestPattern:
        return Bytes{0xA5, 0x5A, 0xA5, 0x5A};
    default:
        return specialCapabilities(*definingByte);
    }
}

std::optional<Bytes> I3cTarget::maxDataSpeed(DefiningByte definingByte) const {
    if (!hasLimitedDataSpeed() || (definingByte.has_value() && !hasAdvancedCapabilities()) ||
        definingByte.value_or(formatStandard) != formatStandard) {
        return {};
    }
    return Bytes(2, maxSustainedRate(kind.fastestRate));
}

bool I3cTarget::armReset(uint8_t definingByte) {
    if (!hasAdvancedCapabilities() || definingByte > I3cTargetResetDefByte_ResetWholeTarget) {
        return false;
    }
    armedReset = definingByte;
    resetEscalates = false;
    return true;
}

std::optional<Bytes> I3cTarget::resetAction(uint8_t definingByte) {
    if (!hasAdvancedCapabilities()) {
        return {};
    }
    uint8_t reply = 0;
    switch (definingByte) {
    case I3cTargetResetDefByte_NoReset:
    case I3cTargetResetDefByte_ResetPeripheral:
    case I3cTargetResetDefByte_ResetWholeTarget:
        // Being asked already ends an escalation.
        reply = armedReset.value_or(I3cTargetResetDefByte_ResetPeripheral);
        break;
    case I3cTargetResetDefByte_TimeToResetPeripheral:
        reply = peripheralResetMilliseconds;
        break;
    case I3cTargetResetDefByte_TimeToResetWholeTarget:
        reply = wholeTargetResetMilliseconds;
        break;
    default:
        return {};
    }
    resetEscalates = false;
    return Bytes{reply};
}

void I3cTarget::receiveTargetResetPattern() {
    if (!hasAdvancedCapabilities()) {
        return;
    }
    const auto armed = std::exchange(armedReset, std::nullopt);
    const bool escalated = std::exchange(resetEscalates, false);
    const uint8_t action = armed.value_or(escalated ? I3cTargetResetDefByte_ResetWholeTarget
                                                    : I3cTargetResetDefByte_ResetPeripheral);
    if (action == I3cTargetResetDefByte_ResetPeripheral) {
        resetPeripheral();
        resetEscalates = !armed.has_value();
    } else if (action == I3cTargetResetDefByte_ResetWholeTarget) {
        resetWholeTarget();
    }
}

void I3cTarget::resetWholeTarget() {
    resetPeripheral();
    registers = initialRegisters;
    pointer = 0;
    armedReset.reset();
    resetEscalates = false;
}

void I3cTarget::resetPeripheral() {
    address = 0;
    writeLimit = kind.maxWriteLength;
    readLimit = kind.maxReadLength;
    ibiPayloadLimit = kind.maxIbiPayloadSize;
    events = i3c_event::all;
    pendingInterrupt.reset();
}

void I3cTarget::write(const Bytes& bytes) {
    if (bytes.size() < pointerSize) {
        return;
    }
    const auto data = bytes.begin() + static_cast<Bytes::difference_type>(pointerSize);
    size_t selected = 0;
    std::for_each(bytes.begin(), data, [&](uint8_t byte) { selected = selected << 8U | byte; });
    pointer = selected % registers.size();
    writeFromPointer(data, bytes.end());
}

Bytes I3cTarget::read(size_t length) {
    Bytes bytes(length);
    for (uint8_t& byte : bytes) {
        byte = readRegister(pointer);
        pointer = (pointer + 1) % registers.size();
    }
    return bytes;
}

void I3cTarget::writeHdrDdr(uint8_t commandCode, const Bytes& bytes) {
    selectByHdrCommand(commandCode);
    writeFromPointer(bytes.begin(), bytes.end());
}

Bytes I3cTarget::readHdrDdr(uint8_t commandCode, size_t length) {
    selectByHdrCommand(commandCode);
    return read(length);
}

void I3cTarget::selectByHdrCommand(uint8_t commandCode) {
    constexpr size_t commandCodes = 0x80;
    pointer = commandCode % commandCodes * (registers.size() / commandCodes);
}

void I3cTarget::writeFromPointer(Bytes::const_iterator first, Bytes::const_iterator last) {
    std::for_each(first, last, [&](uint8_t byte) {
        writeRegister(pointer, byte);
        pointer = (pointer + 1) % registers.size();
    });
}

} // namespace virtual_adapter
