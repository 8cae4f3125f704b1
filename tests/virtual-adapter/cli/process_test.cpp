// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/AdapterWatch.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <ostream>

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

const std::string openIt = "open 1-1:1.0";
const std::string writeIt = "write 00 17 00 01 00 07 04 01";
const std::string readNow = "read 0";
const std::string response = "read: 64 37 00 01 00 07 04 00 00 07 56 65 6c 74 72 61\n";
/// Prints where the socket is before the program starts.
const std::string thenProbe = "echo $VELTRA_VIRTUAL_ADAPTER_SOCKET; exec \"$0\" \"$@\"";

std::string withoutLineEnd(std::string line) {
    line.erase(line.find('\n'));
    return line;
}

/// Programs whose adapters lie in a directory of the test's own, so that what is left behind shows.
class RunProcess : public testing::Test {
protected:
    RunProcess() {
        setenv("XDG_RUNTIME_DIR", own.path().c_str(), 1);
        EXPECT_EQ(mkfifo(signal.c_str(), S_IRWXU), 0);
    }
    ~RunProcess() override { unsetenv("XDG_RUNTIME_DIR"); }

    /// `run` of the probe that says where its socket is.
    static BackgroundProcess probe(const Arguments& calls) {
        return BackgroundProcess(
            Arguments{virtualAdapter, "run", "--", "sh", "-c", thenProbe, hidProbe} + calls);
    }

    /// Whether the adapter ends and takes its directory with it.
    [[nodiscard]] bool leavesNothing(const WatchedProcess& adapter) const {
        return adapter.hasEnded() && fs::is_empty(own.path());
    }

    /// Lets a program go on that waits for it.
    void giveSignal() const { std::ofstream(signal).close(); }

    TemporaryDirectory own;
    TemporaryDirectory files;
    const std::string signal = files.path() / "signal";
};

