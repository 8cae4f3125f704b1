// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/serprog/Server.hpp"

#include "expose/RecordingBus.hpp"
#include "usbip/ListeningSocket.hpp"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <thread>

using namespace serprog;
using usbip::FileDescriptor;

namespace {

/// Longer than any machine takes; a test that waits so long has failed.
const timeval generous{30, 0};

struct Stopped : std::runtime_error {
    Stopped() : std::runtime_error("stopped") {}
};

/// A server on a free loopback port, with a thread of its own and a clock that stands still.
class RunningServer {
public:
    explicit RunningServer(bool once = false)
        : stop(eventfd(0, EFD_CLOEXEC)), wake(eventfd(0, EFD_CLOEXEC)) {
        FileDescriptor listener = usbip::listeningSocket("127.0.0.1", 0);
        port = usbip::portOf(listener);
        ServerLimits limits;
        limits.clock = [this] { return Time(std::chrono::seconds(seconds)); };
        const auto readWake = [this] {
            eventfd_t count = 0;
            eventfd_read(wake.get(), &count);
        };
        thread = std::thread([this, once, limits, readWake,
                              socket = std::move(listener)]() mutable {
            Server server(std::move(socket), bus,
                          {{stop.get(), [] { throw Stopped(); }}, {wake.get(), readWake}}, limits);
            try {
                server.run(once);
            } catch (const Stopped&) {
                wasStopped = true;
            }
        });
    }

    ~RunningServer() {
        eventfd_write(stop.get(), 1);
        if (thread.joinable()) {
            thread.join();
        }
    }

    RunningServer(const RunningServer&) = delete;
    RunningServer& operator=(const RunningServer&) = delete;

