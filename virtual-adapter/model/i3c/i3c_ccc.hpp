// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Answer.hpp"
#include "model/i3c/I3cCccCommand.hpp"
#include "model/i3c/I3cController.hpp"

namespace virtual_adapter {

/// The Common Command Codes.
class I3cCcc {
public:
    explicit I3cCcc(I3cController& ofTheBus) : controller(ofTheBus) {}

    Answer transfer(ByteReader& request);

private:
    Status carryOut(const I3cCccCommand& command, Bytes& received);
    Status broadcast(const I3cCccCommand& command);
    Status write(const I3cCccCommand& command);
    Status read(const I3cCccCommand& command, Bytes& received);

    I3cController& controller;
};

} // namespace virtual_adapter
