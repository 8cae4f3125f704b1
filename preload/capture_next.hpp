// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

// The project hides its symbols by default; a hidden one would leave the real hidapi in charge.
#pragma GCC visibility push(default)
#include <hidapi.h>
#pragma GCC visibility pop

namespace preload {

/// hidapi's functions as they are behind this library: the real ones, or those of the virtual
/// adapter's client. Null where there is no hidapi at all.
struct NextHidapi {
    decltype(&hid_init) init;
    decltype(&hid_exit) exit;
    decltype(&hid_enumerate) enumerate;
    decltype(&hid_free_enumeration) freeEnumeration;
    decltype(&hid_open_path) openPath;
    decltype(&hid_write) write;
    decltype(&hid_read_timeout) readTimeout;
    decltype(&hid_close) close;
};

/// Looks for them when it is called first.
const NextHidapi& nextHidapi();

} // namespace preload
