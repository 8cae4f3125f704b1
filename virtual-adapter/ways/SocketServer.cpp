// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/SocketServer.hpp"

#include "socket/replies.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <system_error>

namespace virtual_adapter {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// Until descriptors may have become free elsewhere.
constexpr auto acceptPause = 100ms;

bool wouldBlock() {
    return errno == EAGAIN || errno == EINTR;
}

bool isMine(const ucred& peer) {
    return peer.uid == geteuid();
}

std::optional<ucred> peerOf(const usbip::FileDescriptor& socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) {
        return std::nullopt;
    }
    return peer;
}

timespec timeUntil(SocketServer::Time event, SocketServer::Time now) {
    const auto wait = std::max<std::chrono::nanoseconds>(event - now, 0ns);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(wait);
    return {static_cast<time_t>(seconds.count()), static_cast<long>((wait - seconds).count())};
}

void keepEarlier(std::optional<SocketServer::Time>& earliest,
                 const std::optional<SocketServer::Time>& other) {
    if (other && (!earliest || *other < *earliest)) {
        earliest = other;
    }
}

} // namespace

void SocketServer::endWithPrograms(pid_t program, std::chrono::milliseconds patience) {
    endsWithPrograms = true;
    patienceWithoutPrograms = patience;
    programs.add(program);
}

void SocketServer::run(const usbip::FileDescriptor& stop) {
    for (;;) {
        const Time now = Clock::now();
        std::vector<pollfd> polled{{stop.get(), POLLIN, 0}};
        watch(polled, now);
        const std::optional<Time> due = nextDue();
        const timespec wait = timeUntil(due.value_or(now), now);
        if (ppoll(polled.data(), polled.size(), due ? &wait : nullptr, nullptr) < 0) {
            if (errno == EINTR) {
                continue;
            }
            throw std::system_error(errno, std::generic_category(), "cannot wait for programs");
        }
        const Time then = Clock::now();
        react(polled.data() + 1, then);
        if (polled.front().revents != 0 ||
            (deserted && *deserted + patienceWithoutPrograms <= then)) {
            return;
        }
    }
}

void SocketServer::watch(std::vector<pollfd>& polled, Time now) {
    if (acceptAgain && *acceptAgain <= now) {
        acceptAgain.reset();
    }
    polled.push_back({listener.get(), static_cast<short>(acceptAgain ? 0 : POLLIN), 0});
    programs.watch(polled);
    for (Client& client : clients) {
        const int input = client.connection.wantsInput() ? POLLIN : 0;
        const int output = client.connection.output().empty() ? 0 : POLLOUT;
        polled.push_back({client.socket.get(), static_cast<short>(input | output), 0});
    }
}

std::optional<SocketServer::Time> SocketServer::nextDue() const {
    std::optional<Time> next = acceptAgain;
    for (const Client& client : clients) {
        keepEarlier(next, client.connection.nextDue());
    }
    if (deserted) {
        keepEarlier(next, *deserted + patienceWithoutPrograms);
    }
    return next;
}

void SocketServer::react(const pollfd* events, Time now) {
    const bool someoneConnects = (events->revents & POLLIN) != 0;
    const pollfd* const ofClients = programs.removeEnded(events + 1);
    // Those who have gone first: what they had open is free for the others.
    for (const bool gone : {true, false}) {
        const pollfd* event = ofClients;
        for (Client& client : clients) {
            const auto happened = static_cast<unsigned>((event++)->revents);
            if (gone == ((happened & (POLLHUP | POLLERR)) != 0) && happened != 0) {
                receive(client, gone, now);
            }
        }
    }
    answer(now);
    removeGone();
    if (someoneConnects) {
        accept(now);
    }
    if (!endsWithPrograms || hasPrograms()) {
        deserted.reset();
    } else if (!deserted) {
        deserted = now;
    }
}

void SocketServer::accept(Time now) {
    usbip::FileDescriptor socket(
        accept4(listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket.isOpen()) {
        if (!wouldBlock() && errno != ECONNABORTED) {
            // The program stays in the queue, where poll would report it again at once, for ever.
            acceptAgain = now + acceptPause;
        }
        return;
    }
    const auto peer = peerOf(socket);
    if (!peer || !isMine(*peer)) {
        return;
    }
    clients.emplace_back(std::move(socket), peer->pid, rack);
}

void SocketServer::receive(Client& client, bool gone, Time now) {
    std::array<uint8_t, 1U << 16U> buffer{};
    do {
        const ssize_t size = client.connection.wantsInput()
                                 ? recv(client.socket.get(), buffer.data(), buffer.size(), 0)
                                 : 0;
        if (size > 0) {
            client.connection.receive(buffer.data(), static_cast<size_t>(size), now);
            addNotices(client.connection.output());
            if (endsWithPrograms && client.connection.holdsAdapters()) {
                programs.add(client.process);
            }
        } else if (gone || (size == 0 && client.connection.wantsInput()) ||
                   (size < 0 && !wouldBlock())) {
            client.isGone = true;
            client.connection.hangUp(now);
        }
    } while (gone && !client.isGone);
}

void SocketServer::answer(Time now) {
    bool somethingWasSaid = true;
    while (somethingWasSaid) {
        somethingWasSaid = false;
        // Reports before what says that their request is written: the thread that wrote it then
        // seldom has to be put to sleep and woken.
        for (Client& client : clients) {
            somethingWasSaid =
                (client.connection.isReading() && answer(client, now)) || somethingWasSaid;
        }
        for (Client& client : clients) {
            somethingWasSaid = answer(client, now) || somethingWasSaid;
        }
    }
}

bool SocketServer::answer(Client& client, Time now) {
    if (client.isGone) {
        return false;
    }
    send(client, now);
    if (!client.connection.serve(now)) {
        return false;
    }
    addNotices(client.connection.output());
    send(client, now);
    // It may have set others free.
    return true;
}

void SocketServer::send(Client& client, Time now) {
    Bytes& output = client.connection.output();
    while (!output.empty() && !client.isGone) {
        const ssize_t size =
            ::send(client.socket.get(), output.data(), output.size(), MSG_NOSIGNAL);
        if (size >= 0) {
            output.erase(output.begin(), output.begin() + size);
        } else if (wouldBlock()) {
            return;
        } else {
            client.isGone = true;
        }
    }
    client.isGone = client.isGone || client.connection.isOver();
    if (client.isGone) {
        client.connection.hangUp(now);
    }
}

void SocketServer::addNotices(Bytes& output) {
    if (!notices.isOpen() || output.empty()) {
        return;
    }
    std::array<char, maxTextSize> text{};
    Bytes said;
    for (;;) {
        const ssize_t size = read(notices.get(), text.data(), text.size());
        if (size <= 0) {
            break;
        }
        const Bytes notice = textReply(ReplyKind::Notice, {text.data(), static_cast<size_t>(size)});
        said.insert(said.end(), notice.begin(), notice.end());
    }
    output.insert(output.begin(), said.begin(), said.end());
}

void SocketServer::removeGone() {
    clients.remove_if([](const Client& client) { return client.isGone; });
}

} // namespace virtual_adapter
