// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The C library's functions through which programs use /dev/i2c-N and /dev/spidevB.C; what concerns
// any other file goes on to where it went. What closes, copies, passes on or waits for a descriptor
// needs none of this: it is a socket, and the kernel does that.

#include "preload/device_client.hpp"
#include "preload/following.hpp"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>

namespace {

bool takesMode(int flags) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

/// Opens one of the adapter's devices. False leaves the path to others: there is no such device, or
/// it is no device's.
bool opensDevice(const char* path, int flags, int& descriptor) {
    preload::DeviceName name;
    if (path == nullptr || !preload::isDevicePath(path, name)) {
        return false;
    }
    const int error = errno;
    descriptor = preload::openDevice(name, flags);
    if (descriptor < 0 && errno == ENOENT) {
        errno = error;
        return false;
    }
    return true;
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

// NOLINTBEGIN: the C library's names, and its arguments without a type.

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = takesMode(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    int descriptor = -1;
    return opensDevice(path, flags, descriptor) ? descriptor
                                                : VELTRA_FOLLOWING(open)(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = takesMode(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    int descriptor = -1;
    return opensDevice(path, flags, descriptor) ? descriptor
                                                : VELTRA_FOLLOWING(open64)(path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = takesMode(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    int descriptor = -1;
    return opensDevice(path, flags, descriptor)
               ? descriptor
               : VELTRA_FOLLOWING(openat)(directory, path, flags, mode);
}

int openat64(int directory, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = takesMode(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    int descriptor = -1;
    return opensDevice(path, flags, descriptor)
               ? descriptor
               : VELTRA_FOLLOWING(openat64)(directory, path, flags, mode);
}

// What fortified programs call instead. The C library's headers do not always declare them.
int __open_2(const char* path, int flags);
int __open64_2(const char* path, int flags);
int __openat_2(int directory, const char* path, int flags);
int __openat64_2(int directory, const char* path, int flags);
ssize_t __read_chk(int descriptor, void* data, size_t size, size_t capacity);

int __open_2(const char* path, int flags) {
    int descriptor = -1;
    return opensDevice(path, flags, descriptor) ? descriptor
                                                : VELTRA_FOLLOWING(__open_2)(path, flags);
}

int __open64_2(const char* path, int flags) {
    int descriptor = -1;
    return opensDevice(path, flags, descriptor) ? descriptor
                                                : VELTRA_FOLLOWING(__open64_2)(path, flags);
}

int __openat_2(int directory, const char* path, int flags) {
    int descriptor = -1;
    return opensDevice(path, flags, descriptor)
               ? descriptor
               : VELTRA_FOLLOWING(__openat_2)(directory, path, flags);
}

int __openat64_2(int directory, const char* path, int flags) {
    int descriptor = -1;
    return opensDevice(path, flags, descriptor)
               ? descriptor
               : VELTRA_FOLLOWING(__openat64_2)(directory, path, flags);
}

ssize_t read(int descriptor, void* data, size_t size) {
    return preload::isDevice(descriptor) ? preload::readDevice(descriptor, data, size)
                                         : VELTRA_FOLLOWING(read)(descriptor, data, size);
}

ssize_t __read_chk(int descriptor, void* data, size_t size, size_t capacity) {
    return size <= capacity && preload::isDevice(descriptor)
               ? preload::readDevice(descriptor, data, size)
               : VELTRA_FOLLOWING(__read_chk)(descriptor, data, size, capacity);
}

ssize_t write(int descriptor, const void* data, size_t size) {
    return preload::isDevice(descriptor) ? preload::writeDevice(descriptor, data, size)
                                         : VELTRA_FOLLOWING(write)(descriptor, data, size);
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    // Programs that keep requests in an int fill the upper half with its sign.
    return preload::isDevice(descriptor)
               ? preload::controlDevice(descriptor, static_cast<uint32_t>(request), argument)
               : VELTRA_FOLLOWING(ioctl)(descriptor, request, argument);
}

// NOLINTEND

} // extern "C"
#pragma GCC visibility pop
