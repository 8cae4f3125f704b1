#include "support/Process.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using testing::HasSubstr;

namespace {

TEST(Serve, ATerminationSignalEndsItWithSuccess) {
    const std::string log = testing::TempDir() + "/serve.log";
    const ProcessResult result =
        runProcess({"sh", "-c",
                    "\"$0\" serve --port 0 --model high-speed --serial VA-7 > \"$1\" & server=$!\n"
                    "until grep -q Serving \"$1\"; do sleep 0.05; done\n"
                    "kill -TERM $server && wait $server && cat \"$1\"",
                    VIRTUAL_ADAPTER, log});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("Serving the high-speed adapter VA-7"));
    std::filesystem::remove(log);
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
