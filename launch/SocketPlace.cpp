// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "launch/SocketPlace.hpp"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

namespace launch {

namespace {

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error("a socket's path has at most " +
                                 std::to_string(sizeof address.sun_path - 1) +
                                 " bytes, not this one: " + path);
    }
    // The colon separates paths where programs are told of them.
    if (path.find(':') != std::string::npos) {
        throw std::runtime_error("a socket's path cannot hold a colon: " + path);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    return address;
}

usbip::FileDescriptor newSocket() {
    return usbip::FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

/// Whether what lies there is a socket that nobody listens on any more.
bool isAbandoned(const sockaddr_un& address) {
    struct stat status {};
    if (lstat(address.sun_path, &status) != 0 || !S_ISSOCK(status.st_mode)) {
        return false;
    }
    const usbip::FileDescriptor client = newSocket();
    return connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
               0 &&
           errno == ECONNREFUSED;
}

bool bindTo(const usbip::FileDescriptor& listener, const sockaddr_un& address) {
    // The owner alone, also for the moment between the two calls.
    const mode_t before = umask(S_IRWXG | S_IRWXO);
    const bool bound =
        bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    const int error = errno;
    umask(before);
    errno = error;
    return bound;
}

usbip::FileDescriptor listenAt(const std::string& path) {
    const sockaddr_un address = addressOf(path);
    usbip::FileDescriptor listener = newSocket();
    bool bound = bindTo(listener, address);
    if (!bound && errno == EADDRINUSE) {
        if (!isAbandoned(address)) {
            throw std::runtime_error("cannot listen on " + path +
                                     ": it is there already, and in use");
        }
        unlink(path.c_str());
        bound = bindTo(listener, address);
    }
    if (!bound || listen(listener.get(), SOMAXCONN) != 0) {
        throw std::runtime_error("cannot listen on " + path + ": " + std::strerror(errno));
    }
    return listener;
}

} // namespace

bool isOfSameUser(const usbip::FileDescriptor& connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == geteuid();
}

SocketPlace::SocketPlace(std::string path, std::optional<SocketDirectory> itsDirectory)
    : directory(std::move(itsDirectory)),
      socketPath(std::move(path)),
      listener(listenAt(socketPath)) {}

SocketPlace::SocketPlace(SocketPlace&& other) noexcept
    : directory(std::move(other.directory)),
      socketPath(std::exchange(other.socketPath, {})),
      listener(std::move(other.listener)) {}

SocketPlace::~SocketPlace() {
    if (!socketPath.empty()) {
        unlink(socketPath.c_str());
    }
}

SocketPlace SocketPlace::at(const std::string& path) {
    return {std::filesystem::absolute(path).lexically_normal(), std::nullopt};
}

SocketPlace SocketPlace::inDirectoryOfItsOwn(const std::string& owner) {
    std::vector<std::string> places;
    const char* const runtimeDirectory = std::getenv("XDG_RUNTIME_DIR");
    if (runtimeDirectory != nullptr && *runtimeDirectory == '/') {
        places.emplace_back(runtimeDirectory);
    }
    places.emplace_back("/tmp");
    std::string complaints;
    for (const std::string& place : places) {
        try {
            SocketDirectory own = SocketDirectory::below(place, owner);
            const std::string path = own.socketPath();
            return {path, std::move(own)};
        } catch (const std::runtime_error& error) {
            complaints += (complaints.empty() ? "" : ", ") + std::string(error.what());
        }
    }
    throw std::runtime_error("no place for a socket (" + complaints +
                             "); name a directory of yours: XDG_RUNTIME_DIR=DIRECTORY");
}

} // namespace launch
