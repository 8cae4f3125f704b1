// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/BusFaults.hpp"

namespace virtual_adapter {

namespace {

void disturb(Board& board, I2cBus::Disturbance disturbance) {
    for (I2cBus& bus : board.i2c) {
        bus.disturb(disturbance);
    }
    board.i3c.disturb(disturbance);
}

/// Closes the write protection of every part that has one.
void protect(const I2cBus& bus) {
    for (uint8_t address = 0; address < 0x80; ++address) {
        if (I2cTarget* const target = bus.targetAt(address)) {
            target->set("write_protected", "true");
        }
    }
}

} // namespace

BusFaults::BusFaults(Board& ofTheAdapter, FaultSet striking) : board(ofTheAdapter) {
    if (striking.has(FaultKind::AddressNack)) {
        disturb(board, I2cBus::Disturbance::NoAddress);
    } else if (striking.has(FaultKind::DataNack)) {
        disturb(board, I2cBus::Disturbance::NoByte);
    }
    if (striking.has(FaultKind::StuckBus)) {
        for (I2cBus& bus : board.i2c) {
            bus.holdLow();
        }
    }
    if (striking.has(FaultKind::WriteProtected)) {
        for (const I2cBus& bus : board.i2c) {
            protect(bus);
        }
        protect(board.i3c.legacy());
    }
}

BusFaults::~BusFaults() {
    disturb(board, I2cBus::Disturbance::None);
}

} // namespace virtual_adapter
