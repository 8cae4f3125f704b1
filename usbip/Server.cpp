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
#include <vector>

namespace usbip {

namespace {

using namespace std::chrono_literals;

/// Hosts beyond these wait in the listening socket's queue.
constexpr size_t maxHosts = 16;
/// For a host to say what it wants, and for the last bytes to reach one that is hung up on.
constexpr auto patience = 10s;

Time currentTime() {
    return std::chrono::steady_clock::now();
}

short eventsOf(bool input, bool output) {
    return static_cast<short>((input ? POLLIN : 0) | (output ? POLLOUT : 0));
}

bool wouldBlock() {
    return errno == EAGAIN || errno == EINTR;
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

Server::End Server::run(const FileDescriptor& stop) {
    const auto hasWork = [this] { return listener.isOpen() || !hosts.empty(); };
    while (hasWork() && serveOnce(stop)) {
    }
    return hasWork() ? End::Stopped : End::NothingLeft;
}

bool Server::serveOnce(const FileDescriptor& stop) {
    std::vector<pollfd> polled{{stop.get(), POLLIN, 0},
                               {listener.get(), eventsOf(hosts.size() < maxHosts, false), 0}};
    for (Host& host : hosts) {
        const bool unsent = !host.connection.output().empty();
        polled.push_back({host.socket.get(), eventsOf(host.connection.wantsInput(), unsent), 0});
    }
    if (poll(polled.data(), polled.size(), millisecondsToWait(currentTime())) < 0) {
        return errno == EINTR;
    }

    const Time now = currentTime();
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
    std::optional<Time> next;
    for (const Host& host : hosts) {
        for (const std::optional<Time>& event : {host.deadline, host.connection.nextDue()}) {
            if (event && (!next || *event < *next)) {
                next = event;
            }
        }
    }
    if (!next) {
        return -1;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*next - now).count();
    return static_cast<int>(std::clamp<decltype(wait)>(wait, 0, std::numeric_limits<int>::max()));
}

void Server::accept(Time now) {
    FileDescriptor socket(accept4(listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (socket.isOpen()) {
        sendAtOnce(socket);
        hosts.emplace_back(std::move(socket), exported).deadline = now + patience;
    }
}

void Server::receive(Host& host, Time now) {
    std::array<uint8_t, 1U << 16U> buffer{};
    const ssize_t size = recv(host.socket.get(), buffer.data(), buffer.size(), 0);
    if (size > 0) {
        host.connection.receive(buffer.data(), static_cast<size_t>(size), now);
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
            host.deadline = host.deadline.value_or(now + patience);
            host.isGone = host.isGone || host.connection.output().empty();
        } else if (host.connection.isPluggedIn()) {
            host.deadline.reset();
        }
        return host.isGone || (host.deadline && *host.deadline <= now);
    });
}

} // namespace usbip
