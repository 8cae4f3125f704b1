#include "support/Process.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

using testing::HasSubstr;
using testing::StartsWith;

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
        EXPECT_NE(result.status, 0) << command;
        EXPECT_THAT(result.errors, HasSubstr("only 'run' has it")) << command;
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