TEST_F(RunProcess, TheProgramHasTheProcessIdOfRun) {
    BackgroundProcess program(
        {"sh", "-c", "echo $$; exec \"$0\" run -- sh -c 'echo $$'", virtualAdapter});
    const std::string identifier = program.nextLine();
    EXPECT_EQ(program.nextLine(), identifier);
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(RunProcess, WhatOneProgramWritesTheNextOneReads) {
    // The supply, the pull-ups and the controller; then two bytes into the EEPROM.
    const Arguments first{openIt,
                          "write 00 1f 00 01 00 05 04 e4 0c 01",
                          "write 00 1b 00 02 00 02 08 00 02",
                          "write 00 2b 00 03 00 01 09 00 a0 86 01 00 00",
                          "write 00 43 00 04 00 04 09 00 02 00 51 02 40 01 00 00 00 ca fe",
                          "read 1000",
                          "read 1000",
                          "read 1000",
                          "read 1000"};
    // Still busy with the write cycle, it does not acknowledge at first.
    const std::string readIt = "write 00 3b 00 05 00 05 09 00 02 00 51 02 40 01 00 00 00";
    Arguments second{openIt};
    for (int attempt = 0; attempt < 10; ++attempt) {
        second.insert(second.end(), {readIt, "read 1000"});
    }
    const auto quoted = [](const Arguments& calls) {
        std::string text = "\"$0\"";
        for (const std::string& call : calls) {
            text += " '" + call + "'";
        }
        return text;
    };
    const ProcessResult result =
        run({}, {"sh", "-c", quoted(first) + "; " + quoted(second), hidProbe});
    EXPECT_THAT(result.output, HasSubstr("05 00 05 09 00 00 00 02 00 ca fe\n"));
}

struct Ending {
    const char* name;
    std::string lastCall;
    int status;
};

void PrintTo(const Ending& ending, std::ostream* output) {
    *output << ending.name;
}

class ProgramThatEnds : public RunProcess, public testing::WithParamInterface<Ending> {};

TEST_P(ProgramThatEnds, LeavesNothing) {
    BackgroundProcess program = probe({openIt, writeIt, "wait " + signal, GetParam().lastCall});
    const std::string path = withoutLineEnd(program.nextLine());
    const WatchedProcess adapter(adapterAt(path));
    giveSignal();
    EXPECT_EQ(program.wait(), GetParam().status);
    EXPECT_TRUE(leavesNothing(adapter));
}

INSTANTIATE_TEST_SUITE_P(
    By, ProgramThatEnds,
    testing::Values(Ending{"Closing", "close", 0}, Ending{"LeavingItOpen", "leave", 0},
                    Ending{"BeingKilled", "raise " + std::to_string(SIGKILL), -SIGKILL},
                    Ending{"Crashing", "raise " + std::to_string(SIGSEGV), -SIGSEGV},
                    Ending{"ShuttingHidapiDownWhileItIsOpen", "exit", -SIGABRT},
                    Ending{"Forking", "fork 3", 0}),
    [](const auto& ending) { return std::string(ending.param.name); });

TEST_F(RunProcess, WhoeverIsKilledHasClosedTheAdapter) {
    EXPECT_EQ(run({}, {"sh", "-c",
                       "\"$0\" '" + openIt + "' '" + writeIt + "' 'raise 9'; \"$0\" '" + openIt +
                           "' 'read 0'",
                       hidProbe})
                  .output,
              "open: ok\nwrite: 8\nopen: ok\nread: 0\n");
}

TEST_F(RunProcess, AStoppedProgramKeepsTheAdapterOpen) {
    BackgroundProcess program =
        probe({openIt, "raise " + std::to_string(SIGSTOP), writeIt, readNow});
    const std::string path = withoutLineEnd(program.nextLine());
    const WatchedProcess adapter(adapterAt(path));
    EXPECT_EQ(program.nextLine(), "open: ok\n");
    EXPECT_EQ(runProcess({virtualAdapter, "run", "--join", path, "--", hidProbe, openIt}).output,
              "open: null\n");
    program.send(SIGCONT);
    EXPECT_EQ(program.nextLine(), "write: 8\n");
    EXPECT_EQ(program.nextLine(), response);
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(leavesNothing(adapter));
}

TEST_F(RunProcess, ADaemonThatHasClosedEveryDescriptorFindsTheAdapter) {
    const std::string fifo = files.path() / "output";
    ASSERT_EQ(mkfifo(fifo.c_str(), S_IRWXU), 0);
    BackgroundProcess program = probe({openIt, "daemon " + fifo, writeIt, "close", "list", openIt,
                                       writeIt, readNow, "close", "exit"});
    const std::string path = withoutLineEnd(program.nextLine());
    const WatchedProcess adapter(adapterAt(path));
    EXPECT_EQ(program.nextLine(), "open: ok\n");
    EXPECT_EQ(program.wait(), 0);
    std::ifstream daemon(fifo);
    const std::string output{std::istreambuf_iterator<char>(daemon), {}};
    EXPECT_EQ(output,
              "write: -1\n" +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001") +
                  "open: ok\nwrite: 8\n" + response + "exit: 0\n");
    EXPECT_TRUE(leavesNothing(adapter));
}

TEST_F(RunProcess, AKilledAdapterIsUnpluggedAndSweptUpByTheNextStart) {
    BackgroundProcess program =
        probe({openIt, "wait " + signal, writeIt, readNow, "list", "close", "exit"});
    const std::string path = withoutLineEnd(program.nextLine());
    const pid_t adapter = adapterAt(path);
    const WatchedProcess watched(adapter);
    EXPECT_EQ(program.nextLine(), "open: ok\n");
    kill(adapter, SIGKILL);
    ASSERT_TRUE(watched.hasEnded());
    giveSignal();
    EXPECT_EQ(program.nextLine(), "write: -1\n");
    EXPECT_EQ(program.nextLine(), "read: -1\n");
    EXPECT_EQ(program.nextLine(), "list: nothing\n");
    EXPECT_EQ(program.nextLine(), "exit: 0\n");
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(fs::exists(path));
    EXPECT_EQ(run({}, {"true"}).status, 0);
    EXPECT_FALSE(fs::exists(fs::path(path).parent_path()));
}

TEST_F(RunProcess, AStoppedAdapterAnswersWhenItGoesOn) {
    BackgroundProcess program = probe({openIt, "wait " + signal, writeIt, readNow, "close"});
    const pid_t adapter = adapterAt(withoutLineEnd(program.nextLine()));
    EXPECT_EQ(program.nextLine(), "open: ok\n");
    kill(adapter, SIGSTOP);
    giveSignal();
    kill(adapter, SIGCONT);
    EXPECT_EQ(program.nextLine(), "write: 8\n");
    EXPECT_EQ(program.nextLine(), response);
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(RunProcess, TwoHundredShortProcessesUseOneAdapterAndLeaveNothing) {
    constexpr int processes = 200;
    BackgroundProcess program({virtualAdapter, "run", "--", "sh", "-c",
                               "exec 2>&1; echo $VELTRA_VIRTUAL_ADAPTER_SOCKET; cat \"$1\"; i=0; "
                               "while [ $i -lt " +
                                   std::to_string(processes) + " ]; do \"$0\" '" + openIt + "' '" +
                                   writeIt + "' 'read 0' close; i=$((i+1)); done",
                               hidProbe, signal});
    const WatchedProcess adapter(adapterAt(withoutLineEnd(program.nextLine())));
    giveSignal();
    for (int i = 0; i < processes; ++i) {
        ASSERT_EQ(program.nextLine(), "open: ok\n") << i;
        ASSERT_EQ(program.nextLine(), "write: 8\n") << i;
        ASSERT_EQ(program.nextLine(), response) << i;
    }
    EXPECT_EQ(program.nextLine(), "");
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(leavesNothing(adapter));
}

TEST_F(RunProcess, TheAdapterHoldsNothingOfTheProgram) {
    BackgroundProcess program(
        {"sh", "-c",
         "exec \"$0\" run -- sh -c 'echo $VELTRA_VIRTUAL_ADAPTER_SOCKET; readlink /proc/$$/fd/1; "
         "cat \"$0\"' \"$1\" 2>&1 5>&1",
         virtualAdapter, signal});
    const pid_t adapter = adapterAt(withoutLineEnd(program.nextLine()));
    const std::string pipeOfProgram = withoutLineEnd(program.nextLine());
    EXPECT_THAT(pipeOfProgram, StartsWith("pipe:"));
    const fs::path descriptors = "/proc/" + std::to_string(adapter) + "/fd";
    for (const auto& entry : fs::directory_iterator(descriptors)) {
        // The test's own connection may go meanwhile.
        std::error_code gone;
        EXPECT_NE(fs::read_symlink(entry, gone), pipeOfProgram) << entry;
    }
    EXPECT_EQ(fs::read_symlink(descriptors / "0"), "/dev/null");
    EXPECT_EQ(fs::read_symlink(descriptors / "1"), "/dev/null");
    EXPECT_NE(getsid(adapter), getsid(0)) << "no signal of a terminal reaches it";
    giveSignal();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(WatchedProcess(adapter).hasEnded());
}

TEST_F(RunProcess, AnInnerRunHasAnAdapterOfItsOwn) {
    EXPECT_EQ(play({"--serial", "outer"}, {openIt, "list"}),
              "open: ok\n" +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | outer"));
    EXPECT_EQ(run({"--serial", "outer"},
                  {"sh", "-c", "\"$0\" list; \"$1\" run --serial inner -- \"$0\" list; \"$0\" list",
                   hidProbe, virtualAdapter})
                  .output,
              listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | outer") +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | inner") +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | outer"));
}

/// `run` where file systems of the test's own stand in for /mnt and /tmp.
class RunWithoutRoom : public RunProcess {
protected:
    RunWithoutRoom() { setenv("XDG_RUNTIME_DIR", "/mnt", 1); }

    void SetUp() override {
        if (runProcess(behindMounts(fullMnt, {virtualAdapter, "--version"})).status != 0) {
            GTEST_SKIP() << "this machine grants no namespace of mounts";
        }
    }

    static Arguments behindMounts(const std::string& mounts, const Arguments& program) {
        return Arguments{"unshare", "--map-root-user",
                         "--mount", "sh",
                         "-c",      mounts + " && exec \"$0\" \"$@\""} +
               program;
    }

    static inline const std::string fullMnt = "mount -t tmpfs -o nr_inodes=1 none /mnt";
};

TEST_F(RunWithoutRoom, AFullDirectoryIsReplaced) {
    const ProcessResult result = runProcess(
        behindMounts(fullMnt, {virtualAdapter, "run", "--", "sh", "-c",
                               "echo $VELTRA_VIRTUAL_ADAPTER_SOCKET; exec \"$0\" list", hidProbe}));
    EXPECT_THAT(result.output, StartsWith("/tmp/veltra-virtual-adapter-"));
    EXPECT_THAT(result.output, HasSubstr("VA-0001"));
    EXPECT_EQ(result.errors, "");
}

TEST_F(RunWithoutRoom, WithoutAPlaceTheMessageSaysWhatToType) {
    const ProcessResult result = runProcess(behindMounts(
        fullMnt + " && mount -t tmpfs -o ro none /tmp", {virtualAdapter, "run", "--", "true"}));
    EXPECT_EQ(result.status, 125);
    EXPECT_EQ(result.errors,
              "veltra-virtual-adapter: no place for a socket (/mnt: No space left on "
              "device, /tmp: Read-only file system); name a directory of yours: "
              "XDG_RUNTIME_DIR=DIRECTORY\n");
}

TEST_F(RunProcess, AMissingDirectoryIsReplaced) {
    setenv("XDG_RUNTIME_DIR", "/nonexistent", 1);
    const ProcessResult result = run({}, {"printenv", "VELTRA_VIRTUAL_ADAPTER_SOCKET"});
    EXPECT_THAT(result.output, StartsWith("/tmp/veltra-virtual-adapter-"));
    EXPECT_EQ(result.errors, "");
}

TEST_F(RunProcess, AProgramWithASanitizerOfItsOwnIsStarted) {
    if (*sanitizerRuntime != 0) {
        GTEST_SKIP() << "this build's own comes first";
    }
    const ProcessResult result = run({}, {SANITIZED_PROBE, openIt, writeIt, readNow, "close"});
    EXPECT_EQ(result.output, "open: ok\nwrite: 8\n" + response) << result.errors;
    EXPECT_EQ(runProcess({virtualAdapter, "run", "--", "printenv", "ASAN_OPTIONS"},
                         {"ASAN_OPTIONS=verify_asan_link_order=1:color=never"})
                  .output,
              "verify_asan_link_order=1:color=never\n")
        << "what the user has said holds";
}

TEST_F(RunProcess, TwoTerminalsUseOneAdapter) {
    const std::string path = own.path() / "bench";
    BackgroundProcess server({virtualAdapter, "serve", "--socket", path, "--serial", "S"});
    EXPECT_EQ(server.nextLine(), "Serving the full-speed adapter S at " + path + "\n");
    const Arguments join{virtualAdapter, "run", "--join", path, "--", hidProbe};
    BackgroundProcess first(join + Arguments{openIt, writeIt, "wait " + signal, readNow, "close"});
    EXPECT_EQ(first.nextLine(), "open: ok\n");
    EXPECT_EQ(first.nextLine(), "write: 8\n");
    EXPECT_EQ(runProcess(join + Arguments{"list", openIt}).output,
              listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | S") +
                  "open: null\n");
    giveSignal();
    EXPECT_EQ(first.nextLine(), response);
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(runProcess(join + Arguments{openIt}).output, "open: ok\n");
    server.send(SIGTERM);
    EXPECT_EQ(server.wait(), 0);
    EXPECT_FALSE(fs::exists(path));
    const ProcessResult late = runProcess(join + Arguments{openIt});
    EXPECT_EQ(late.status, 125);
    EXPECT_EQ(late.errors, "veltra-virtual-adapter: no adapter at " + path +
                               ": No such file or directory; start one: veltra-virtual-adapter "
                               "serve --socket " +
                               path + "\n");
}

TEST_F(RunProcess, ASocketThatNobodyServesAnyMoreIsTakenOver) {
    const std::string path = own.path() / "bench";
    {
        BackgroundProcess killed({virtualAdapter, "serve", "--socket", path});
        EXPECT_THAT(killed.nextLine(), StartsWith("Serving"));
    }
    EXPECT_TRUE(fs::exists(path));
    BackgroundProcess server({virtualAdapter, "serve", "--socket", path});
    EXPECT_THAT(server.nextLine(), StartsWith("Serving"));
    const ProcessResult second = runProcess({virtualAdapter, "serve", "--socket", path});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.errors, "veltra-virtual-adapter: cannot listen on " + path +
                                 ": it is there already, and in use\n");
}

TEST_F(RunProcess, AJoinedAdapterIsWhatItIs) {
    for (const std::string option :
         {"--model=full-speed", "--serial=X", "--fault=none", "--fault-delay=1", "--latency=1",
          "--board=" FACTORY_BOARD, "--adapter=X"}) {
        const ProcessResult result = run({"--join", "/nonexistent", option}, {"true"});
        EXPECT_EQ(result.status, 125) << option;
        EXPECT_THAT(result.errors, HasSubstr("excludes --join")) << option;
    }
}

TEST_F(RunProcess, SeveralAdaptersAreChosenByTheirSerialNumbers) {
    EXPECT_EQ(play({"--adapter", "A", "--adapter", "B"},
                   {"list", "open 1-1:1.0", "open 1-2:1.0", writeIt, readNow, "open 1-3:1.0"}),
              listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | A") + "list: 1-2" +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | B").substr(9) +
                  "open: ok\nopen: ok\nwrite: 8\n" + response + "open: null\n");
    const ProcessResult twice = run({"--adapter", "A", "--adapter", "A"}, {"true"});
    EXPECT_EQ(twice.status, 125);
    EXPECT_EQ(twice.errors, "veltra-virtual-adapter: two adapters have the serial number A\n");
    EXPECT_THAT(run({"--adapter", ""}, {"true"}).errors,
                StartsWith("veltra-virtual-adapter: run: --adapter: expected UTF-8 text of"));
}

} // namespace
