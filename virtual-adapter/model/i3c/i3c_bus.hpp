// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"
#include "model/Answer.hpp"
#include "model/i3c/I3cController.hpp"

namespace virtual_adapter {

/// The commands that set the I3C bus up.
class I3cBusSetup {
public:
    explicit I3cBusSetup(I3cController& ofTheBus) : controller(ofTheBus) {}

    Answer setVoltage(ByteReader& request);
    Answer controllerInit(ByteReader& request);
    Answer setParameters(ByteReader& request);
    Answer initBus(ByteReader& request);
    Answer resetBus(ByteReader& request);
    Answer getDeviceTable(ByteReader& request);
    Answer configureTarget(ByteReader& request);

private:
    Answer listDevices(ByteReader& request);

    I3cController& controller;
};

} // namespace virtual_adapter
