#include "usbip/Server.hpp"

#include "usbip/EchoDevice.hpp"
#include "usbip/ListeningSocket.hpp"
#include "usbip/Messages.hpp"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

using namespace usbip;

namespace {

/// A server on a free loopback port, with a thread of its own.
class RunningServer {
public:
    RunningServer() : stop(eventfd(0, EFD_CLOEXEC)), server(exportedEcho()) {
        FileDescriptor listener = listeningSocket("127.0.0.1", 0);
        port = portOf(listener);
        server.listenOn(std::move(listener));
        thread = std::thread([this] { server.run(stop); });
    }

    ~RunningServer() {
        eventfd_write(stop.get(), 1);
        thread.join();
    }

    RunningServer(const RunningServer&) = delete;
    RunningServer& operator=(const RunningServer&) = delete;

    FileDescriptor connect() const {
        FileDescriptor client(socket(AF_INET, SOCK_STREAM, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(
            ::connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
            0);
        return client;
    }

    uint16_t port = 0;

private:
    FileDescriptor stop;
    Server server;
    std::thread thread;
};

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
    EXPECT_EQ(send(client.get(), request.data(), request.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(request.size()));
    return readToEnd(client);
}

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
