// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I2cEeprom.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

/// The EEPROM at one of several bus addresses.
class I2cEeprom::Block : public I2cTarget {
public:
    Block(std::shared_ptr<I2cEeprom> itsChip, unsigned index)
        : chip(std::move(itsChip)), block(index) {}

    bool start(I2cDirection direction) override { return chip->start(direction, block); }
    bool write(uint8_t byte) override { return chip->write(byte); }
    uint8_t read() override { return chip->read(); }
    void stop() override { chip->stop(); }
    void cyclePower() override { chip->cyclePower(); }
    std::string set(const std::string& name, const std::string& value) override {
        return chip->set(name, value);
    }

private:
    const std::shared_ptr<I2cEeprom> chip;
    const unsigned block;
};

std::vector<Setting> I2cEeprom::settings(const Geometry& layout) {
    return {
        Setting::bytes("contents", 0, layout.size,
                       "hex:", "what it holds from address 0 on; it is erased (0xFF) behind"),
        Setting::flag("write_protected", "false",
                      "whether bytes that are written are not acknowledged and not stored")
            .changing(),
    };
}

I2cEeprom::I2cEeprom(const Geometry& layout, Bytes contents, bool isWriteProtected)
    : geometry(layout), memory(std::move(contents)), writeProtected(isWriteProtected) {
    memory.resize(geometry.size, 0xFF);
}

std::vector<std::unique_ptr<I2cTarget>> I2cEeprom::atItsAddresses(std::unique_ptr<I2cEeprom> chip) {
    const unsigned addresses = chip->geometry.busAddresses();
    const std::shared_ptr<I2cEeprom> shared = std::move(chip);
    std::vector<std::unique_ptr<I2cTarget>> targets;
    for (unsigned block = 0; block < addresses; ++block) {
        targets.push_back(std::make_unique<Block>(shared, block));
    }
    return targets;
}

bool I2cEeprom::start(I2cDirection direction, unsigned block) {
    // A START in place of the STOP gives the running write up.
    pendingBytes.clear();
    if (attemptsUntilReady > 0) {
        --attemptsUntilReady;
        return false;
    }
    if (direction == I2cDirection::Write) {
        registerAddressBytesSeen = 0;
        registerAddress = block;
    }
    return true;
}

bool I2cEeprom::write(uint8_t byte) {
    if (registerAddressBytesSeen < geometry.registerAddressBytes) {
        registerAddress = registerAddress << 8U | byte;
        if (++registerAddressBytesSeen == geometry.registerAddressBytes) {
            position = registerAddress % geometry.size;
        }
        return true;
    }
    if (writeProtected) {
        return false;
    }
    pendingBytes[position] = byte;
    const size_t page = position - position % geometry.pageSize;
    position = page + (position + 1) % geometry.pageSize;
    return true;
}

uint8_t I2cEeprom::read() {
    const uint8_t byte = memory[position];
    position = (position + 1) % geometry.size;
    return byte;
}

void I2cEeprom::stop() {
    if (pendingBytes.empty()) {
        return;
    }
    for (const auto& [address, byte] : pendingBytes) {
        memory[address] = byte;
    }
    attemptsUntilReady = attemptsPerWriteCycle;
}

void I2cEeprom::cyclePower() {
    pendingBytes.clear();
    attemptsUntilReady = 0;
    position = 0;
}

std::string I2cEeprom::set(const std::string& name, const std::string& value) {
    return changeSetting(settings(geometry), name, value,
                         [this](const Setting& /*setting*/, const SettingValue& protection) {
                             writeProtected = std::get<bool>(protection);
                         });
}

} // namespace virtual_adapter
