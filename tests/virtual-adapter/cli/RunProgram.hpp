// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Process.hpp"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using Arguments = std::vector<std::string>;

inline const std::string virtualAdapter = VIRTUAL_ADAPTER;
inline const std::string preloadLibrary = PRELOAD_LIBRARY;
inline const std::string hidProbe = HID_PROBE;
inline const char* const sanitizerRuntime = SANITIZER_RUNTIME;

inline Arguments operator+(Arguments left, const Arguments& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline ProcessResult run(const Arguments& options, const Arguments& program) {
    return runProcess(Arguments{virtualAdapter, "run"} + options + Arguments{"--"} + program);
}

/// What the probe prints of the calls it plays.
inline std::string play(const Arguments& options, const Arguments& calls) {
    const ProcessResult result = run(options, Arguments{hidProbe} + calls);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    return result.output;
}

/// The line that the probe prints of a listed adapter.
inline std::string listed(unsigned productId, const std::string& strings) {
    std::array<char, 32> identifiers{};
    (void)std::snprintf(identifiers.data(), identifiers.size(), "%04x:%04x",
                        VELTRASDK_USB_VENDOR_ID, productId);
    return std::string("list: 1-1:1.0 ") + identifiers.data() + " 100 " + strings +
           " interface 0 bus 1\n";
}

/// A preload list, behind what a sanitizer needs.
inline std::string preloadList(const std::string& libraries) {
    const std::string runtime = sanitizerRuntime;
    return runtime.empty() ? libraries : runtime + ":" + libraries;
}
