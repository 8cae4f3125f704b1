// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/ListeningSocket.hpp"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace usbip {

namespace {

using AddressList = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

AddressList resolve(const std::string& address, uint16_t port) {
    // The system's own reading takes "*" and "0" for every address.
    if (!isNumericAddress(address)) {
        throw std::runtime_error("'" + address + "' is not a numeric address");
    }
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int error = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (error != 0) {
        throw std::runtime_error("cannot listen on " + address + ": " + gai_strerror(error));
    }
    return {found, freeaddrinfo};
}

sockaddr_storage addressOf(const FileDescriptor& socket) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size);
    return address;
}

} // namespace

bool isNumericAddress(const std::string& text) {
    in6_addr parsed{};
    // An IPv6 address may name its interface.
    return inet_pton(AF_INET, text.c_str(), &parsed) == 1 ||
           inet_pton(AF_INET6, text.substr(0, text.find('%')).c_str(), &parsed) == 1;
}

FileDescriptor listeningSocket(const std::string& address, uint16_t port) {
    const AddressList resolved = resolve(address, port);
    FileDescriptor listener(
        socket(resolved->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    // A server that has just ended leaves its port blocked otherwise.
    const int on = 1;
    if (!listener.isOpen() ||
        setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        bind(listener.get(), resolved->ai_addr, resolved->ai_addrlen) != 0 ||
        listen(listener.get(), SOMAXCONN) != 0) {
        throw std::runtime_error("cannot listen on " + address + " port " + std::to_string(port) +
                                 ": " + std::strerror(errno));
    }
    return listener;
}

uint16_t portOf(const FileDescriptor& socket) {
    const sockaddr_storage address = addressOf(socket);
    if (address.ss_family == AF_INET6) {
        return ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port);
    }
    return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

bool isOnLoopback(const FileDescriptor& socket) {
    const sockaddr_storage address = addressOf(socket);
    if (address.ss_family == AF_INET6) {
        return IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6*>(&address)->sin6_addr);
    }
    constexpr uint32_t loopbackNetwork = 127;
    return ntohl(reinterpret_cast<const sockaddr_in*>(&address)->sin_addr.s_addr) >> 24U ==
           loopbackNetwork;
}

} // namespace usbip
