// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"
#include "model/Settable.hpp"

#include <veltrasdk/i3c.h>

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace virtual_adapter {

/// What makes one kind of target: it never changes.
struct I3cCharacteristics {
    /// 0 for a target that has none.
    uint8_t staticAddress;
    /// Most significant byte first.
    std::array<uint8_t, 6> pid;
    uint8_t bcr;
    uint8_t dcr;
    /// The largest limits that the target takes, and those it starts with.
    uint16_t maxWriteLength;
    uint16_t maxReadLength;
    uint8_t maxIbiPayloadSize;
    /// The HDR modes that it supports, as GETCAPS reports them.
    uint8_t hdrModes;
    /// The fastest push-pull rate at which it answers to private transfers.
    I3cPushPullRate fastestRate;
};

/// The events of ENEC and DISEC (MIPI I3C Basic v1.1.1, section 5.1.9.3.1).
namespace i3c_event {
constexpr uint8_t interrupt = 0x01;
constexpr uint8_t controllerRole = 0x02;
constexpr uint8_t hotJoin = 0x08;
constexpr uint8_t all = interrupt | controllerRole | hotJoin;
} // namespace i3c_event

/// The enumeration of the codes ends with those that the library's operations send.
constexpr CCC getMaxDataSpeed = static_cast<CCC>(0x94);

/// A target of the I3C bus with registers behind a register pointer. What a target does not
/// acknowledge, it answers with nothing.
class I3cTarget : public Settable {
public:
    /// The defining byte of a Common Command Code, when there is one.
    using DefiningByte = std::optional<uint8_t>;

    /// The registers start with @p contents. A write starts with the register pointer, of
    /// @p pointerBytes bytes, most significant first.
    I3cTarget(const I3cCharacteristics& ofThisKind, Bytes contents, size_t pointerBytes = 1);

    [[nodiscard]] const I3cCharacteristics& characteristics() const { return kind; }
    [[nodiscard]] bool hasIbiPayload() const;
    [[nodiscard]] bool supportsHdrDdr() const;

    [[nodiscard]] bool isPowered() const { return supplied; }
    /// The target starts with power. Whenever power comes or goes, nothing keeps its state.
    virtual void setSupply(bool isSupplied);

    /// Whether the target asks to join the running bus.
    [[nodiscard]] virtual bool requestsHotJoin() const { return joins; }
    /// Puts the target on the running bus: it gets power, and asks to join.
    void join();

    /// 0 while the target has none.
    [[nodiscard]] uint8_t dynamicAddress() const { return address; }
    virtual void setDynamicAddress(uint8_t assigned);

    [[nodiscard]] uint16_t maxWriteLength() const { return writeLimit; }
    [[nodiscard]] uint16_t maxReadLength() const { return readLimit; }
    /// 0 sets no limit.
    [[nodiscard]] uint8_t maxIbiPayloadSize() const { return ibiPayloadLimit; }
    void setMaxWriteLength(uint16_t length);
    void setMaxReadLength(uint16_t length);
    /// Does nothing to a target whose interrupts carry no payload.
    void setMaxIbiPayloadSize(uint8_t size);

    void enableEvents(uint8_t named);
    void disableEvents(uint8_t named);

    /// Whether an interrupt is pending that the target may raise now.
    [[nodiscard]] bool requestsInterrupt() const;
    /// Raises the pending interrupt and returns its payload.
    Bytes raiseInterrupt();

    /// The reply to GETSTATUS.
    std::optional<Bytes> status(DefiningByte definingByte);
    /// The reply to GETCAPS.
    [[nodiscard]] std::optional<Bytes> capabilities(DefiningByte definingByte) const;

    /// The reply to GETMXDS.
    [[nodiscard]] std::optional<Bytes> maxDataSpeed(DefiningByte definingByte) const;

    /// RSTACT as a write: prepares what the next target reset pattern does. Returns whether the
    /// target acknowledges @p definingByte.
    bool armReset(uint8_t definingByte);
    /// RSTACT as a read: the action in force, or the time that a reset takes, in milliseconds.
    std::optional<Bytes> resetAction(uint8_t definingByte);
    void receiveTargetResetPattern();
    /// A START that is not a repeated one.
    void receiveStart() { armedReset.reset(); }
    /// The state in which a target is after power has come.
    virtual void resetWholeTarget();

    /// The limits are the business of who calls.
    void write(const Bytes& bytes);
    Bytes read(size_t length);
    /// The seven low bits of the command code, of 128, select the registers: register 0 and every
    /// 128th part of the register file.
    void writeHdrDdr(uint8_t commandCode, const Bytes& bytes);
    Bytes readHdrDdr(uint8_t commandCode, size_t length);

    /// Makes an interrupt pending, in place of one that already is.
    void requestInterrupt(Bytes payload) { pendingInterrupt = std::move(payload); }

protected:
    [[nodiscard]] uint8_t storedRegister(size_t index) const { return registers[index]; }
    void storeRegister(size_t index, uint8_t value) { registers[index] = value; }
    [[nodiscard]] uint8_t enabledEvents() const { return events; }

private:
    [[nodiscard]] virtual uint8_t readRegister(size_t index) const { return registers[index]; }
    virtual void writeRegister(size_t index, uint8_t value) { registers[index] = value; }
    /// The formats of GETSTATUS and GETCAPS that not every target has.
    [[nodiscard]] virtual std::optional<Bytes> specialStatus(uint8_t /*definingByte*/) const {
        return {};
    }
    [[nodiscard]] virtual std::optional<Bytes> specialCapabilities(uint8_t /*definingByte*/) const {
        return {};
    }

    [[nodiscard]] bool hasLimitedDataSpeed() const;
    [[nodiscard]] bool hasAdvancedCapabilities() const;
    void resetPeripheral();
    void selectByHdrCommand(uint8_t commandCode);
    void writeFromPointer(Bytes::const_iterator first, Bytes::const_iterator last);

    const I3cCharacteristics kind;
    const Bytes initialRegisters;
    const size_t pointerSize;

    bool supplied = true;
    bool joins = false;
    Bytes registers;
    size_t pointer = 0;
    uint8_t address = 0;
    uint16_t writeLimit = 0;
    uint16_t readLimit = 0;
    uint8_t ibiPayloadLimit = 0;
    uint8_t events = 0;
    std::optional<Bytes> pendingInterrupt;
    std::optional<uint8_t> armedReset;
    /// Whether the next unprepared target reset pattern resets the whole target.
    bool resetEscalates = false;
};

} // namespace virtual_adapter
