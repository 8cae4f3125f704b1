#include "support/Process.hpp"
#include "usbip/FileDescriptor.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <csignal>
#include <filesystem>

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

/// Whether the server whose first line this is answers a list request.
bool answers(const std::string& firstLine) {
    const FileDescriptor client(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port =
        htons(static_cast<uint16_t>(std::stoul(firstLine.substr(firstLine.rfind(' ')))));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const timeval patience{30, 0};
    setsockopt(client.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    const std::array<uint8_t, 8> listRequest{0x01, 0x11, 0x80, 0x05, 0, 0, 0, 0};
    std::array<uint8_t, 1> reply{};
    return connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
               0 &&
           send(client.get(), listRequest.data(), listRequest.size(), MSG_NOSIGNAL) == 8 &&
           recv(client.get(), reply.data(), reply.size(), 0) == 1;
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
        EXPECT_THAT(result.errors, HasSubstr("only 'run' has it")) << command;
    }
}

TEST(Serve, HelpNamesTheFaultsOfTheAdapterAlone) {
    for (const std::string command : {"serve", "attach"}) {
        const ProcessResult result = runProcess({VIRTUAL_ADAPTER, command, "--help"});
        EXPECT_EQ(result.status, 0) << command;
        EXPECT_THAT(result.output, HasSubstr("stall, over-long-count, notification-storm\n"))
            << command;
    }
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
