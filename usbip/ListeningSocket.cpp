#include "usbip/ListeningSocket.hpp"

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
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int error = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (error != 0) {
        throw std::runtime_error("'" + address + "' is not an address: " + gai_strerror(error));
    }
    return {found, freeaddrinfo};
}

} // namespace

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
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size);
    if (address.ss_family == AF_INET6) {
        return ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port);
    }
    return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
}

} // namespace usbip
