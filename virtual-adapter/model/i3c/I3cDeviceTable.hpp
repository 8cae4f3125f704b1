// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/Status.hpp"
#include "model/i3c/I3cBus.hpp"

#include <vector>

namespace virtual_adapter {

/// What the controller knows of the devices on its bus, and the addresses it gives them.
class I3cDeviceTable {
public:
    explicit I3cDeviceTable(I3cBus& itsBus) : bus(itsBus) {}

    /// Whether legacy devices stand on the bus, or are expected there.
    [[nodiscard]] bool isBesideLegacy() const;

    /// Whether the bus can be what the records of the host say.
    Status check(const std::vector<I3cTargetInfo>& hostRecords);
    /// Assigns the addresses of a bus without any, as the records say.
    Status initialise(const std::vector<I3cTargetInfo>& hostRecords);
    /// Resets every address and forgets every device and record.
    void clear();

    /// SETDASA.
    Status assignFromStatic(uint8_t staticAddress, uint8_t dynamicAddress);
    /// SETAASA, for the listed static addresses or, without a list, for every one.
    Status adoptStatic(const Bytes& staticAddresses);
    /// ENTDAA.
    void assignAll();
    /// SETNEWDA.
    Status change(I3cTarget& target, uint8_t dynamicAddress);
    /// RSTDAA.
    void resetAddresses();

    /// Changes how the controller treats the device at @p address.
    Status configure(uint8_t address, uint8_t configuration);
    [[nodiscard]] bool acceptsInterruptsOf(const I3cTarget& target) const;

    /// One record for each device, in the order in which the controller came to know them.
    [[nodiscard]] std::vector<I3cTargetInfo> records() const;

private:
    struct Entry {
        /// Null for a legacy I2C device.
        const I3cTarget* target;
        /// 0 for an I3C target.
        uint8_t legacyAddress;
        uint8_t configuration;

        [[nodiscard]] uint8_t address() const;
        [[nodiscard]] I3cTargetInfo record() const;
    };

    /// Whether the address that the record wants is another device's, listed or not.
    [[nodiscard]] bool belongsToAnother(const I3cTargetInfo& record);
    [[nodiscard]] Status assignable(uint8_t address, const I3cTarget& target);
    /// Gives the target the address of its record or else the lowest free one.
    void assign(I3cTarget& target);
    void assign(I3cTarget& target, uint8_t dynamicAddress);
    /// The host's record of @p target, or null.
    [[nodiscard]] const I3cTargetInfo* wishFor(const I3cTarget& target) const;
    Entry* entryAt(uint8_t address);

    I3cBus& bus;
    /// The records that the host gave when it initialised the bus.
    std::vector<I3cTargetInfo> wishes;
    std::vector<Entry> entries;
};

} // namespace virtual_adapter
