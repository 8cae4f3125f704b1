// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "usb/UsbNode.hpp"

#include <umockdev.h>

#include <atomic>
#include <list>
#include <map>
#include <string>

namespace test_support {

/// A USB bus of this process's own, on which the real hidapi and libusb find virtual adapters. No
/// kernel and no rights take part. One exists at a time, and outlives everything that uses hidapi.
class UsbTestBed {
public:
    UsbTestBed();
    ~UsbTestBed();
    UsbTestBed(const UsbTestBed&) = delete;
    UsbTestBed& operator=(const UsbTestBed&) = delete;

    /// Plugs an adapter into the next port; the first one is 1.
    UsbNode& plugIn(const virtual_adapter::AdapterSettings& settings = {});

    /// Plugs an adapter into the port of one that was unplugged, which is destroyed.
    UsbNode& replug(UsbNode& unplugged, const virtual_adapter::AdapterSettings& settings = {});

    /// How many of the program's calls of hid_read_timeout have failed.
    [[nodiscard]] size_t failedReads() const { return failures; }

    /// Called when a device has been opened, and for every call of hid_read_timeout; one at a time.
    void opened(const void* device, const std::string& path);
    void readReturned(const void* device, int result);

private:
    UMockdevTestbed* testbed;
    std::list<UsbNode> nodes;
    /// What each device was last opened with.
    std::map<const void*, std::string> paths;
    unsigned lastPort = 0;
    std::atomic<size_t> failures{0};
};

} // namespace test_support
