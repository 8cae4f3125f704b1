// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Answer.hpp"
#include "model/i3c/I3cController.hpp"

namespace virtual_adapter {

/// Private transfers in SDR, HDR-DDR and legacy I2C, and the bus patterns.
class I3cTransfer {
public:
    explicit I3cTransfer(I3cController& ofTheBus) : controller(ofTheBus) {}

    Answer transfer(ByteReader& request);
    Answer busPattern(ByteReader& request);

private:
    struct Transfer;

    Status carryOut(const Transfer& wanted, Bytes& received);
    Status carryOutSdr(const Transfer& wanted, Bytes& received);
    Status carryOutHdrDdr(const Transfer& wanted, Bytes& received);
    Status carryOutLegacy(const Transfer& wanted, Bytes& received);
    /// Writes to the registers of @p target or reads @p readLength bytes from them.
    static void exchange(I3cTarget& target, const Transfer& wanted, size_t readLength,
                         Bytes& received);

    I3cController& controller;
};

} // namespace virtual_adapter
