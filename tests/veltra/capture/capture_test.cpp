// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capture/readCapture.hpp"

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <sys/stat.h>

using testing::HasSubstr;

namespace {

namespace fs = std::filesystem;

const std::string veltra = VELTRA;
const std::string openIt = "open 1-1:1.0";
const std::string write1 = "write 00 17 00 01 00 07 04 01";
const std::string write2 = "write 00 17 00 02 00 07 04 01";
const Arguments calls{openIt, write1, "read 30000", "close"};
const std::string printed =
    "open: ok\nwrite: 8\nread: 64 37 00 01 00 07 04 00 00 07 56 65 6c 74 72 61\n";

class CaptureCommand : public testing::Test {
protected:
    [[nodiscard]] ProcessResult capture(const Arguments& program) const {
        return runProcess(Arguments{veltra, "capture", path, "--"} + program);
    }

    /// What was sent in reports, each by its transaction identifier.
    std::vector<int> sentRequests(bool mayBeCut = false) const {
        std::ifstream stream(path, std::ios::binary);
        const capture::Capture captured =
            capture::readCapture({std::istreambuf_iterator<char>(stream), {}});
        EXPECT_TRUE(mayBeCut || !captured.isCut);
        std::vector<int> identifiers;
        for (const capture::CapturedRecord& each : captured.records) {
            if (each.record.event == capture::UsbEvent::Submit && !each.record.isIn() &&
                each.record.transfer == capture::UsbTransfer::Interrupt) {
                identifiers.push_back(each.data.at(2));
            }
        }
        return identifiers;
    }

    const TemporaryDirectory directory;
    std::string path = directory.path() / "file.pcapng";
};

TEST_F(CaptureCommand, BothOrdersOfNestingCaptureTheProgram) {
    const ProcessResult inside =
        run({}, Arguments{veltra, "capture", path, "--", hidProbe} + calls);
    EXPECT_EQ(inside.output, printed);
    EXPECT_EQ(inside.errors, "");
    EXPECT_EQ(sentRequests(), std::vector<int>{1});
    fs::remove(path);
    const ProcessResult around = capture(Arguments{virtualAdapter, "run", "--", hidProbe} + calls);
    EXPECT_EQ(around.output, printed);
    EXPECT_EQ(around.errors, "");
    EXPECT_EQ(sentRequests(), std::vector<int>{1});
}

TEST_F(CaptureCommand, TheCaptureStandsBehindASanitizerAndInFrontOfTheOthers) {
    const ProcessResult result =
        runProcess({veltra, "capture", path, "--", "printenv", "LD_PRELOAD"},
                   {"LD_PRELOAD=" + preloadList("libm.so.6")});
    EXPECT_EQ(result.output, preloadList(std::string(CAPTURE_LIBRARY) + ":libm.so.6") + "\n");
    EXPECT_EQ(run({}, {veltra, "capture", path, "--", "printenv", "LD_PRELOAD"}).output,
              preloadList(std::string(CAPTURE_LIBRARY) + ":" + preloadLibrary) + "\n");
    EXPECT_EQ(capture({virtualAdapter, "run", "--", "printenv", "LD_PRELOAD"}).output,
              preloadList(std::string(CAPTURE_LIBRARY) + ":" + preloadLibrary) + "\n");
}

TEST_F(CaptureCommand, TheFileIsKnownWhereverTheProgramGoes) {
    const ProcessResult result = runProcess(
        {"sh", "-c", "cd \"$0\" && exec \"$1\" capture a/../b.pcapng -- printenv VELTRA_CAPTURE",
         directory.path(), veltra});
    EXPECT_EQ(result.output, (directory.path() / "b.pcapng").string() + "\n");
}

TEST_F(CaptureCommand, TheExitStatusIsThatOfTheProgram) {
    EXPECT_EQ(capture({"sh", "-c", "exit 7"}).status, 7);
    EXPECT_EQ(capture({"sh", "-c", "kill -TERM $$"}).status, -SIGTERM);
    const ProcessResult missing = capture({"/no/such/program"});
    EXPECT_EQ(missing.status, 127);
    EXPECT_EQ(missing.errors,
              "veltra: capture: cannot start /no/such/program: No such file or directory\n");
    const ProcessResult forbidden = capture({"/dev/null"});
    EXPECT_EQ(forbidden.status, 126);
    EXPECT_EQ(forbidden.errors, "veltra: capture: cannot start /dev/null: Permission denied\n");
    EXPECT_FALSE(fs::exists(path)) << "no adapter was opened";
}

TEST_F(CaptureCommand, AFileThatCannotBeWrittenIsToldBeforeTheProgramStarts) {
    const std::string good = path;
    path = directory.path() / "no" / "file";
    const ProcessResult nowhere = capture({"echo", "started"});
    EXPECT_EQ(nowhere.status, 125);
    EXPECT_EQ(nowhere.output, "");
    EXPECT_EQ(nowhere.errors,
              "veltra: capture: cannot write " + path + ": No such file or directory\n");
    path = directory.path();
    EXPECT_EQ(capture({"true"}).errors,
              "veltra: capture: cannot write " + path + ": it is a directory\n");
    path = good;
    std::ofstream(path) << "A letter home";
    const ProcessResult letter = capture({"true"});
    EXPECT_EQ(letter.status, 125);
    EXPECT_EQ(letter.errors, "veltra: capture: cannot write " + path +
                                 ": it holds something that is no capture\n");
}

TEST_F(CaptureCommand, AKilledProgramLeavesWhatItHasSent) {
    const ProcessResult result = run({}, {veltra, "capture", path, "--", hidProbe, openIt, write1,
                                          write2, "raise " + std::to_string(SIGKILL)});
    EXPECT_EQ(result.status, -SIGKILL);
    EXPECT_EQ(sentRequests(), (std::vector<int>{1, 2}));
}

TEST_F(CaptureCommand, SeveralProcessesAppendToOneFile) {
    const std::string script =
        "for i in 1 2 3 4; do \"$0\" '" + openIt + "' '" + write1 + "' close; done";
    const ProcessResult result =
        run({"--adapter", "A", "--adapter", "B"},
            {veltra, "capture", path, "--", "sh", "-c",
             "(" + script + ") & \"$0\" 'open 1-2:1.0' '" + write2 + "' close; wait", hidProbe});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(sentRequests(), testing::UnorderedElementsAre(1, 1, 1, 1, 2));
}

TEST_F(CaptureCommand, AFullDiskEndsTheCaptureAndNotTheProgram) {
    const ProcessResult result =
        run({}, Arguments{veltra, "capture", "/dev/full", "--", hidProbe} + calls);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, printed);
    EXPECT_EQ(result.errors, "veltra capture: /dev/full: No space left on device; the capture ends "
                             "here, the program goes on\n");
}

