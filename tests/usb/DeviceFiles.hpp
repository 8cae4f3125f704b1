// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterSettings.hpp"
#include "usbip/FileDescriptor.hpp"

#include <umockdev.h>

#include <string>

namespace test_support {

/// Where the test bed has the device node of the adapter at a port.
std::string nodePath(unsigned port);

/// The adapter as the kernel describes it in /sys, in the test bed's notation.
std::string describe(const virtual_adapter::AdapterSettings& settings, unsigned port);

/// The device node itself. It polls as writable while there is a transfer to reap, as usbfs does.
class DeviceNode {
public:
    DeviceNode(UMockdevTestbed* testbed, unsigned port);

    void showReadiness(bool ready);

private:
    usbip::FileDescriptor fifo;
    bool showsReady = true;
};

} // namespace test_support
