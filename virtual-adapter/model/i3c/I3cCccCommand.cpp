// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/I3cCccCommand.hpp"

#include "model/i3c/I3cTarget.hpp"
#include "model/i3c/i3c_records.hpp"

#include <algorithm>
#include <array>

namespace virtual_adapter {

namespace {

constexpr unsigned directionBit = 0x01;
constexpr unsigned modeAndOptionBits = 0x0E;
constexpr unsigned typeShift = 4;

using Kind = I3cCccCommand::Kind;
enum class DefiningByte { None, Optional, Required };

/// What a code is sent with.
struct Format {
    CCC code;
    Kind kind;
    DefiningByte definingByte;
    size_t minOperands;
    size_t maxOperands;
};

constexpr std::array<Format, 24> formats{{
    {CCC_ENECBroadcast, Kind::Broadcast, DefiningByte::Optional, 1, 1},
    {CCC_DISECBroadcast, Kind::Broadcast, DefiningByte::Optional, 1, 1},
    {CCC_RSTDAA, Kind::Broadcast, DefiningByte::Optional, 0, 0},
    {CCC_ENTDAA, Kind::Broadcast, DefiningByte::Optional, 0, 0},
    {CCC_SETMWLBroadcast, Kind::Broadcast, DefiningByte::Optional, 2, 2},
    {CCC_SETMRLBroadcast, Kind::Broadcast, DefiningByte::Optional, 2, 3},
    {CCC_SETAASA, Kind::Broadcast, DefiningByte::Optional, 0, 255},
    {CCC_RSTACTBroadcast, Kind::Broadcast, DefiningByte::Optional, 1, 1},
    {CCC_ENECDirect, Kind::Write, DefiningByte::None, 1, 1},
    {CCC_DISECDirect, Kind::Write, DefiningByte::None, 1, 1},
    {CCC_SETDASA, Kind::Write, DefiningByte::None, 1, 1},
    {CCC_SETNEWDA, Kind::Write, DefiningByte::None, 1, 1},
    {CCC_SETMWLDirect, Kind::Write, DefiningByte::None, 2, 2},
    {CCC_SETMRLDirect, Kind::Write, DefiningByte::None, 2, 3},
    {CCC_RSTACTDirect, Kind::Write, DefiningByte::Required, 0, 0},
    {CCC_GETMWL, Kind::Read, DefiningByte::None, 0, 0},
    {CCC_GETMRL, Kind::Read, DefiningByte::None, 0, 0},
    {CCC_GETPID, Kind::Read, DefiningByte::None, 0, 0},
    {CCC_GETBCR, Kind::Read, DefiningByte::None, 0, 0},
    {CCC_GETDCR, Kind::Read, DefiningByte::None, 0, 0},
    {CCC_GETSTATUS, Kind::Read, DefiningByte::Optional, 0, 0},
    {getMaxDataSpeed, Kind::Read, DefiningByte::Optional, 0, 0},
    {CCC_GETCAPS, Kind::Read, DefiningByte::Optional, 0, 0},
    {CCC_RSTACTDirect, Kind::Read, DefiningByte::Required, 0, 0},
}};

constexpr unsigned firstDirectCode = 0x80;

/// The code's format of that kind, or null.
const Format* formatOf(CCC code, Kind kind) {
    const auto* const found =
        std::find_if(formats.begin(), formats.end(), [=](const Format& candidate) {
            return candidate.code == code && candidate.kind == kind;
        });
    return found == formats.end() ? nullptr : found;
}

bool namesEvents(CCC code) {
    return code == CCC_ENECBroadcast || code == CCC_DISECBroadcast || code == CCC_ENECDirect ||
           code == CCC_DISECDirect;
}

/// An address that is data lies above a zero bit.
Status checkAddressByte(uint8_t byte, bool besideLegacy) {
    if (byte % 2 != 0) {
        return Status::InvalidParameter;
    }
    return isReservedI3cAddress(byte / 2, besideLegacy) ? Status::AddressReserved : Status::Success;
}

} // namespace

I3cCccCommand::I3cCccCommand(ByteReader& request, bool besideLegacy)
    : targetAddress(request.u8()),
      control(request.u8()),
      lengthField(request.u8()),
      commandCode(request.u8()),
      definingByteField(request.u8()),
      data(request.rest()),
      checked(request.consumedExactly() && isWellFormed() ? check(besideLegacy)
                                                          : Status::MalformedRequest) {}

bool I3cCccCommand::isKnown() const {
    return std::any_of(formats.begin(), formats.end(),
                       [this](const Format& format) { return format.code == commandCode; });
}

Kind I3cCccCommand::kind() const {
    if (targetAddress == i3cBroadcastAddress) {
        return Kind::Broadcast;
    }
    return (control & directionBit) != 0 ? Kind::Read : Kind::Write;
}

std::optional<uint8_t> I3cCccCommand::definingByte() const {
    if (control >> typeShift == I3cCccType_WithoutDefiningByte) {
        return {};
    }
    return definingByteField;
}

Bytes I3cCccCommand::operands() const {
    Bytes bytes = data;
    if (kind() == Kind::Broadcast && definingByte().has_value()) {
        bytes.insert(bytes.begin(), definingByteField);
    }
    return bytes;
}

bool I3cCccCommand::isWellFormed() const {
    const Bytes given = operands();
    if (kind() == Kind::Read ? !given.empty() : lengthField != given.size()) {
        return false;
    }
    const Format* const format = formatOf(code(), kind());
    return format == nullptr ||
           (given.size() >= format->minOperands && given.size() <= format->maxOperands);
}

Status I3cCccCommand::check(bool besideLegacy) const {
    const bool broadcast = kind() == Kind::Broadcast;
    const bool broadcastRead = broadcast && (control & directionBit) != 0;
    if (broadcastRead || broadcast != (commandCode < firstDirectCode) ||
        targetAddress > i3cBroadcastAddress || (control & modeAndOptionBits) != 0 ||
        control >> typeShift > I3cCccType_WithDefiningByte) {
        return Status::InvalidParameter;
    }
    if (!isKnown()) {
        return Status::Success;
    }
    const Format* const format = formatOf(code(), kind());
    const DefiningByte refused =
        definingByte().has_value() ? DefiningByte::None : DefiningByte::Required;
    if (format == nullptr || format->definingByte == refused) {
        return Status::InvalidParameter;
    }
    const Bytes given = operands();
    if (code() == CCC_SETDASA || code() == CCC_SETNEWDA) {
        return checkAddressByte(given[0], besideLegacy);
    }
    const bool knownEvents = !namesEvents(code()) || (given[0] & ~i3c_event::all) == 0;
    return knownEvents ? Status::Success : Status::InvalidParameter;
}

} // namespace virtual_adapter
