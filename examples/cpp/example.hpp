// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What the C++ examples share: connecting, and saying what to do when that fails.
#pragma once

#include <veltrasdk/VeltraSDK.hpp>

#include <iomanip>
#include <iostream>

/// Connects to the first adapter in strict mode, or explains and returns false. The other mode,
/// which an object begins in, takes the next response for the answer, whatever it answers: it is
/// for programs that were written for that.
inline bool connectOrExplain(VeltraSDK& sdk) {
    sdk.setStrict(true);
    if (sdk.connect("")) {
        return true;
    }
    std::cerr << "No adapter found, or it cannot be opened.\n"
                 "  - Is it plugged in? `lsusb` should list it.\n"
                 "  - May you open it? Install the udev rule (see the README), then replug.\n"
                 "  - No hardware at hand? Run this under `veltra-virtual-adapter run -- ...`.\n";
    return false;
}

/// Prints what failed and with which result code; returns whether the result is success.
inline bool succeeded(const char* operation, uint16_t result) {
    if (result != ResultCode_Success) {
        std::cerr << operation << " failed with 0x" << std::hex << std::uppercase
                  << std::setfill('0') << std::setw(4) << result << std::dec << '\n';
    }
    return result == ResultCode_Success;
}
