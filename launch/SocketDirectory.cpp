// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "launch/SocketDirectory.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace launch {

namespace {

namespace fs = std::filesystem;

constexpr const char* socketName = "socket";

/// Nothing where it is somebody else's, or locked: then its server lives.
usbip::FileDescriptor lockedDirectory(const std::string& path) {
    usbip::FileDescriptor directory(
        open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!directory.isOpen() || fstat(directory.get(), &status) != 0 || status.st_uid != geteuid() ||
        flock(directory.get(), LOCK_EX | LOCK_NB) != 0) {
        directory.reset();
    }
    return directory;
}

/// Whether the directory is the one at the path: it may have been removed before it was locked.
bool isAt(const std::string& path, const usbip::FileDescriptor& directory) {
    struct stat there {};
    struct stat here {};
    return lstat(path.c_str(), &there) == 0 && fstat(directory.get(), &here) == 0 &&
           there.st_dev == here.st_dev && there.st_ino == here.st_ino;
}

/// Whatever cannot be removed stays.
void removeThoseOfKilledOnes(const std::string& place, const std::string& prefix) {
    std::error_code error;
    for (fs::directory_iterator entry(place, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string path = entry->path();
        if (entry->path().filename().string().rfind(prefix, 0) != 0) {
            continue;
        }
        const usbip::FileDescriptor directory = lockedDirectory(path);
        if (directory.isOpen()) {
            unlinkat(directory.get(), socketName, 0);
            rmdir(path.c_str());
        }
    }
}

} // namespace

SocketDirectory::SocketDirectory(std::string itsPath, usbip::FileDescriptor itsLock)
    : path(std::move(itsPath)), lock(std::move(itsLock)) {}

SocketDirectory::SocketDirectory(SocketDirectory&& other) noexcept
    : path(std::exchange(other.path, {})), lock(std::move(other.lock)) {}

SocketDirectory::~SocketDirectory() {
    if (!path.empty()) {
        rmdir(path.c_str());
    }
}

std::string SocketDirectory::socketPath() const {
    return path + "/" + socketName;
}

SocketDirectory SocketDirectory::below(const std::string& place, const std::string& owner) {
    const std::string prefix = owner + "-";
    removeThoseOfKilledOnes(place, prefix);
    for (;;) {
        std::string path = (place + "/").append(prefix).append("XXXXXX");
        if (mkdtemp(path.data()) == nullptr) {
            throw std::runtime_error(place + ": " + std::generic_category().message(errno));
        }
        // Until it is locked another start may take it for one that was left behind.
        usbip::FileDescriptor lock = lockedDirectory(path);
        if (lock.isOpen() && isAt(path, lock)) {
            return {path, std::move(lock)};
        }
    }
}

} // namespace launch
