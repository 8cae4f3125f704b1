// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// A C callback in C++ finds the whole record by the header of the C interface alone.
#include <veltrasdk/veltrasdk.h>

void readEvent(const Notification* notification);

void readEvent(const Notification* notification) {
    static_cast<void>(notification->gpio());
}
