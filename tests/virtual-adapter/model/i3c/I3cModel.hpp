// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "virtual-adapter/AdapterFixture.hpp"

#include <initializer_list>

namespace virtual_adapter {

// The provisioned identifiers of the targets on the virtual I3C bus.
inline const Bytes companionPid{0xFF, 0xFE, 0x00, 0x10, 0x10, 0x00};
inline const Bytes memoryPid{0xFF, 0xFE, 0x00, 0x20, 0x10, 0x00};
inline const Bytes sensorPid{0xFF, 0xFE, 0x00, 0x30, 0x10, 0x00};
inline const Bytes modulePid{0xFF, 0xFE, 0x00, 0x40, 0x10, 0x00};
inline const Bytes noPid{0, 0, 0, 0, 0, 0};

inline Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes bytes;
    for (const Bytes& part : parts) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    return bytes;
}

/// A virtual adapter with the questions that tests ask of its I3C bus.
class I3cFixture : public AdapterFixture {
protected:
    explicit I3cFixture(Board board = factoryBoard()) : AdapterFixture(std::move(board)) {}

    /// Supplies the bus with 3.3 V.
    void supply() { EXPECT_EQ(status({0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C}), 0x0000U); }

    /// Supplies the bus and initialises the controller: 12.5 MHz, 4 MHz, 1 MHz, 2 mA.
    void startController() {
        supply();
        EXPECT_EQ(status({0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0}), 0x0000U);
    }

    /// Starts the controller and lets it find the targets: the companion gets 0x08, the memory
    /// 0x09 and the sensor 0x0A.
    void startBus() {
        startController();
        EXPECT_EQ(initBus({}), 0x0000U);
    }

    /// A record of 16 bytes whose other fields are zero.
    static Bytes record(uint8_t staticAddress, uint8_t dynamicAddress, const Bytes& pid,
                        uint8_t configuration = 0) {
        return joined({{staticAddress, dynamicAddress}, pid, {0, 0, 0, 0, 0, 0, 0, configuration}});
    }

    unsigned initBus(std::initializer_list<Bytes> records) {
        return status(joined(
            {{0x01, 0x00, 0x04, 0x19, static_cast<uint8_t>(records.size())}, joined(records)}));
    }

    /// Initialises the bus with the companion at 0x08 and a record for every other address that
    /// a record can claim, each of a target that is not there.
    void initBusWithoutFreeAddresses() {
        Frame request{0x01, 0x00, 0x04, 0x19, 0x00};
        for (uint8_t address = 0x08; address <= 0x77; ++address) {
            const bool claimable = address != 0x3E && address != 0x48 && address != 0x4F &&
                                   address != 0x50 && address != 0x54 && address != 0x5E &&
                                   address != 0x6E && address != 0x76;
            if (claimable) {
                const Bytes pid =
                    address == 0x08 ? companionPid : Bytes{0xFF, 0xFE, 0x01, 0, 0, address};
                request = joined({request, record(0x00, address, pid)});
                ++request[4];
            }
        }
        EXPECT_EQ(status(request), 0x0000U);
    }

    Frame deviceTable() { return response({0x01, 0x00, 0x06, 0x19}); }

    /// The static and the dynamic address of each record of the device table.
    Bytes addresses() {
        const Frame table = deviceTable();
        Bytes listed;
        for (size_t record = 7; record + 16 <= table.size(); record += 16) {
            listed.push_back(table[record]);
            listed.push_back(table[record + 1]);
        }
        return listed;
    }

    /// The request of an SDR write without options.
    static Frame sdrWriteRequest(uint8_t address, const Bytes& data) {
        return joined(
            {{0x01, 0x00, 0x08, 0x19, address, 0x00, 0, 0, 0, 0, 0, 0,
              static_cast<uint8_t>(data.size() & 0xFFU), static_cast<uint8_t>(data.size() >> 8U)},
             data});
    }
    unsigned sdrWrite(uint8_t address, const Bytes& data) {
        return status(sdrWriteRequest(address, data));
    }

    /// The response to an SDR read behind one byte of sub-address.
    Frame sdrRead(uint8_t address, uint8_t subAddress, uint8_t length) {
        return response(
            {0x01, 0x00, 0x08, 0x19, address, 0x01, 0, 1, subAddress, 0, 0, 0, length, 0x00});
    }

    /// The status of a Common Command Code: the payload from the target address on.
    unsigned ccc(const Bytes& payload) {
        return status(joined({{0x01, 0x00, 0x09, 0x19}, payload}));
    }

    /// The response to one, from the count of its data on.
    Bytes cccData(const Bytes& payload) {
        const Frame answered = response(joined({{0x01, 0x00, 0x09, 0x19}, payload}));
        EXPECT_GE(answered.size(), 10U);
        return answered.size() < 10 ? Bytes{} : Bytes(answered.begin() + 9, answered.end());
    }
};

/// A test on a bus whose targets have been found.
class I3cModel : public I3cFixture {
protected:
    I3cModel() { startBus(); }
};

} // namespace virtual_adapter
