// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/Broker.hpp"

#include "launch/SocketPlace.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace devices {

namespace {

/// Of those that have not said all yet, or not taken their answer.
constexpr ptrdiff_t maxUnfinished = 256;

/// Until descriptors may have become free elsewhere.
constexpr int acceptPauseMs = 100;

bool wouldBlock() {
    return errno == EAGAIN || errno == EINTR;
}

} // namespace

short Broker::Client::awaited() const {
    // Its end is told without being asked for.
    return isDevice() ? short{0} : output.empty() ? short{POLLIN} : short{POLLOUT};
}

void Broker::run(const usbip::FileDescriptor& stop) {
    for (;;) {
        std::vector<pollfd> polled{{stop.get(), POLLIN, 0},
                                   {mayAccept ? listener.get() : -1, POLLIN, 0}};
        for (const Client& client : clients) {
            polled.push_back({client.socket.get(), client.awaited(), 0});
        }
        const int ready = poll(polled.data(), polled.size(), mayAccept ? -1 : acceptPauseMs);
        if (ready < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "cannot wait for programs");
        }
        mayAccept = true;
        if (ready <= 0) {
            continue;
        }
        if (polled[0].revents != 0) {
            return;
        }
        auto events = polled.begin() + 2;
        for (Client& client : clients) {
            serve(client, events->revents);
            ++events;
        }
        removeGone();
        // Behind the others: whoever has said all is then no more among those to be dropped.
        if (polled[1].revents != 0) {
            accept();
        }
    }
}

void Broker::serve(Client& client, short events) {
    if (events == 0) {
        return;
    }
    if (client.isDevice()) {
        client.isGone = true;
    } else if (!client.output.empty()) {
        send(client);
    } else {
        receive(client);
    }
}

void Broker::receive(Client& client) {
    std::array<uint8_t, 1U << 16U> buffer{};
    const ssize_t size = recv(client.socket.get(), buffer.data(), buffer.size(), 0);
    if (size <= 0) {
        client.isGone = size == 0 || !wouldBlock();
        return;
    }
    client.input.insert(client.input.end(), buffer.begin(), buffer.begin() + size);
    answer(client);
}

void Broker::answer(Client& client) {
    ByteReader reader(client.input);
    const size_t size = reader.u32();
    if (reader.overran()) {
        return;
    }
    if (size > maxMessageSize || reader.remaining() > size) {
        client.isGone = true;
        return;
    }
    if (reader.remaining() < size) {
        return;
    }
    Switchboard::Said said = switchboard.answer(reader.position(), size);
    client.input = {};
    client.output = std::move(said.bytes);
    client.opened = said.opened;
    send(client);
}

void Broker::send(Client& client) {
    if (client.opened) {
        // What goes past the preloaded functions, as of a stream of C's library, is to fail there,
        // from the first moment on.
        shutdown(client.socket.get(), SHUT_RD);
    }
    const ssize_t size =
        ::send(client.socket.get(), client.output.data(), client.output.size(), MSG_NOSIGNAL);
    if (size < 0) {
        client.isGone = !wouldBlock();
        return;
    }
    client.output.erase(client.output.begin(), client.output.begin() + size);
    client.isGone = client.output.empty() && !client.opened;
}

void Broker::accept() {
    usbip::FileDescriptor socket(
        accept4(listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket.isOpen()) {
        const bool isFull = errno == EMFILE || errno == ENFILE || errno == ENOMEM;
        // The program stays in the queue, where poll would report it again at once, for ever.
        mayAccept = !isFull || dropOldest();
        return;
    }
    if (!launch::isOfSameUser(socket)) {
        return;
    }
    const auto unfinished = std::count_if(clients.begin(), clients.end(),
                                          [](const Client& client) { return !client.isDevice(); });
    if (unfinished >= maxUnfinished) {
        dropOldest();
    }
    clients.emplace_back(std::move(socket));
}

bool Broker::dropOldest() {
    const auto oldest = std::find_if(clients.begin(), clients.end(),
                                     [](const Client& client) { return !client.isDevice(); });
    if (oldest == clients.end()) {
        return false;
    }
    oldest->isGone = true;
    removeGone();
    return true;
}

void Broker::removeGone() {
    for (auto client = clients.begin(); client != clients.end();) {
        if (client->isGone && client->opened) {
            switchboard.close(*client->opened);
        }
        client = client->isGone ? clients.erase(client) : std::next(client);
    }
}

} // namespace devices
