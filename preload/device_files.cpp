// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What programs ask about /dev/i2c-N and /dev/spidevB.C without opening them, and about
// descriptors: character devices that their user may read and write.

#include "preload/device_client.hpp"
#include "preload/following.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

using preload::DeviceName;

constexpr unsigned i2cMajor = 89;
constexpr unsigned spiMajor = 153;
constexpr mode_t mode = S_IFCHR | 0660;

/// Whether a path is that of one of the adapter's devices. Keeps errno.
bool isDeviceAt(const char* path, DeviceName& name) {
    const int error = errno;
    const bool is = path != nullptr && preload::isDevicePath(path, name) && preload::isServed(name);
    errno = error;
    return is;
}

unsigned majorOf(const DeviceName& name) {
    return name.text[0] == 'i' ? i2cMajor : spiMajor;
}

/// The last number of the name.
unsigned minorOf(const DeviceName& name) {
    const size_t size = std::strlen(name.text);
    size_t first = size;
    while (first > 0 && name.text[first - 1] >= '0' && name.text[first - 1] <= '9') {
        --first;
    }
    return static_cast<unsigned>(std::strtoul(name.text + first, nullptr, 10));
}

template <typename Status>
int describe(const DeviceName& name, Status* status) {
    *status = {};
    status->st_mode = mode;
    status->st_nlink = 1;
    status->st_uid = getuid();
    status->st_gid = getgid();
    status->st_rdev = makedev(majorOf(name), minorOf(name));
    status->st_blksize = 4096;
    return 0;
}

int describe(const DeviceName& name, struct statx* status) {
    *status = {};
    status->stx_mask = STATX_TYPE | STATX_MODE | STATX_NLINK | STATX_UID | STATX_GID;
    status->stx_mode = mode;
    status->stx_nlink = 1;
    status->stx_uid = getuid();
    status->stx_gid = getgid();
    status->stx_rdev_major = majorOf(name);
    status->stx_rdev_minor = minorOf(name);
    status->stx_blksize = 4096;
    return 0;
}

/// Nobody executes a device.
int allow(int wanted) {
    if ((wanted & X_OK) == 0) {
        return 0;
    }
    errno = EACCES;
    return -1;
}

/// As statx and fstatat have it: an empty path means the descriptor itself, where that is allowed.
bool isDeviceOf(int descriptor, const char* path, int flags, DeviceName& name) {
    const bool meansDescriptor = (flags & AT_EMPTY_PATH) != 0 && (path == nullptr || *path == '\0');
    return meansDescriptor ? preload::isDevice(descriptor, name) : isDeviceAt(path, name);
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

// NOLINTBEGIN: the C library's names.

int stat(const char* path, struct stat* status) noexcept {
    DeviceName name;
    return isDeviceAt(path, name) ? describe(name, status) : VELTRA_FOLLOWING(stat)(path, status);
}

int stat64(const char* path, struct stat64* status) noexcept {
    DeviceName name;
    return isDeviceAt(path, name) ? describe(name, status) : VELTRA_FOLLOWING(stat64)(path, status);
}

int lstat(const char* path, struct stat* status) noexcept {
    DeviceName name;
    return isDeviceAt(path, name) ? describe(name, status) : VELTRA_FOLLOWING(lstat)(path, status);
}

int lstat64(const char* path, struct stat64* status) noexcept {
    DeviceName name;
    return isDeviceAt(path, name) ? describe(name, status)
                                  : VELTRA_FOLLOWING(lstat64)(path, status);
}

int fstat(int descriptor, struct stat* status) noexcept {
    DeviceName name;
    return preload::isDevice(descriptor, name) ? describe(name, status)
                                               : VELTRA_FOLLOWING(fstat)(descriptor, status);
}

int fstat64(int descriptor, struct stat64* status) noexcept {
    DeviceName name;
    return preload::isDevice(descriptor, name) ? describe(name, status)
                                               : VELTRA_FOLLOWING(fstat64)(descriptor, status);
}

int fstatat(int directory, const char* path, struct stat* status, int flags) noexcept {
    DeviceName name;
    return isDeviceOf(directory, path, flags, name)
               ? describe(name, status)
               : VELTRA_FOLLOWING(fstatat)(directory, path, status, flags);
}

int fstatat64(int directory, const char* path, struct stat64* status, int flags) noexcept {
    DeviceName name;
    return isDeviceOf(directory, path, flags, name)
               ? describe(name, status)
               : VELTRA_FOLLOWING(fstatat64)(directory, path, status, flags);
}

int statx(int directory, const char* path, int flags, unsigned mask,
          struct statx* status) noexcept {
    DeviceName name;
    return isDeviceOf(directory, path, flags, name)
               ? describe(name, status)
               : VELTRA_FOLLOWING(statx)(directory, path, flags, mask, status);
}

int access(const char* path, int wanted) noexcept {
    DeviceName name;
    return isDeviceAt(path, name) ? allow(wanted) : VELTRA_FOLLOWING(access)(path, wanted);
}

int eaccess(const char* path, int wanted) noexcept {
    DeviceName name;
    return isDeviceAt(path, name) ? allow(wanted) : VELTRA_FOLLOWING(eaccess)(path, wanted);
}

int euidaccess(const char* path, int wanted) noexcept {
    DeviceName name;
    return isDeviceAt(path, name) ? allow(wanted) : VELTRA_FOLLOWING(euidaccess)(path, wanted);
}

int faccessat(int directory, const char* path, int wanted, int flags) noexcept {
    DeviceName name;
    return isDeviceAt(path, name) ? allow(wanted)
                                  : VELTRA_FOLLOWING(faccessat)(directory, path, wanted, flags);
}

// NOLINTEND

} // extern "C"
#pragma GCC visibility pop
