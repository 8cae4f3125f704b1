// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/i3c_records.hpp"

#include <algorithm>
#include <array>
#include <iterator>

namespace virtual_adapter {

namespace {

/// The last address that the I2C-bus specification leaves to devices.
constexpr uint8_t maxI2cAddress = 0x77;

bool hasPid(const I3cTargetInfo& record, const std::array<uint8_t, 6>& pid) {
    return std::equal(pid.begin(), pid.end(), std::begin(record.pid));
}

/// Whether a record on its own asks for something that no bus can give.
Status checkRecord(const I3cTargetInfo& record, bool besideLegacy) {
    if (record.configuration > I3cTargetConfiguration_LegacyI2c ||
        (record.staticAddress == 0 && (isLegacy(record) || hasPid(record, {})))) {
        return Status::InvalidParameter;
    }
    const auto reserved = [=](uint8_t address) {
        return address != 0 && isReservedI3cAddress(address, besideLegacy);
    };
    return reserved(record.staticAddress) || reserved(wantedAddress(record))
               ? Status::AddressReserved
               : Status::Success;
}

/// Whether two records ask for the same address or name the same target.
Status checkPair(const I3cTargetInfo& left, const I3cTargetInfo& right) {
    const auto claims = [&](uint8_t address) {
        return address != 0 && (address == left.staticAddress || address == wantedAddress(left));
    };
    if (claims(right.staticAddress) || claims(wantedAddress(right))) {
        return Status::AddressInUse;
    }
    const bool samePid =
        left.staticAddress == 0 && right.staticAddress == 0 &&
        std::equal(std::begin(left.pid), std::end(left.pid), std::begin(right.pid));
    return samePid ? Status::InvalidParameter : Status::Success;
}

} // namespace

bool isReservedI3cAddress(uint8_t address, bool besideLegacy) {
    // Those inside the range differ from the broadcast address in one bit only (MIPI I3C Basic
    // v1.1.1, section 5.1.2.2.5).
    return address < minI3cAddress || address > (besideLegacy ? maxI2cAddress : maxI3cAddress) ||
           address == 0x3E || address == 0x5E || address == 0x6E || address == 0x76 ||
           address == 0x7A || address == 0x7C;
}

I3cTargetInfo readI3cRecord(ByteReader& request) {
    I3cTargetInfo record{};
    record.staticAddress = request.u8();
    record.dynamicAddress = request.u8();
    for (uint8_t& byte : record.pid) {
        byte = request.u8();
    }
    record.bcr = request.u8();
    record.dcr = request.u8();
    record.maxWriteLength = request.u16();
    record.maxReadLength = request.u16();
    record.maxIbiPayloadSize = request.u8();
    record.configuration = request.u8();
    return record;
}

void writeI3cRecord(ByteWriter& payload, const I3cTargetInfo& record) {
    payload.u8(record.staticAddress)
        .u8(record.dynamicAddress)
        .range(std::begin(record.pid), std::end(record.pid))
        .u8(record.bcr)
        .u8(record.dcr)
        .u16(record.maxWriteLength)
        .u16(record.maxReadLength)
        .u8(record.maxIbiPayloadSize)
        .u8(record.configuration);
}

bool isLegacy(const I3cTargetInfo& record) {
    return record.configuration == I3cTargetConfiguration_LegacyI2c;
}

uint8_t wantedAddress(const I3cTargetInfo& record) {
    return isLegacy(record) ? record.staticAddress : record.dynamicAddress;
}

bool names(const I3cTargetInfo& record, const I3cTarget& target) {
    const I3cCharacteristics& kind = target.characteristics();
    if (isLegacy(record)) {
        return false;
    }
    return record.staticAddress != 0 ? record.staticAddress == kind.staticAddress
                                     : hasPid(record, kind.pid);
}

Status checkRecords(const std::vector<I3cTargetInfo>& records, bool besideLegacy) {
    for (auto record = records.begin(); record != records.end(); ++record) {
        Status status = checkRecord(*record, besideLegacy);
        for (auto earlier = records.begin(); earlier != record; ++earlier) {
            status = status == Status::Success ? checkPair(*earlier, *record) : status;
        }
        if (status != Status::Success) {
            return status;
        }
    }
    return Status::Success;
}

} // namespace virtual_adapter
