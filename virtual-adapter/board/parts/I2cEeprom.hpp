// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "bytes/Bytes.hpp"
#include "model/i2c/I2cTarget.hpp"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace virtual_adapter {

/// A serial EEPROM: register addressing, page writes that wrap inside their page, reads that roll
/// over at the end, and a write cycle during which it does not answer to its address.
class I2cEeprom : public I2cTarget {
public:
    /// The sizes are powers of two. What register addresses of one byte do not reach lies behind
    /// further addresses on the bus, one for every 256 bytes.
    struct Geometry {
        size_t size;
        size_t pageSize;
        unsigned registerAddressBytes;

        [[nodiscard]] unsigned busAddresses() const {
            const size_t reached = size_t{1} << 8U * registerAddressBytes;
            return static_cast<unsigned>(size <= reached ? 1 : size / reached);
        }
    };

    /// 256 bytes in pages of 8, one byte of register address, such as a 24C02.
    static constexpr Geometry geometry24C02{256, 8, 1};
    /// 32 KiB in pages of 64, two bytes of register address, such as a 24C256.
    static constexpr Geometry geometry24C256{32768, 64, 2};

    /// How often the address stays unacknowledged after a write. The model has no clock: each
    /// attempt stands for a part of the write cycle.
    static constexpr unsigned attemptsPerWriteCycle = 3;

    static std::vector<Setting> settings(const Geometry& layout);

    /// The EEPROM holds @p contents, which must fit, from register address 0 on and is erased
    /// behind them.
    I2cEeprom(const Geometry& layout, Bytes contents, bool isWriteProtected = false);

    /// One target for each of the bus addresses of the EEPROM, in ascending order.
    static std::vector<std::unique_ptr<I2cTarget>> atItsAddresses(std::unique_ptr<I2cEeprom> chip);

    bool start(I2cDirection direction) override { return start(direction, 0); }
    bool write(uint8_t byte) override;
    uint8_t read() override;
    void stop() override;
    void cyclePower() override;
    std::string set(const std::string& name, const std::string& value) override;

private:
    class Block;

    /// @p block: which of its bus addresses the EEPROM is addressed at.
    bool start(I2cDirection direction, unsigned block);

    const Geometry geometry;
    Bytes memory;
    bool writeProtected;
    /// The address counter.
    size_t position = 0;
    unsigned attemptsUntilReady = 0;

    unsigned registerAddressBytesSeen = 0;
    size_t registerAddress = 0;
    /// What the running write changes; the memory takes it over with the STOP.
    std::map<size_t, uint8_t> pendingBytes;
};

} // namespace virtual_adapter
