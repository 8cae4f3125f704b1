// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "devices/messages.hpp"

#include <cstddef>
#include <cstdint>

#include <sys/types.h>

// What becomes of system calls on the adapter's devices. Nothing here is remembered: a descriptor
// is one of these devices by the name of the socket that it is, however the program has come by it.
// Results are those of the system calls, errno included.
namespace preload {

/// A name below /dev, such as "i2c-0", with its terminating null.
struct DeviceName {
    char text[devices::maxName + 1];
};

/// Whether a path has the form of an I2C bus or an SPI device of Linux.
bool isDevicePath(const char* path, DeviceName& name);

/// Whether the broker has a device of that name.
bool isServed(const DeviceName& name);

/// Returns a descriptor; -1 with ENOENT where the broker has no such device, or there is none.
int openDevice(const DeviceName& name, int flags);

/// Whether a descriptor is one of these devices. Keeps errno.
bool isDevice(int descriptor, DeviceName& name);
bool isDevice(int descriptor);

ssize_t readDevice(int descriptor, void* data, size_t size);
ssize_t writeDevice(int descriptor, const void* data, size_t size);
int controlDevice(int descriptor, uint32_t request, void* argument);

} // namespace preload
