// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "bytes/ByteWriter.hpp"
#include "model/Status.hpp"
#include "model/i3c/I3cTarget.hpp"

#include <vector>

namespace virtual_adapter {

constexpr uint8_t minI3cAddress = 0x08;
constexpr uint8_t maxI3cAddress = 0x7D;
/// Every target answers to it.
constexpr uint8_t i3cBroadcastAddress = 0x7E;

/// Whether no device may have the address. Beside legacy I2C devices more of them are reserved: the
/// I2C-bus specification keeps those for itself.
bool isReservedI3cAddress(uint8_t address, bool besideLegacy);

I3cTargetInfo readI3cRecord(ByteReader& request);
void writeI3cRecord(ByteWriter& payload, const I3cTargetInfo& record);

bool isLegacy(const I3cTargetInfo& record);

/// The address that the record's device is to have, or 0 when the controller may choose.
uint8_t wantedAddress(const I3cTargetInfo& record);

/// Whether the record is about the target: it names it by the static address or, without one, by
/// the PID.
bool names(const I3cTargetInfo& record, const I3cTarget& target);

/// Whether a bus can be what the records say.
Status checkRecords(const std::vector<I3cTargetInfo>& records, bool besideLegacy);

} // namespace virtual_adapter
