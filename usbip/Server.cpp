// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/Server.hpp"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <limits>
#include <system_error>
#include <vector>

namespace usbip {

namespace {

using namespace std::chrono_literals;

/// Until descriptors may have become free elsewhere.
constexpr auto acceptPause = 100ms;

short eventsOf(bool input, bool output) {
    return static_cast<short>((input ? POLLIN : 0) | (output ? POLLOUT : 0));
}

bool wouldBlock() {
    return errno == EAGAIN || errno == EINTR;
}

bool isCaller(const Connection& connection) {
    return !connection.isPluggedIn();
}

void sendAtOnce(const FileDescriptor& socket) {
    // Without these a small reply waits for the acknowledgement of the one before it, and a host
    // that has lost its power keeps the device for ever. A local socket has neither.
    const int on = 1;
    setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    setsockopt(socket.get(), SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
}

} // namespace

void Server::plugInto(FileDescriptor socket) {
    fcntl(socket.get(), F_SETFL, O_NONBLOCK);
    hosts.emplace_back(std::move(socket), exported).connection.plugIn();
}

void Server::plugInto(FileDescriptor socket, ExportedDevice device) {
    others.push_back(std::move(device));
    fcntl(socket.get(), F_SETFL, O_NONBLOCK);
    hosts.emplace_back(std::move(socket), others.back()).connection.plugIn();
}

Server::End Server::run(const FileDescriptor& stop) {
    const auto hasWork = [this] { return listener.isOpen() || !hosts.empty(); };
    while (hasWork() && serveOnce(stop)) {
    }
    return hasWork() ? End::Stopped : End::NothingLeft;
}

bool Server::serveOnce(const FileDescriptor& stop) {
    const Time before = limits.clock();
    if (acceptAgain && *acceptAgain <= before) {
        acceptAgain.reset();
    }
    std::vector<pollfd> polled{{stop.get(), POLLIN, 0},
                               {listener.get(), eventsOf(!acceptAgain, false), 0}};
    for (Host& host : hosts) {
        const bool unsent = !host.connection.output().empty();
        polled.push_back({host.socket.get(), eventsOf(host.connection.wantsInput(), unsent), 0});
    }
    const size_t ofTask = polled.size();
    if (beside != nullptr) {
        beside->watch(polled, before);
    }
    if (poll(polled.data(), polled.size(), millisecondsToWait(before)) < 0) {
        if (errno == EINTR) {
            return true;
        }
        throw std::system_error(errno, std::generic_category(), "cannot wait for hosts");
    }

    const Time now = limits.clock();
    if (beside != nullptr) {
        beside->react(polled.data() + ofTask, now);
    }
    auto events = polled.begin() + 2;
    for (Host& host : hosts) {
        if (((events++)->revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
            receive(host, now);
        }
        host.connection.serve(now);
        send(host);
    }
    removeFinishedHosts(now);
    if ((polled[1].revents & POLLIN) != 0) {
        accept(now);
    }
    return polled[0].revents == 0;
}

int Server::millisecondsToWait(Time now) const {
    std::optional<Time> next = acceptAgain;
    const auto keepEarlier = [&next](const std::optional<Time>& event) {
        if (event && (!next || *event < *next)) {
            next = event;
        }
    };
    for (const Host& host : hosts) {
        keepEarlier(host.deadline);
        keepEarlier(host.connection.nextDue());
    }
    if (beside != nullptr) {
        keepEarlier(beside->nextDue());
    }
    if (!next) {
        return -1;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*next - now).count();
    return static_cast<int>(std::clamp<decltype(wait)>(wait, 0, std::numeric_limits<int>::max()));
}

void Server::accept(Time now) {
    const auto callers = std::count_if(hosts.begin(), hosts.end(),
                                       [](const Host& host) { return isCaller(host.connection); });
    if (static_cast<size_t>(callers) >= limits.maxCallers) {
        hangUpOnOldestCaller();
    }
    FileDescriptor socket(accept4(listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (socket.isOpen()) {
        sendAtOnce(socket);
        hosts.emplace_back(std::move(socket), exported).deadline = now + limits.patience;
    } else if (!wouldBlock() && errno != ECONNABORTED && !hangUpOnOldestCaller()) {
        // The host stays in the queue, where poll would report it again at once, for ever.
        acceptAgain = now + acceptPause;
    }
}

bool Server::hangUpOnOldestCaller() {
    const auto oldest = std::find_if(hosts.begin(), hosts.end(),
                                     [](const Host& host) { return isCaller(host.connection); });
    if (oldest == hosts.end()) {
        return false;
    }
    hosts.erase(oldest);
    return true;
}

void Server::receive(Host& host, Time now) const {
    std::array<uint8_t, 1U << 16U> buffer{};
    const ssize_t size = recv(host.socket.get(), buffer.data(), buffer.size(), 0);
    if (size > 0) {
        const bool wasCaller = isCaller(host.connection);
        host.connection.receive(buffer.data(), static_cast<size_t>(size), now);
        if (wasCaller && !isCaller(host.connection)) {
            host.deadline = now + limits.patience;
        }
    } else if (size == 0 || !wouldBlock()) {
        host.isGone = true;
    }
}

void Server::send(Host& host) {
    Bytes& output = host.connection.output();
    while (!output.empty() && !host.isGone) {
        const ssize_t size = ::send(host.socket.get(), output.data(), output.size(), MSG_NOSIGNAL);
        if (size >= 0) {
            output.erase(output.begin(), output.begin() + size);
        } else {
            host.isGone = !wouldBlock();
            return;
        }
    }
}

void Server::removeFinishedHosts(Time now) {
    hosts.remove_if([&](Host& host) {
        if (host.connection.isOver()) {
            host.deadline = host.deadline.value_or(now + limits.patience);
            host.isGone = host.isGone || host.connection.output().empty();
        } else if (host.connection.isInUse()) {
            host.deadline.reset();
        }
        return host.isGone || (host.deadline && *host.deadline <= now);
    });
}

} // namespace usbip