    [[nodiscard]] FileDescriptor connect() const {
        FileDescriptor client(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        setsockopt(client.get(), SOL_SOCKET, SO_RCVTIMEO, &generous, sizeof generous);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(
            ::connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
            0);
        return client;
    }

    void letTimePass(int forSeconds) {
        seconds += forSeconds;
        eventfd_write(wake.get(), 1);
    }

    void waitForItsEnd() { thread.join(); }

    std::atomic<bool> wasStopped{false};

private:
    uint16_t port = 0;
    std::atomic<int> seconds{0};
    RecordingBus bus;
    FileDescriptor stop;
    FileDescriptor wake;
    std::thread thread;
};

void say(const FileDescriptor& client, const Bytes& words) {
    EXPECT_EQ(send(client.get(), words.data(), words.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(words.size()));
}

Bytes read(const FileDescriptor& client, size_t count) {
    Bytes received(count);
    const ssize_t size = recv(client.get(), received.data(), count, MSG_WAITALL);
    received.resize(size < 0 ? 0 : static_cast<size_t>(size));
    return received;
}

Bytes ask(const FileDescriptor& client, const Bytes& words, size_t count) {
    say(client, words);
    return read(client, count);
}

bool isReset(const FileDescriptor& client) {
    std::array<uint8_t, 1> more{};
    return recv(client.get(), more.data(), more.size(), 0) < 0 && errno == ECONNRESET;
}

const Bytes greeting{0x10};
const Bytes inStep{0x15, 0x06};

} // namespace

TEST(SerprogServerTest, AClientIsAnswered) {
    RunningServer server;
    const FileDescriptor client = server.connect();
    EXPECT_EQ(ask(client, greeting, 2), inStep);
    EXPECT_EQ(ask(client, {0x01}, 3), (Bytes{0x06, 0x01, 0x00}));
}

TEST(SerprogServerTest, TheNextClientIsServedWhenTheFirstHasGone) {
    RunningServer server;
    FileDescriptor first = server.connect();
    EXPECT_EQ(ask(first, greeting, 2), inStep);
    const FileDescriptor second = server.connect();
    say(second, {0x01});
    EXPECT_EQ(ask(first, greeting, 2), inStep) << "the second one is not let in between";
    first.reset();
    EXPECT_EQ(read(second, 3), (Bytes{0x06, 0x01, 0x00}));
}

TEST(SerprogServerTest, AnsweringAClientThatWaitedBeginsBehindItsGreetings) {
    RunningServer server;
    FileDescriptor first = server.connect();
    EXPECT_EQ(ask(first, greeting, 2), inStep);
    const FileDescriptor second = server.connect();
    say(second, {0x00, 0x00, 0x10, 0x10});
    EXPECT_EQ(ask(first, greeting, 2), inStep);
    first.reset();
    say(second, {0x01});
    EXPECT_EQ(read(second, 3), (Bytes{0x06, 0x01, 0x00}));
}

TEST(SerprogServerTest, AClientThatEndsInTheMiddleOfACommandHarmsNobody) {
    RunningServer server;
    FileDescriptor first = server.connect();
    say(first, {0x10, 0x13, 0x05, 0x00});
    EXPECT_EQ(read(first, 2), inStep);
    first.reset();
    EXPECT_EQ(ask(server.connect(), greeting, 2), inStep);
}

TEST(SerprogServerTest, WhatWasSaidBeforeTheEndIsAnswered) {
    RunningServer server;
    const FileDescriptor client = server.connect();
    say(client, {0x10, 0x01, 0x05});
    shutdown(client.get(), SHUT_WR);
    EXPECT_EQ(read(client, 8), (Bytes{0x15, 0x06, 0x06, 0x01, 0x00, 0x06, 0x08}));
}

TEST(SerprogServerTest, ASilentClientMayStayUntilAnotherComes) {
    RunningServer server;
    const FileDescriptor silent = server.connect();
    server.letTimePass(3600);
    EXPECT_EQ(ask(silent, greeting, 2), inStep);
}

TEST(SerprogServerTest, AClientThatDoesNotBeginASessionMakesRoom) {
    RunningServer server;
    const FileDescriptor silent = server.connect();
    EXPECT_EQ(ask(silent, {0x00}, 1), (Bytes{0x06}));
    const FileDescriptor next = server.connect();
    say(next, {0x01});
    server.letTimePass(2);
    EXPECT_EQ(read(next, 3), (Bytes{0x06, 0x01, 0x00}));
    EXPECT_TRUE(isReset(silent));
}

TEST(SerprogServerTest, ASessionThatHasGoneSilentMakesRoomMuchLater) {
    RunningServer server;
    const FileDescriptor silent = server.connect();
    EXPECT_EQ(ask(silent, greeting, 2), inStep);
    const FileDescriptor next = server.connect();
    say(next, {0x01});
    server.letTimePass(29);
    EXPECT_EQ(ask(silent, greeting, 2), inStep);
    server.letTimePass(30);
    EXPECT_EQ(read(next, 3), (Bytes{0x06, 0x01, 0x00}));
    EXPECT_TRUE(isReset(silent));
}

TEST(SerprogServerTest, AClientThatReadsNoAnswersMakesRoomToo) {
    RunningServer server;
    const FileDescriptor deaf = server.connect();
    Bytes reads;
    for (int i = 0; i < 1000; ++i) { // 32 MB of answers
        const Bytes one{0x13, 0x01, 0x00, 0x00, 0x00, 0x80, 0x00, 0x03};
        reads.insert(reads.end(), one.begin(), one.end());
    }
    say(deaf, reads);
    const FileDescriptor next = server.connect();
    say(next, {0x01});
    // It may have taken some answers into its buffer before each look at the clock.
    for (int tries = 0; tries < 30; ++tries) {
        server.letTimePass(30);
        pollfd answered{next.get(), POLLIN, 0};
        if (poll(&answered, 1, 1000) == 1) {
            break;
        }
    }
    EXPECT_EQ(read(next, 3), (Bytes{0x06, 0x01, 0x00}));
}

TEST(SerprogServerTest, MoreClientsThanMayWaitWaitToo) {
    RunningServer server;
    std::vector<FileDescriptor> clients;
    for (int i = 0; i < 10; ++i) {
        clients.push_back(server.connect());
    }
    for (FileDescriptor& client : clients) {
        EXPECT_EQ(ask(client, {0x01}, 3), (Bytes{0x06, 0x01, 0x00}));
        client.reset();
    }
}

TEST(SerprogServerTest, OnceItEndsBehindTheFirstClientThatSpoke) {
    RunningServer server(true);
    server.connect().reset();
    FileDescriptor client = server.connect();
    EXPECT_EQ(ask(client, greeting, 2), inStep);
    client.reset();
    server.waitForItsEnd();
    EXPECT_FALSE(server.wasStopped);
}

TEST(SerprogServerTest, ItsEndResetsTheConnections) {
    FileDescriptor client;
    FileDescriptor waiting;
    {
        RunningServer server;
        client = server.connect();
        EXPECT_EQ(ask(client, greeting, 2), inStep);
        waiting = server.connect();
        EXPECT_EQ(ask(client, greeting, 2), inStep);
    }
    EXPECT_TRUE(isReset(client)) << "a client may go on reading at an orderly end for ever";
    EXPECT_TRUE(isReset(waiting));
}
