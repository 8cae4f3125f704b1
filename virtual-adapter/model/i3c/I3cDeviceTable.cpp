// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/I3cDeviceTable.hpp"

#include "model/i3c/i3c_records.hpp"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace virtual_adapter {

uint8_t I3cDeviceTable::Entry::address() const {
    return target == nullptr ? legacyAddress : target->dynamicAddress();
}

I3cTargetInfo I3cDeviceTable::Entry::record() const {
    I3cTargetInfo record{};
    record.configuration = configuration;
    record.staticAddress = legacyAddress;
    if (target != nullptr) {
        const I3cCharacteristics& kind = target->characteristics();
        record.staticAddress = kind.staticAddress;
        record.dynamicAddress = target->dynamicAddress();
        std::copy(kind.pid.begin(), kind.pid.end(), std::begin(record.pid));
        record.bcr = kind.bcr;
        record.dcr = kind.dcr;
        record.maxWriteLength = target->maxWriteLength();
        record.maxReadLength = target->maxReadLength();
        record.maxIbiPayloadSize = target->maxIbiPayloadSize();
    }
    return record;
}

bool I3cDeviceTable::isBesideLegacy() const {
    return bus.hasLegacyDevices() || std::any_of(wishes.begin(), wishes.end(), isLegacy);
}

Status I3cDeviceTable::check(const std::vector<I3cTargetInfo>& hostRecords) {
    const bool besideLegacy =
        bus.hasLegacyDevices() || std::any_of(hostRecords.begin(), hostRecords.end(), isLegacy);
    const Status status = checkRecords(hostRecords, besideLegacy);
    if (status != Status::Success) {
        return status;
    }
    const bool taken =
        std::any_of(hostRecords.begin(), hostRecords.end(),
                    [&](const I3cTargetInfo& record) { return belongsToAnother(record); });
    return taken ? Status::AddressInUse : Status::Success;
}

Status I3cDeviceTable::initialise(const std::vector<I3cTargetInfo>& hostRecords) {
    Status status = Status::Success;
    wishes = hostRecords;
    bool assigningAll = wishes.empty();
    for (const I3cTargetInfo& wish : wishes) {
        if (isLegacy(wish)) {
            entries.push_back({nullptr, wish.staticAddress, wish.configuration});
        } else if (wish.staticAddress == 0) {
            assigningAll = true;
        } else if (I3cTarget* target = bus.unassigned(wish.staticAddress)) {
            assign(*target);
        } else {
            status = Status::NotAcknowledged;
        }
    }
    if (assigningAll) {
        assignAll();
    }
    return status;
}

void I3cDeviceTable::clear() {
    resetAddresses();
    wishes.clear();
    entries.clear();
}

Status I3cDeviceTable::assignFromStatic(uint8_t staticAddress, uint8_t dynamicAddress) {
    I3cTarget* target = bus.unassigned(staticAddress);
    if (target == nullptr) {
        return Status::NotAcknowledged;
    }
    const Status status = assignable(dynamicAddress, *target);
    if (status == Status::Success) {
        assign(*target, dynamicAddress);
    }
    return status;
}

Status I3cDeviceTable::adoptStatic(const Bytes& staticAddresses) {
    if (staticAddresses.empty()) {
        for (const I3cTarget* target : bus.powered()) {
            const uint8_t address = target->characteristics().staticAddress;
            assignFromStatic(address, address);
        }
        return Status::Success;
    }
    Status status = Status::Success;
    for (const uint8_t address : staticAddresses) {
        const Status assigned = assignFromStatic(address, address);
        status = status == Status::Success ? assigned : status;
    }
    return status;
}

void I3cDeviceTable::assignAll() {
    std::vector<I3cTarget*> contenders = bus.powered();
    const auto arbitrationOrder = [](const I3cTarget* left, const I3cTarget* right) {
        const auto key = [](const I3cCharacteristics& kind) {
            return std::tie(kind.pid, kind.bcr, kind.dcr);
        };
        return key(left->characteristics()) < key(right->characteristics());
    };
    std::sort(contenders.begin(), contenders.end(), arbitrationOrder);
    for (I3cTarget* target : contenders) {
        if (target->dynamicAddress() == 0) {
            assign(*target);
        }
    }
}

Status I3cDeviceTable::change(I3cTarget& target, uint8_t dynamicAddress) {
    const Status status = assignable(dynamicAddress, target);
    if (status == Status::Success) {
        target.setDynamicAddress(dynamicAddress);
    }
    return status;
}

