// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/Server.hpp"

#include "usbip/EchoDevice.hpp"
#include "usbip/ListeningSocket.hpp"
#include "usbip/Messages.hpp"

#include <gtest/gtest.h>

#include "support/SleepingThread.hpp"

#include <netinet/in.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <future>
#include <list>
#include <memory>
#include <string>
#include <thread>

using namespace usbip;

namespace {

/// Longer than any machine takes; a test that waits so long has failed.
const timeval generous{30, 0};

FileDescriptor newSocket() {
    FileDescriptor made(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    setsockopt(made.get(), SOL_SOCKET, SO_RCVTIMEO, &generous, sizeof generous);
    return made;
}

/// A server on a free loopback port, with a thread of its own.
class RunningServer {
public:
    explicit RunningServer(const ServerLimits& limits = {})
        : stop(eventfd(0, EFD_CLOEXEC)), server(exportedEcho(), limits) {
        FileDescriptor listener = listeningSocket("127.0.0.1", 0);
        port = portOf(listener);
        server.listenOn(std::move(listener));
        thread = std::thread([this] {
            threadId.set_value(static_cast<pid_t>(syscall(SYS_gettid)));
            server.run(stop);
        });
    }

    ~RunningServer() {
        eventfd_write(stop.get(), 1);
        thread.join();
    }

    RunningServer(const RunningServer&) = delete;
    RunningServer& operator=(const RunningServer&) = delete;

    void connect(const FileDescriptor& client) const {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(
            ::connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
            0);
    }

    FileDescriptor connect() const {
        FileDescriptor client = newSocket();
        connect(client);
        return client;
    }

    uint16_t port = 0;
    std::promise<pid_t> threadId;

private:
    FileDescriptor stop;
    Server server;
    std::thread thread;
};

void say(const FileDescriptor& client, const Bytes& words) {
    EXPECT_EQ(send(client.get(), words.data(), words.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(words.size()));
}

/// The next bytes, as many as asked for, or fewer where the connection ends.
Bytes read(const FileDescriptor& client, size_t count) {
    Bytes received(count);
    const ssize_t size = recv(client.get(), received.data(), count, MSG_WAITALL);
    received.resize(size < 0 ? 0 : static_cast<size_t>(size));
    return received;
}

/// Whether the server ends the connection, with nothing more to say.
bool isHungUpOn(const FileDescriptor& client) {
    std::array<uint8_t, 1> more{};
    return recv(client.get(), more.data(), more.size(), 0) == 0;
}

/// Everything up to the end of the connection.
Bytes readToEnd(const FileDescriptor& client) {
    Bytes received;
    std::array<uint8_t, 4096> buffer{};
    ssize_t size = 0;
    while ((size = recv(client.get(), buffer.data(), buffer.size(), 0)) > 0) {
        received.insert(received.end(), buffer.begin(), buffer.begin() + size);
    }
    return received;
}

Bytes ask(const RunningServer& server, const Bytes& request) {
    const FileDescriptor client = server.connect();
    say(client, request);
    return readToEnd(client);
}

constexpr size_t sizeOfImportReply = 320;
constexpr size_t sizeOfEmptyList = 12;
constexpr size_t sizeOfList = 328;

/// A clock that the test moves.
class Clock {
public:
    void advance(std::chrono::milliseconds time) { elapsed = elapsed.load() + time; }

    /// The limits of every server, by this clock.
    ServerLimits limits() {
        ServerLimits byThis;
        byThis.clock = [this] { return Time() + elapsed.load(); };
        return byThis;
    }

private:
    std::atomic<std::chrono::milliseconds> elapsed{std::chrono::milliseconds(0)};
};

TEST(Server, SeveralHostsMayAskOneAfterTheOther) {
    const RunningServer server;
    EXPECT_EQ(ask(server, listRequest).size(), 328U);
    EXPECT_EQ(ask(server, listRequest).size(), 328U);
}

TEST(Server, AHostThatSpeaksAnotherProtocolIsHungUpOn) {
    const RunningServer server;
    const std::string words = "GET / HTTP/1.1\r\n\r\n";
    EXPECT_TRUE(ask(server, Bytes(words.begin(), words.end())).empty());
    EXPECT_EQ(ask(server, listRequest).size(), 328U);
}

TEST(Server, ASilentHostKeepsNoOneElseWaiting) {
    const RunningServer server;
    const FileDescriptor silent = server.connect();
    EXPECT_EQ(ask(server, listRequest).size(), 328U);
}

TEST(Server, AFullHouseHangsUpOnItsOldestSilentHost) {
    const RunningServer server;
    std::list<FileDescriptor> silent;
    for (size_t i = 0; i < ServerLimits().maxCallers; ++i) {
        silent.push_back(server.connect());
    }
    EXPECT_EQ(ask(server, listRequest).size(), sizeOfList);
    EXPECT_TRUE(isHungUpOn(silent.front()));
    say(silent.back(), listRequest);
    EXPECT_EQ(readToEnd(silent.back()).size(), sizeOfList) << "the newest was kept";
}

TEST(Server, AFullHouseLeavesTheDeviceToItsHost) {
    const RunningServer server;
    const FileDescriptor owner = server.connect();
    say(owner, importRequest());
    EXPECT_EQ(read(owner, sizeOfImportReply).size(), sizeOfImportReply);
    std::list<FileDescriptor> silent;
    for (size_t i = 0; i < 2 * ServerLimits().maxCallers; ++i) {
        silent.push_back(server.connect());
    }
    EXPECT_EQ(ask(server, listRequest).size(), sizeOfEmptyList) << "it is taken";
    say(owner, submit(1, towardsHost, 0, 18));
    EXPECT_EQ(read(owner, 48 + 18).size(), 48U + 18U);
}

TEST(Server, AHostThatSaysNothingIsHungUpOn) {
    ServerLimits limits;
    limits.patience = std::chrono::milliseconds(1);
    const RunningServer server(limits);
    EXPECT_TRUE(isHungUpOn(server.connect()));
}

TEST(Server, AHostThatTakesTheDeviceAndDoesNotUseItLosesIt) {
    Clock clock;
    const RunningServer server(clock.limits());
    const FileDescriptor silent = server.connect();
    EXPECT_EQ(ask(server, listRequest).size(), sizeOfList) << "the first is accepted by now";
    clock.advance(ServerLimits().patience / 2);
    say(silent, importRequest());
    EXPECT_EQ(read(silent, sizeOfImportReply).size(), sizeOfImportReply);
    clock.advance(ServerLimits().patience - std::chrono::milliseconds(1));
    EXPECT_EQ(ask(server, listRequest).size(), sizeOfEmptyList) << "its time begins with taking it";
    clock.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(ask(server, listRequest).size(), sizeOfList);
    EXPECT_TRUE(isHungUpOn(silent));
}

TEST(Server, AHostThatHasUsedTheDeviceKeepsIt) {
    Clock clock;
    const RunningServer server(clock.limits());
    const FileDescriptor owner = server.connect();
    const Bytes command = submit(1, towardsHost, 0, 18);
    say(owner, importRequest() + command);
    EXPECT_EQ(read(owner, sizeOfImportReply + 66).size(), sizeOfImportReply + 66);
    clock.advance(std::chrono::hours(1));
    EXPECT_EQ(ask(server, listRequest).size(), sizeOfEmptyList);
    say(owner, command);
    EXPECT_EQ(read(owner, 66).size(), 66U);
}

/// While it exists, the process can open no file more.
class NoDescriptors {
public:
    NoDescriptors() {
        getrlimit(RLIMIT_NOFILE, &before);
        rlimit none = before;
        none.rlim_cur = static_cast<rlim_t>(FileDescriptor(dup(0)).get()); // the lowest free number
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before); }
    NoDescriptors(const NoDescriptors&) = delete;
    NoDescriptors& operator=(const NoDescriptors&) = delete;

private:
    rlimit before{};
};

TEST(Server, WithoutADescriptorForAHostItHangsUpOnTheOldestSilentOne) {
    Clock clock;
    const RunningServer server(clock.limits());
    const FileDescriptor silent = server.connect();
    EXPECT_EQ(ask(server, listRequest).size(), sizeOfList);
    const FileDescriptor client = newSocket();
    const NoDescriptors none;
    server.connect(client);
    say(client, listRequest);
    EXPECT_EQ(readToEnd(client).size(), sizeOfList);
    EXPECT_TRUE(isHungUpOn(silent));
}

TEST(Server, WithoutADescriptorForItsOnlyHostItSleepsAndTriesAgain) {
    ServerLimits limits;
    std::atomic<int> looks{0};
    limits.clock = [&] {
        ++looks;
        return std::chrono::steady_clock::now();
    };
    RunningServer server(limits);
    const SleepingThread thread(server.threadId.get_future().get());
    const FileDescriptor client = newSocket();
    {
        const NoDescriptors none;
        server.connect(client);
        say(client, listRequest);
        while (looks < 3) { // one before the host came, one when it did, one before the next wait
            std::this_thread::yield();
        }
        EXPECT_TRUE(thread.waitUntilAsleep());
    }
    EXPECT_EQ(readToEnd(client).size(), sizeOfList);
}

TEST(Server, WithoutAListenerItEndsWithItsLastHost) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    Server server(exportedEcho());
    server.plugInto(FileDescriptor(ends[0]));
    const FileDescriptor stop(eventfd(0, EFD_CLOEXEC));
    FileDescriptor(ends[1]).reset();
    EXPECT_EQ(server.run(stop), Server::End::NothingLeft);
}

TEST(Server, AStopEndsItWithItsHostStillThere) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    const FileDescriptor host(ends[1]);
    Server server(exportedEcho());
    server.plugInto(FileDescriptor(ends[0]));
    EXPECT_EQ(server.run(FileDescriptor(eventfd(1, EFD_CLOEXEC))), Server::End::Stopped);
}

#ifdef USBIP_TOOL
TEST(Server, TheStandardToolListsTheDevice) {
    const RunningServer server;
    const std::string command = std::string(USBIP_TOOL) + " --tcp-port " +
                                std::to_string(server.port) + " list -r 127.0.0.1 2>&1";
    const std::unique_ptr<FILE, int (*)(FILE*)> tool(popen(command.c_str(), "r"), pclose);
    ASSERT_NE(tool, nullptr);
    std::string listed;
    std::array<char, 256> line{};
    while (fgets(line.data(), line.size(), tool.get()) != nullptr) {
        listed += line.data();
    }
    EXPECT_NE(listed.find("1-1"), std::string::npos) << listed;
    EXPECT_NE(listed.find("(1209:0001)"), std::string::npos) << listed;
}
#endif

} // namespace
