// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <csignal>
#include <fstream>

#include <gmock/gmock.h>

using testing::EndsWith;

namespace {

const std::string openIt = "open 1-1:1.0";
const std::string write1 = "write 00 17 00 01 00 07 04 01";
const std::string write2 = "write 00 17 00 02 00 07 04 02";
const std::string readNow = "read 30000";

class Replay : public testing::Test {
protected:
    void capture(const Arguments& options, const Arguments& calls) {
        runProcess(Arguments{virtualAdapter, "run"} + options + Arguments{"--", hidProbe} + calls,
                   {"LD_PRELOAD=" + preloadList(CAPTURE_LIBRARY), "VELTRA_CAPTURE=" + path});
    }

    ProcessResult replay(const Arguments& program) const {
        return runProcess(Arguments{virtualAdapter, "replay", path, "--"} + program);
    }

    TemporaryDirectory directory;
    std::string path = directory.path() / "file.pcapng";
};

TEST_F(Replay, AProgramFindsTheAdapterOfTheCapture) {
    const Arguments calls{"list", openIt, write1, readNow, write2, readNow, "close", "exit"};
    const Arguments options{"--model", "high-speed", "--serial", "BENCH-7"};
    capture(options, calls);
    const ProcessResult result = replay(Arguments{hidProbe} + calls);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, play(options, calls));
}

TEST_F(Replay, TheProgramsExitStatusIsItsOwn) {
    capture({}, {openIt, write1, readNow});
    EXPECT_EQ(replay({hidProbe, openIt, write1, readNow, "status 7"}).status, 7);
    EXPECT_EQ(replay({hidProbe, openIt, write1, readNow, "exit"}).status, -SIGABRT);
    const ProcessResult missing = replay({"/no/such/program"});
    EXPECT_EQ(missing.status, 127);
    EXPECT_EQ(missing.errors, "veltra-virtual-adapter: cannot start /no/such/program: No such file "
                              "or directory\n");
}

TEST_F(Replay, ADifferenceEndsIt) {
    capture({}, {openIt, write1, readNow});
    const ProcessResult result =
        replay({"/bin/sh", "-c", "exec '" + hidProbe + "' '" + openIt + "' '" + write2 + "'"});
    EXPECT_EQ(result.status, 125);
    EXPECT_EQ(result.errors,
              "veltra-virtual-adapter: replay: request 1 was not recorded\n"
              "  sent:     command 0x0407, payload 02\n"
              "  recorded: command 0x0407, payload 01, answered with status 0x0000\n");
}

TEST_F(Replay, AProgramThatSendsLessIsADifference) {
    capture({}, {openIt, write1, readNow});
    const ProcessResult result = replay({hidProbe, "list"});
    EXPECT_EQ(result.status, 125);
    EXPECT_EQ(result.errors,
              "veltra-virtual-adapter: replay: the program ended before it sent all that was "
              "recorded\n  recorded: command 0x0407, payload 01, answered with status 0x0000\n");
}

TEST_F(Replay, ASignalReachesTheProgram) {
    capture({}, {openIt, write1, readNow});
    // The shell's trap shows that it was the program that got it.
    const ProcessResult result =
        replay({"/bin/sh", "-c",
                "trap 'echo caught; kill -KILL $$' TERM; kill -TERM $PPID; "
                "while :; do :; done"});
    EXPECT_EQ(result.output, "caught\n");
    EXPECT_EQ(result.status, -SIGKILL);
    EXPECT_EQ(result.errors, "");
}

TEST_F(Replay, WhatCannotBePlayedIsNamed) {
    EXPECT_EQ(replay({hidProbe}).errors, "veltra-virtual-adapter: cannot read " + path + "\n");
    std::ofstream(path) << "no capture, but long enough for one";
    const ProcessResult result = replay({hidProbe});
    EXPECT_EQ(result.errors,
              "veltra-virtual-adapter: " + path + ": this is not a pcapng capture\n");
    EXPECT_EQ(result.status, 125);
    EXPECT_THAT(runProcess({virtualAdapter, "replay", path, hidProbe}).errors,
                EndsWith("type: veltra-virtual-adapter replay FILE -- " + hidProbe + "\n"));
}

} // namespace
