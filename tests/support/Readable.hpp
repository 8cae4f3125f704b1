// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <poll.h>

namespace test_support {

/// Waits until a descriptor is readable. Returns whether it was before the limit; 0 looks only.
inline bool isReadable(int descriptor, int limitMs = 0) {
    pollfd polled{descriptor, POLLIN, 0};
    return poll(&polled, 1, limitMs) == 1 && polled.revents == POLLIN;
}

} // namespace test_support
