// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/Vhci.hpp"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace usbip {

namespace {

/// The kernel only asks that it is not 0: bus 1, device 2.
constexpr unsigned deviceId = 0x10002;
constexpr unsigned freeStatus = 4;

std::runtime_error failure(const std::string& what, int error) {
    return std::runtime_error(what + ": " + std::strerror(error));
}

/// Sysfs takes a command as one write.
void command(const std::filesystem::path& file, const std::string& text) {
    const FileDescriptor attribute(open(file.c_str(), O_WRONLY | O_CLOEXEC));
    if (!attribute.isOpen()) {
        const int error = errno;
        throw failure(error == EACCES
                          ? "plugging in needs root's rights; cannot write " + file.string()
                          : "cannot write " + file.string(),
                      error);
    }
    if (write(attribute.get(), text.data(), text.size()) < 0) {
        throw failure("the kernel refused '" + text + "' written to " + file.string(), errno);
    }
}

} // namespace

Vhci::Vhci(std::filesystem::path controllerDirectory) : directory(std::move(controllerDirectory)) {}

unsigned Vhci::plugIn(const FileDescriptor& socket, Speed speed) const {
    const unsigned port = freePort();
    std::ostringstream request;
    request << port << ' ' << socket.get() << ' ' << deviceId << ' '
            << static_cast<uint32_t>(speed);
    command(directory / "attach", request.str());
    return port;
}

void Vhci::pullOut(unsigned port) const {
    try {
        command(directory / "detach", std::to_string(port));
    } catch (const std::runtime_error&) {
        // The kernel says so when the port is free, which is what was wanted.
    }
}

std::string Vhci::busIdOf(unsigned port) const {
    std::ifstream status(directory / "status");
    std::string line;
    std::getline(status, line); // the columns' names
    while (std::getline(status, line)) {
        std::istringstream columns(line);
        std::array<std::string, 7> words; // hub port sta spd dev sockfd local_busid
        for (std::string& word : words) {
            columns >> word;
        }
        if (std::strtoul(words[1].c_str(), nullptr, 10) == port) {
            return words.back();
        }
    }
    return {};
}

unsigned Vhci::freePort() const {
    std::ifstream status(directory / "status");
    if (!status) {
        throw std::runtime_error("the kernel has no virtual USB host controller (" +
                                 directory.string() +
                                 "); load it with 'modprobe vhci-hcd' as root");
    }
    std::string line;
    std::getline(status, line); // the columns' names
    while (std::getline(status, line)) {
        std::istringstream columns(line);
        std::string hub;
        unsigned port = 0;
        unsigned state = 0;
        // The hub for high speed serves full speed too.
        if (columns >> hub >> port >> state && hub == "hs" && state == freeStatus) {
            return port;
        }
    }
    throw std::runtime_error(
        "every port of the virtual USB host controller is in use; 'usbip port' "
        "lists them");
}

} // namespace usbip
