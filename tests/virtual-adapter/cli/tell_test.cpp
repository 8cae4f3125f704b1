// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

const std::string full =
    listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001");

TEST(Tell, UnderRunTheSocketIsKnown) {
    const ProcessResult result =
        run({}, {"sh", "-c",
                 "\"$0\" list; \"$1\" tell unplug && \"$0\" list; \"$1\" tell plug && \"$0\" list",
                 hidProbe, virtualAdapter});
    EXPECT_EQ(result.output, full + "list: nothing\n" + full);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.status, 0);
}

TEST(Tell, ASocketIsNamed) {
    const TemporaryDirectory directory;
    const std::string path = directory.path() / "bench";
    BackgroundProcess server(
        {virtualAdapter, "serve", "--socket", path, "--adapter", "A", "--adapter", "B"});
    EXPECT_EQ(server.nextLine(),
              "Serving the full-speed adapter A, the full-speed adapter B at " + path + "\n");
    const Arguments tell{virtualAdapter, "tell", "--socket", path};
    EXPECT_EQ(runProcess(tell + Arguments{"--serial", "A", "unplug"}).status, 0);
    EXPECT_EQ(runProcess({virtualAdapter, "run", "--join", path, "--", hidProbe, "list"}).output,
              "list: 1-2" +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | B").substr(9));
    const ProcessResult either = runProcess(tell + Arguments{"plug"});
    EXPECT_EQ(either.status, 1);
    EXPECT_EQ(either.errors, "veltra-virtual-adapter: there are several adapters; say which: "
                             "--serial TEXT\n");
    const ProcessResult neither = runProcess(tell + Arguments{"--serial", "C", "plug"});
    EXPECT_EQ(neither.status, 1);
    EXPECT_EQ(neither.errors, "veltra-virtual-adapter: no adapter has the serial number C\n");
}

TEST(Tell, AResetBeginsAnewForAProgramThatHasTheAdapterOpen) {
    const TemporaryDirectory directory;
    // The third request takes the adapter away, unless it begins anew between them.
    const std::string request = "write 00 17 00 01 00 07 04 01";
    const std::string fifo = directory.path() / "go";
    const ProcessResult result = run(
        {"--fault", "unplug"},
        {"sh", "-c",
         "mkfifo \"$2\"; \"$0\" 'open 1-1:1.0' '" + request + "' 'read 1000' \"wait $2\" '" +
             request + "' '" + request +
             "' close | (read opened; read written; read answered; \"$1\" tell reset; : >\"$2\"; "
             "cat)",
         hidProbe, virtualAdapter, fifo});
    EXPECT_EQ(result.output, "write: 8\nwrite: 8\n");
    EXPECT_EQ(result.errors, "");
}

TEST(Tell, WithoutAnAdapterTheMessageSaysWhatToType) {
    const ProcessResult nowhere =
        runProcess({virtualAdapter, "tell", "reset"}, {"VELTRA_VIRTUAL_ADAPTER_SOCKET"});
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_EQ(nowhere.errors,
              "veltra-virtual-adapter: no adapter is known here: name its socket with --socket "
              "PATH, or tell it under 'run', where VELTRA_VIRTUAL_ADAPTER_SOCKET does\n");
    const ProcessResult gone =
        runProcess({virtualAdapter, "tell", "--socket", "/nonexistent", "reset"});
    EXPECT_EQ(gone.status, 1);
    EXPECT_EQ(gone.errors, "veltra-virtual-adapter: no adapter at /nonexistent: No such file or "
                           "directory\n");
}

TEST(Tell, AnUnknownStimulusIsRefused) {
    const ProcessResult result = run({}, {virtualAdapter, "tell", "explode", "now"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("'explode'"));
    EXPECT_EQ(runProcess({virtualAdapter, "tell"}).status, 125);
}

} // namespace