void I3cDeviceTable::resetAddresses() {
    for (I3cTarget* target : bus.powered()) {
        target->setDynamicAddress(0);
    }
}

Status I3cDeviceTable::configure(uint8_t address, uint8_t configuration) {
    Entry* entry = entryAt(address);
    const bool wantsLegacy = configuration == I3cTargetConfiguration_LegacyI2c;
    if (entry == nullptr || (entry->target == nullptr) != wantsLegacy) {
        return Status::InvalidParameter;
    }
    entry->configuration = configuration;
    return Status::Success;
}

bool I3cDeviceTable::acceptsInterruptsOf(const I3cTarget& target) const {
    return std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
        return entry.target == &target && entry.configuration == I3cTargetConfiguration_AcceptIbi;
    });
}

std::vector<I3cTargetInfo> I3cDeviceTable::records() const {
    std::vector<I3cTargetInfo> listed;
    for (const Entry& entry : entries) {
        if (entry.address() != 0) {
            listed.push_back(entry.record());
        }
    }
    return listed;
}

bool I3cDeviceTable::belongsToAnother(const I3cTargetInfo& record) {
    const uint8_t address = record.dynamicAddress;
    if (isLegacy(record) || address == 0) {
        return false;
    }
    const std::vector<I3cTarget*> present = bus.powered();
    return bus.isLegacy(address) ||
           std::any_of(present.begin(), present.end(), [&](const I3cTarget* target) {
               return target->characteristics().staticAddress == address && !names(record, *target);
           });
}

Status I3cDeviceTable::assignable(uint8_t address, const I3cTarget& target) {
    if (isReservedI3cAddress(address, isBesideLegacy())) {
        return Status::AddressReserved;
    }
    const std::vector<I3cTarget*> present = bus.powered();
    const bool answers = std::any_of(present.begin(), present.end(), [&](const I3cTarget* other) {
        return other != &target && (other->dynamicAddress() == address ||
                                    other->characteristics().staticAddress == address);
    });
    const bool keptFree = std::any_of(wishes.begin(), wishes.end(), [&](const I3cTargetInfo& wish) {
        const bool fulfilled =
            std::any_of(present.begin(), present.end(), [&](const I3cTarget* other) {
                return names(wish, *other) && (other == &target || other->dynamicAddress() != 0);
            });
        return wantedAddress(wish) == address && !fulfilled;
    });
    return answers || keptFree || bus.isLegacy(address) ? Status::AddressInUse : Status::Success;
}

void I3cDeviceTable::assign(I3cTarget& target) {
    const I3cTargetInfo* wish = wishFor(target);
    uint8_t address = wish == nullptr ? uint8_t{0} : wish->dynamicAddress;
    if (assignable(address, target) != Status::Success) {
        address = minI3cAddress;
        while (address <= maxI3cAddress && assignable(address, target) != Status::Success) {
            ++address;
        }
    }
    // The records may keep every address for targets that are not there.
    if (address <= maxI3cAddress) {
        assign(target, address);
    }
}

void I3cDeviceTable::assign(I3cTarget& target, uint8_t dynamicAddress) {
    const I3cTargetInfo* wish = wishFor(target);
    const auto known = std::remove_if(entries.begin(), entries.end(),
                                      [&](const Entry& entry) { return entry.target == &target; });
    entries.erase(known, entries.end());
    entries.push_back(
        {&target, 0,
         wish == nullptr ? uint8_t{I3cTargetConfiguration_AcceptIbi} : wish->configuration});

    target.setDynamicAddress(dynamicAddress);
    if (wish == nullptr) {
        return;
    }
    if (wish->maxWriteLength != 0) {
        target.setMaxWriteLength(wish->maxWriteLength);
    }
    if (wish->maxReadLength != 0) {
        target.setMaxReadLength(wish->maxReadLength);
    }
    if (wish->maxIbiPayloadSize != 0) {
        target.setMaxIbiPayloadSize(wish->maxIbiPayloadSize);
    }
}

const I3cTargetInfo* I3cDeviceTable::wishFor(const I3cTarget& target) const {
    const auto wish = std::find_if(wishes.begin(), wishes.end(), [&](const I3cTargetInfo& record) {
        return names(record, target);
    });
    return wish == wishes.end() ? nullptr : &*wish;
}

I3cDeviceTable::Entry* I3cDeviceTable::entryAt(uint8_t address) {
    const auto entry = std::find_if(entries.begin(), entries.end(), [&](const Entry& candidate) {
        return address != 0 && candidate.address() == address;
    });
    return entry == entries.end() ? nullptr : &*entry;
}

} // namespace virtual_adapter
