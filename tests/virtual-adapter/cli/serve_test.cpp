// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/Process.hpp"
#include "usbip/FileDescriptor.hpp"
#include "usbip/ListeningSocket.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <unistd.h>

using testing::HasSubstr;
using testing::StartsWith;
using usbip::FileDescriptor;

namespace {

TEST(Serve, ATerminationSignalEndsItWithSuccess) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        BackgroundProcess server(
            {VIRTUAL_ADAPTER, "serve", "--port", "0", "--model", "high-speed", "--serial", "VA-7"});
        EXPECT_THAT(server.nextLine(), StartsWith("Serving the high-speed adapter VA-7"));
        server.send(signal);
        EXPECT_EQ(server.wait(), 0) << signal;
    }
}

/// Starts `serve` from a shell that ignores some signals, as nohup does.
BackgroundProcess serveIgnoring(const std::string& signals) {
    return BackgroundProcess(
        {"sh", "-c", "trap '' " + signals + "; exec \"$0\" serve --port 0", VIRTUAL_ADAPTER});
}

sockaddr_in loopback(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Whether a server at this port answers a list request.
bool answers(uint16_t port) {
    const FileDescriptor client(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_in address = loopback(port);
    const timeval patience{30, 0};
    setsockopt(client.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    const std::array<uint8_t, 8> listRequest{0x01, 0x11, 0x80, 0x05, 0, 0, 0, 0};
    std::array<uint8_t, 1> reply{};
    return connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
               0 &&
           send(client.get(), listRequest.data(), listRequest.size(), MSG_NOSIGNAL) == 8 &&
           recv(client.get(), reply.data(), reply.size(), 0) == 1;
}

/// Whether the server whose first line this is does.
bool answers(const std::string& firstLine) {
    return answers(static_cast<uint16_t>(std::stoul(firstLine.substr(firstLine.rfind(' ')))));
}

TEST(Serve, ASignalThatItsStarterIgnoresDoesNotEndIt) {
    BackgroundProcess server = serveIgnoring("HUP INT");
    const std::string firstLine = server.nextLine();
    server.send(SIGHUP);
    server.send(SIGINT);
    EXPECT_TRUE(answers(firstLine)) << firstLine;
    server.send(SIGTERM);
    EXPECT_EQ(server.wait(), 0);
}

TEST(Serve, ItServesOnWhenItsStarterIgnoresEverySignal) {
    BackgroundProcess server = serveIgnoring("HUP INT TERM");
    const std::string firstLine = server.nextLine();
    server.send(SIGTERM);
    EXPECT_TRUE(answers(firstLine)) << firstLine;
}

/// `serve` from a shell that redirects its streams.
BackgroundProcess serveWithStreams(const std::string& port, const std::string& redirections) {
    return BackgroundProcess(
        {"sh", "-c", "exec \"$0\" serve --port " + port + " " + redirections, VIRTUAL_ADAPTER});
}

TEST(Serve, ItServesWithAllItsStandardStreamsClosed) {
    // Holds the port; without listening it does not keep another from doing so.
    const FileDescriptor holder(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    setsockopt(holder.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const sockaddr_in address = loopback(0);
    ASSERT_EQ(bind(holder.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    const uint16_t port = usbip::portOf(holder);

    BackgroundProcess server = serveWithStreams(std::to_string(port), "<&- >&- 2>&-");
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    bool answered = false;
    while (!answered && std::chrono::steady_clock::now() < limit) {
        answered = answers(port);
    }
    EXPECT_TRUE(answered);
    server.send(SIGTERM);
    EXPECT_EQ(server.wait(), 0);
}

TEST(Serve, ItEndsWhenItsLineCannotBeWritten) {
    BackgroundProcess server = serveWithStreams("0", "2>&1 >/dev/full");
    EXPECT_THAT(server.nextLine(), HasSubstr("cannot write \"Serving the full-speed adapter"));
    EXPECT_EQ(server.wait(), 1);
}

TEST(Serve, ItEndsWithAWordWhenNobodyReadsItsLineAnyMore) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    close(ends[0]);
    const FileDescriptor unread(ends[1]);
    BackgroundProcess server = serveWithStreams("0", "2>&1 >&" + std::to_string(unread.get()));
    EXPECT_THAT(server.nextLine(), HasSubstr("Broken pipe"));
    EXPECT_EQ(server.wait(), 1);
}

TEST(Serve, AnyAddressButTheLoopbackBringsAWarning) {
    BackgroundProcess everywhere = serveWithStreams("0", "--address 0.0.0.0 2>&1");
    EXPECT_EQ(everywhere.nextLine(), "veltra-virtual-adapter: warning: whoever reaches 0.0.0.0 can "
                                     "take the adapter: USB/IP asks nobody for a password\n");
    EXPECT_THAT(everywhere.nextLine(), StartsWith("Serving"));
    BackgroundProcess here = serveWithStreams("0", "--address 127.0.0.2 2>&1");
    EXPECT_THAT(here.nextLine(), StartsWith("Serving"));
}

TEST(Serve, AnAddressMustBeNumeric) {
    for (const std::string address : {"*", "0", "localhost", ""}) {
        const ProcessResult result =
            runProcess({VIRTUAL_ADAPTER, "serve", "--port", "0", "--address", address});
        EXPECT_EQ(result.status, 125) << address;
        EXPECT_THAT(result.errors, HasSubstr("--address: expected a numeric address: 127.0.0.1"))
            << address;
    }
}

TEST(Serve, APortMustBeANumber) {
    for (const std::string port : {"", "65536", "-1", "+1", "0x10", "1 ", "usbip"}) {
        BackgroundProcess server(
            {"sh", "-c", "exec \"$0\" serve --port \"$1\" 2>&1", VIRTUAL_ADAPTER, port});
        EXPECT_THAT(server.nextLine(), HasSubstr("--port: expected a TCP port")) << port;
        EXPECT_EQ(server.wait(), 125) << port;
    }
}

TEST(Serve, AnAddressThatIsNotItsOwnIsAnError) {
    const ProcessResult result =
        runProcess({VIRTUAL_ADAPTER, "serve", "--address", "192.0.2.1", "--port", "0"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("cannot listen on 192.0.2.1"));
}

TEST(Serve, AFaultOfTheHostIsRefused) {
    for (const std::string command : {"serve", "attach"}) {
        const ProcessResult result =
            runProcess({VIRTUAL_ADAPTER, command, "--fault", "no-permission"});
        EXPECT_EQ(result.status, 125) << command;
        EXPECT_THAT(result.errors, HasSubstr("only 'run' and 'serve --socket' have it")) << command;
    }
}

TEST(Serve, AFaultOfTheAdapterIsTaken) {
    for (const std::string fault : {"late-response", "unplug", "notification-storm"}) {
        BackgroundProcess server({VIRTUAL_ADAPTER, "serve", "--port", "0", "--fault", fault});
        const std::string firstLine = server.nextLine();
        EXPECT_THAT(firstLine, StartsWith("Serving")) << fault;
        EXPECT_TRUE(answers(firstLine)) << fault;
    }
}

TEST(Attach, HelpNamesTheFaultsOfTheAdapterAlone) {
    const ProcessResult result = runProcess({VIRTUAL_ADAPTER, "attach", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("flipped-bit, stuck-bus, write-protected\n"));
}

TEST(Attach, WithoutTheKernelsModuleTheMessageSaysHowToLoadIt) {
    if (std::filesystem::exists("/sys/devices/platform/vhci_hcd.0")) {
        GTEST_SKIP() << "this kernel has the module";
    }
    const ProcessResult result = runProcess({VIRTUAL_ADAPTER, "attach"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("modprobe vhci-hcd"));
}

} // namespace