TEST_F(CaptureCommand, APipeIsFedWhileItIsRead) {
    ASSERT_EQ(mkfifo(path.c_str(), S_IRWXU), 0);
    const std::string copy = directory.path() / "copy";
    BackgroundProcess reader({"sh", "-c", "echo ready; cat \"$0\" >\"$1\"; echo end", path, copy});
    EXPECT_EQ(reader.nextLine(), "ready\n");
    EXPECT_EQ(run({}, Arguments{veltra, "capture", path, "--", hidProbe} + calls).output, printed);
    EXPECT_EQ(reader.nextLine(), "end\n");
    path = copy;
    EXPECT_EQ(sentRequests(), std::vector<int>{1});
}

TEST_F(CaptureCommand, AnOptionCapturesACommandOfVeltra) {
    const Arguments identify{"-V", "3.3", "spi", "flash", "id"};
    const std::string expected = runProcess(Arguments{veltra, "--virtual"} + identify).output;
    ASSERT_THAT(expected, HasSubstr("56 41 12"));
    for (const Arguments& options :
         {Arguments{"--virtual", "--capture", path}, Arguments{"--capture=" + path, "--virtual"}}) {
        fs::remove(path);
        const ProcessResult result = runProcess(Arguments{veltra} + options + identify);
        EXPECT_EQ(result.output, expected);
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(result.status, 0);
        EXPECT_GE(sentRequests().size(), 3U);
    }
}

TEST_F(CaptureCommand, TheOptionKeepsTheExitStatusOfTheCommand) {
    const ProcessResult refused =
        runProcess({veltra, "--virtual", "--capture", path, "i2c", "scan"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "veltra: i2c scan: the I/O voltage is off (status 0x0004). Say which "
                              "your board takes: veltra --virtual --capture " +
                                  path + " -V 3.3 i2c scan\n");
    const ProcessResult unwritable =
        runProcess({veltra, "--capture", directory.path(), "--virtual", "list"});
    EXPECT_EQ(unwritable.status, 1);
    EXPECT_EQ(unwritable.errors,
              "veltra: cannot write " + directory.path().string() + ": it is a directory\n");
}

TEST_F(CaptureCommand, WordsOfTheProgramAreItsOwn) {
    EXPECT_EQ(runProcess({veltra, "--virtual", "capture", path, "--", "echo", "--virtual",
                          "--capture", "x"})
                  .output,
              "--virtual --capture x\n");
}

TEST_F(CaptureCommand, WithoutAProgramTheCommandLineIsRefused) {
    const ProcessResult result = runProcess({veltra, "capture", path});
    EXPECT_EQ(result.status, 125);
    EXPECT_EQ(result.errors,
              "veltra: capture: -- PROGRAM is required. Type: veltra capture FILE -- PROGRAM\n");
}

} // namespace
