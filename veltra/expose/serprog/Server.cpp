// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/serprog/Server.hpp"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace serprog {

namespace {

using namespace std::chrono_literals;
using usbip::FileDescriptor;

/// Until descriptors may have become free elsewhere.
constexpr auto acceptPause = 100ms;
/// A client that does not read its answers gets no more of them.
constexpr size_t maxUnsent = size_t{1} << 16U;

bool wouldBlock() {
    return errno == EAGAIN || errno == EINTR;
}

void setUp(const FileDescriptor& socket) {
    // Without these an answer waits for the acknowledgement of the one before it, and a client that
    // has lost its power keeps the flash for ever.
    const int on = 1;
    setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    setsockopt(socket.get(), SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
}

/// flashrom goes on reading at an orderly end of the connection, for ever; at a reset it gives up.
void resetAtClose(const FileDescriptor& socket) {
    const linger atOnce{1, 0};
    setsockopt(socket.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

/// Whoever waits repeats its greeting; the answers to all of them would put it out of step. What
/// stands behind them stays.
void forgetGreetings(const FileDescriptor& socket) {
    std::array<uint8_t, 64> said{};
    const ssize_t size = recv(socket.get(), said.data(), said.size(), MSG_PEEK | MSG_DONTWAIT);
    const auto isGreeting = [](uint8_t byte) { return byte == 0x00 || byte == 0x10; };
    size_t greetings = 0;
    while (static_cast<ssize_t>(greetings) < size && isGreeting(said[greetings])) {
        ++greetings;
    }
    if (greetings > 0) {
        (void)recv(socket.get(), said.data(), greetings, MSG_DONTWAIT);
    }
}

} // namespace

Server::~Server() {
    if (client) {
        resetAtClose(client->socket);
    }
    for (const Caller& caller : waiting) {
        resetAtClose(caller.socket);
    }
}

void Server::run(bool once) {
    while (!once || !served) {
        serveOnce();
    }
}

void Server::serveOnce() {
    const Time before = limits.clock();
    if (acceptAgain && *acceptAgain <= before) {
        acceptAgain.reset();
    }
    std::vector<pollfd> polled{{mayAccept() ? listener.get() : -1, POLLIN, 0}, {-1, 0, 0}};
    if (client) {
        const bool unsent = !client->programmer.output().empty();
        const bool reads = !client->hasEnded && client->programmer.wantsInput();
        polled[1] = {client->socket.get(),
                     static_cast<short>((reads ? POLLIN : 0) | (unsent ? POLLOUT : 0)), 0};
    }
    for (const Watched& other : beside) {
        polled.push_back({other.descriptor, POLLIN, 0});
    }
    if (poll(polled.data(), polled.size(), millisecondsToWait(before)) < 0 && errno != EINTR) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for clients");
    }

    const Time now = limits.clock();
    for (size_t i = 0; i < beside.size(); ++i) {
        if (polled[i + 2].revents != 0) {
            beside[i].react();
        }
    }
    if (client) {
        serveClient(polled[1].revents, now);
    }
    if ((polled[0].revents & POLLIN) != 0) {
        accept(now);
    }
    if (!client && !waiting.empty()) {
        takeNext(now);
    }
}

std::optional<Time> Server::deadline() const {
    if (!client || waiting.empty()) {
        return std::nullopt;
    }
    return client->lastSeen +
           (client->programmer.isSynchronised() ? limits.patience : limits.patienceAtFirst);
}

int Server::millisecondsToWait(Time now) const {
    if (busy) {
        return 0;
    }
    std::optional<Time> next = deadline();
    if (acceptAgain && (!next || *acceptAgain < *next)) {
        next = acceptAgain;
    }
    if (!next) {
        return -1;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*next - now).count();
    return static_cast<int>(std::clamp<decltype(wait)>(wait, 0, 1'000'000));
}

void Server::accept(Time now) {
    FileDescriptor socket(accept4(listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (socket.isOpen()) {
        setUp(socket);
        waiting.push_back({std::move(socket), client.has_value() || !waiting.empty()});
    } else if (!wouldBlock() && errno != ECONNABORTED) {
        // It stays in the queue, where poll would report it again at once, for ever.
        acceptAgain = now + acceptPause;
    }
}

void Server::takeNext(Time now) {
    Caller next = std::move(waiting.front());
    waiting.pop_front();
    if (next.hadToWait) {
        forgetGreetings(next.socket);
    }
    client.emplace(std::move(next.socket), bus, now);
}

void Server::serveClient(short events, Time now) {
    if ((events & (POLLIN | POLLHUP | POLLERR)) != 0 && !client->hasEnded) {
        receive(now);
    }
    send(now);
    // One at a time, so that a client with much to say keeps nobody from what else is to be done.
    busy = !client->isGone && client->programmer.output().size() < maxUnsent &&
           client->programmer.step();
    const Time after = limits.clock();
    send(after);
    const bool isDone = client->hasEnded && !busy && client->programmer.output().empty();
    const std::optional<Time> end = deadline();
    const bool isTooSilent = end && *end <= after;
    if (isTooSilent) {
        resetAtClose(client->socket);
    }
    if (isTooSilent || isDone || client->isGone) {
        served = served || client->hasSpoken;
        client.reset();
        busy = false;
    }
}

void Server::receive(Time now) {
    std::array<uint8_t, 1U << 16U> buffer{};
    const ssize_t size = recv(client->socket.get(), buffer.data(), buffer.size(), 0);
    if (size > 0) {
        client->programmer.receive(buffer.data(), static_cast<size_t>(size));
        client->lastSeen = now;
        client->hasSpoken = true;
    } else if (size == 0) {
        client->hasEnded = true;
    } else if (!wouldBlock()) {
        client->isGone = true;
    }
}

void Server::send(Time now) {
    Bytes& output = client->programmer.output();
    while (!output.empty() && !client->isGone) {
        const ssize_t size =
            ::send(client->socket.get(), output.data(), output.size(), MSG_NOSIGNAL);
        if (size >= 0) {
            output.erase(output.begin(), output.begin() + size);
            client->lastSeen = now;
        } else {
            client->isGone = !wouldBlock();
            return;
        }
    }
}

} // namespace serprog
