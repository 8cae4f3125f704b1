// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <memory>
#include <mutex>

#include <hidapi.h>

/// A user of hidapi, which has one state for the whole process and whose calls are not safe against
/// each other.
///
/// Every user initialises hidapi and shuts it down, whatever other users there are; once it is
/// shared, the first user initialises it and the last one shuts it down.
class Hidapi {
public:
    Hidapi();
    ~Hidapi();
    Hidapi(const Hidapi&) = delete;
    Hidapi& operator=(const Hidapi&) = delete;

    /// Shares hidapi from now on, unless it has users that do not. Returns whether it is shared.
    static bool share();
    static bool isShared();

    using Lock = std::unique_lock<std::mutex>;
    /// Whoever enumerates, opens or closes holds it; reading and writing need no lock. Never to be
    /// held while another thread's end is awaited: its handler may want it.
    [[nodiscard]] static Lock lock();

    struct FreeEnumeration {
        void operator()(hid_device_info* devices) const { hid_free_enumeration(devices); }
    };
    using Devices = std::unique_ptr<hid_device_info, FreeEnumeration>;
    /// All HID devices of the machine.
    static Devices enumerate(const Lock& held);
};
