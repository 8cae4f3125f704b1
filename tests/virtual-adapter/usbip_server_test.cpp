#include "attach/ListeningSocket.hpp"
#include "attach/UsbIpServer.hpp"
#include "attach/Vhci.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <thread>

using namespace virtual_adapter;

namespace {

/// A server on a free loopback port, with a thread of its own.
class RunningServer {
public:
    RunningServer() : stop(eventfd(0, EFD_CLOEXEC)), server(AdapterSettings{}) {
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
    UsbIpServer server;
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

const Bytes listRequest{0x01, 0x11, 0x80, 0x05, 0, 0, 0, 0};

TEST(UsbIpServer, SeveralHostsMayAskOneAfterTheOther) {
    const RunningServer server;
    EXPECT_EQ(ask(server, listRequest).size(), 328U);
    EXPECT_EQ(ask(server, listRequest).size(), 328U);
}

TEST(UsbIpServer, AHostThatSpeaksAnotherProtocolIsHungUpOn) {
    const RunningServer server;
    const std::string words = "GET / HTTP/1.1\r\n\r\n";
    EXPECT_TRUE(ask(server, Bytes(words.begin(), words.end())).empty());
    EXPECT_EQ(ask(server, listRequest).size(), 328U);
}

TEST(UsbIpServer, ASilentHostKeepsNoOneElseWaiting) {
    const RunningServer server;
    const FileDescriptor silent = server.connect();
    EXPECT_EQ(ask(server, listRequest).size(), 328U);
}

TEST(UsbIpServer, WithoutAListenerItEndsWithItsLastHost) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    UsbIpServer server{AdapterSettings{}};
    server.plugInto(FileDescriptor(ends[0]));
    const FileDescriptor stop(eventfd(0, EFD_CLOEXEC));
    FileDescriptor(ends[1]).reset();
    EXPECT_EQ(server.run(stop), UsbIpServer::End::NothingLeft);
}

TEST(UsbIpServer, AStopEndsItWithItsHostStillThere) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    const FileDescriptor host(ends[1]);
    UsbIpServer server{AdapterSettings{}};
    server.plugInto(FileDescriptor(ends[0]));
    EXPECT_EQ(server.run(FileDescriptor(eventfd(1, EFD_CLOEXEC))), UsbIpServer::End::Stopped);
}

TEST(ListeningSocket, AnAddressMustBeNumeric) {
    EXPECT_THROW(listeningSocket("localhost", 0), std::runtime_error);
}

TEST(ListeningSocket, APortInUseIsAnError) {
    const FileDescriptor first = listeningSocket("127.0.0.1", 0);
    EXPECT_THROW(listeningSocket("127.0.0.1", portOf(first)), std::runtime_error);
}

#ifdef USBIP_TOOL
TEST(UsbIpServer, TheStandardToolListsTheAdapter) {
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

class VhciTest : public testing::Test {
protected:
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(directory / name) << text;
    }

    std::string read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(directory / name).rdbuf();
        return text.str();
    }

    std::string failureOfPlugIn() const {
        try {
            static_cast<void>(Vhci(directory).plugIn(FileDescriptor(), usbIdentities[0]));
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    const std::string columns = "hub port sta spd dev      sockfd local_busid\n";
    TemporaryDirectory own;
    const std::filesystem::path& directory = own.path();
};

TEST_F(VhciTest, TheFirstFreeHighSpeedPortIsTaken) {
    write("status", columns + "hs  0000 006 003 00010002 000003 1-1\n"
                              "hs  0008 004 000 00000000 000000 0-0\n"
                              "ss  0009 004 000 00000000 000000 0-0\n");
    write("attach", "");
    write("detach", "");
    const FileDescriptor socket(dup(0));
    EXPECT_EQ(Vhci(directory).plugIn(socket, usbIdentities[1]), 8U);
    EXPECT_EQ(read("attach"), "8 " + std::to_string(socket.get()) + " 65538 3");
    Vhci(directory).pullOut(8);
    EXPECT_EQ(read("detach"), "8");
}

TEST_F(VhciTest, WithoutTheModuleTheMessageSaysHowToLoadIt) {
    EXPECT_NE(failureOfPlugIn().find("modprobe vhci-hcd"), std::string::npos) << failureOfPlugIn();
}

TEST_F(VhciTest, WithoutAFreePortTheMessageSaysSo) {
    write("status", columns + "hs  0000 006 003 00010002 000003 1-1\n");
    EXPECT_NE(failureOfPlugIn().find("in use"), std::string::npos) << failureOfPlugIn();
}

TEST_F(VhciTest, WithoutTheRightTheMessageSaysWhoHasIt) {
    write("status", columns + "hs  0000 004 000 00000000 000000 0-0\n");
    write("attach", "");
    using std::filesystem::perms;
    std::filesystem::permissions(directory / "attach", perms::none);
    std::filesystem::permissions(directory,
                                 perms::owner_all | perms::group_exec | perms::others_exec);
    const uid_t user = geteuid();
    constexpr uid_t nobody = 65534; // root may write everything
    ASSERT_TRUE(user != 0 || seteuid(nobody) == 0);
    const std::string failure = failureOfPlugIn();
    ASSERT_EQ(seteuid(user), 0);
    EXPECT_NE(failure.find("root's rights"), std::string::npos) << failure;
}

} // namespace
