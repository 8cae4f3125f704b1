#include "support/Process.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <dlfcn.h>
#include <filesystem>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

const std::string virtualAdapter = VIRTUAL_ADAPTER;
const std::string preloadLibrary = PRELOAD_LIBRARY;
const std::string hidProbe = HID_PROBE;
const char* const sanitizerRuntime = SANITIZER_RUNTIME;

Arguments operator+(Arguments left, const Arguments& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

ProcessResult run(const Arguments& options, const Arguments& program) {
    return runProcess(Arguments{virtualAdapter, "run"} + options + Arguments{"--"} + program);
}

/// What the probe prints of the calls it plays.
std::string play(const Arguments& options, const Arguments& calls) {
    const ProcessResult result = run(options, Arguments{hidProbe} + calls);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    return result.output;
}

/// The line that the probe prints of a listed adapter.
std::string listed(unsigned productId, const std::string& strings) {
    std::array<char, 32> identifiers{};
    (void)std::snprintf(identifiers.data(), identifiers.size(), "%04x:%04x",
                        VELTRASDK_USB_VENDOR_ID, productId);
    return std::string("list: 1-1:1.0 ") + identifiers.data() + " 100 " + strings +
           " interface 0 bus 1\n";
}

/// A preload list, behind what a sanitizer needs.
std::string preloadList(const std::string& libraries) {
    const std::string runtime = sanitizerRuntime;
    return runtime.empty() ? libraries : runtime + ":" + libraries;
}

const std::string openIt = "open 1-1:1.0";
/// Identity string 1 under the transaction identifiers 1 to 4; the report identifier comes first.
const std::string write1 = "write 00 17 00 01 00 07 04 01";
const std::string write2 = "write 00 17 00 02 00 07 04 01";
const std::string write3 = "write 00 17 00 03 00 07 04 01";
const std::string write4 = "write 00 17 00 04 00 07 04 01";
const std::string response1 = "read: 64 37 00 01 00 07 04 00 00 07 56 65 6c 74 72 61\n";
const std::string response2 = "read: 64 37 00 02 00 07 04 00 00 07 56 65 6c 74 72 61\n";
const std::string response3 = "read: 64 37 00 03 00 07 04 00 00 07 56 65 6c 74 72 61\n";
const std::string response4 = "read: 64 37 00 04 00 07 04 00 00 07 56 65 6c 74 72 61\n";
const std::string readNow = "read 0";
const std::string readPatiently = "read 30000";

/// The first two exchanges, which no fault touches.
const Arguments twoExchanges{openIt, write1, readNow, write2, readNow};
const std::string twoAnswers = "open: ok\nwrite: 8\n" + response1 + "write: 8\n" + response2;

TEST(Run, AFullSpeedAdapterIsListedUnlessToldOtherwise) {
    const std::string line =
        listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001");
    EXPECT_EQ(play({}, {"init", "list", "exit"}), "init: 0\n" + line + "exit: 0\n");
    EXPECT_EQ(play({"--model", "full-speed"}, {"list"}), line);
}

TEST(Run, AHighSpeedAdapterHas1024ByteReports) {
    EXPECT_EQ(play({"--model", "high-speed"}, {"list", openIt, write1, readNow, "close"}),
              listed(VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED, "Veltra | high-speed | VA-0001") +
                  "open: ok\nwrite: 8\nread: 1024 37 00 01 00 07 04 00 00 07 56 65 6c 74 72 61\n");
}

TEST(Run, TheSerialNumberIsUtf8) {
    EXPECT_EQ(play({"--serial", "S\xC3\xA9-\xCE\xA9\xF0\x9F\x98\x80"}, {"list"}),
              listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED,
                     "Veltra | full-speed | S\xC3\xA9-\xCE\xA9\xF0\x9F\x98\x80"));
}

TEST(Run, AWriteReturnsWhatItWasGivenAndAReportIdentifierIsOptional) {
    EXPECT_EQ(play({}, {openIt, write1, readNow, "write 17 00 02 00 07 04 01", readNow}),
              "open: ok\nwrite: 8\n" + response1 + "write: 7\n" + response2);
}

TEST(Run, AWriteOfNothingFails) {
    EXPECT_EQ(play({}, {openIt, "write ", readNow}), "open: ok\nwrite: -1\nread: 0\n");
}

TEST(Run, AnUnknownPathIsNotOpened) {
    EXPECT_EQ(play({}, {"open 1-2:1.0"}), "open: null\n");
}

TEST(Run, AnOpenAdapterIsNotOpenedTwice) {
    EXPECT_EQ(play({}, {openIt, openIt, "close", openIt}), "open: ok\nopen: null\nopen: ok\n");
}

TEST(Run, AClosedAdapterIsNeitherReadNorWritten) {
    EXPECT_EQ(play({}, {openIt, "close", write1, readPatiently}),
              "open: ok\nwrite: -1\nread: -1\n");
}

TEST(Run, ExitWhileOpenAborts) {
    const ProcessResult result = run({}, {hidProbe, openIt, "exit"});
    EXPECT_EQ(result.status, -SIGABRT);
    EXPECT_EQ(result.output, "open: ok\n");
    EXPECT_THAT(result.errors, StartsWith("veltra-virtual-adapter: hid_exit while a device is "
                                          "open: the real hidapi aborts here too\n"));
}

TEST(Run, ExitAfterCloseIsFine) {
    EXPECT_EQ(play({}, {openIt, "close", "exit", "exit"}), "open: ok\nexit: 0\nexit: 0\n");
}

TEST(Run, BootModeTakesTheAdapterOffTheBus) {
    EXPECT_EQ(play({}, {openIt, "write 00 13 00 01 00 02 04", readNow, readPatiently, "list",
                        "close", openIt}),
              "open: ok\nwrite: 7\nread: 64 1b 00 01 00 02 04\nread: -1\nlist: nothing\n"
              "open: null\n");
}

TEST(RunFork, AChildHasAnAdapterOfItsOwn) {
    const std::string line =
        listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001");
    EXPECT_EQ(play({}, {openIt, write1, "fork 2", "init", "list", openIt, write2, readNow, "close",
                        openIt, "close", "exit"}),
              "open: ok\nwrite: 8\n"
              "init: 0\n" +
                  line + "open: ok\nwrite: 8\n" + response2 +
                  "open: ok\nexit: 0\n"
                  "init: 0\n" +
                  line + "open: ok\nwrite: 8\n" + response2 +
                  "open: ok\nexit: 0\n"
                  "init: 0\n" +
                  line + "open: null\nwrite: 8\n" + response1 + "open: ok\nexit: 0\n");
}

TEST(RunFork, AChildOfAChildHasItsOwnToo) {
    EXPECT_EQ(play({}, {openIt, "fork 1", openIt, "fork 1", openIt}),
              "open: ok\n"
              "open: ok\nopen: ok\nopen: null\n"
              "open: null\nopen: ok\nopen: null\n");
}

TEST(RunFork, TheHandleOfAParentIsClosedInItsChild) {
    EXPECT_EQ(play({}, {openIt, write1, "fork 1", readPatiently, write2, "close", "exit"}),
              "open: ok\nwrite: 8\n"
              "read: -1\nwrite: -1\nexit: 0\n" +
                  response1 + "write: 8\nexit: 0\n");
}

TEST(RunFork, AThreadThatReadsMeanwhileDoesNotHoldTheChildUp) {
    const size_t children = 10;
    std::string expected = "open: ok\nhammer: 0\n";
    for (size_t i = 0; i < children; ++i) {
        expected += "read: -1\nopen: ok\nwrite: 8\n" + response1;
    }
    // A sanitizer that looked back at the end would miss the parent's thread in the children.
    const std::string output =
        play({}, {openIt, "hammer", "fork 10", readNow, openIt, write1, readNow, "leave"});
    EXPECT_THAT(output, StartsWith(expected));
}

TEST(RunFault, ALateResponseComesAfterTheTimeOut) {
    EXPECT_EQ(play({"--fault", "late-response", "--fault-delay", "3600000"},
                   twoExchanges + Arguments{write3, readNow}),
              twoAnswers + "write: 8\nread: 0\n");
    EXPECT_EQ(play({"--fault", "late-response", "--fault-delay", "1"},
                   twoExchanges + Arguments{write3, readPatiently}),
              twoAnswers + "write: 8\n" + response3);
}

TEST(RunFault, ALostResponseNeverComes) {
    EXPECT_EQ(play({"--fault", "lost-response"},
                   twoExchanges + Arguments{write3, readNow, write4, readNow}),
              twoAnswers + "write: 8\nread: 0\nwrite: 8\n" + response4);
}

TEST(RunFault, AWrongIdentifierAnswersAnotherRequest) {
    EXPECT_EQ(play({"--fault", "wrong-identifier"}, twoExchanges + Arguments{write3, readNow}),
              twoAnswers + "write: 8\n" + response4);
}

TEST(RunFault, AShortFrameHasNoWholeHeader) {
    EXPECT_EQ(play({"--fault", "short-frame"}, twoExchanges + Arguments{write3, readNow}),
              twoAnswers + "write: 8\nread: 64 17 00 03 00 07 04\n");
}

TEST(RunFault, AnUnpluggedAdapterIsGoneForEver) {
    EXPECT_EQ(play({"--fault", "unplug"},
                   twoExchanges + Arguments{"list", write3, readPatiently, write4, readPatiently,
                                            "list", "close", openIt}),
              twoAnswers +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001") +
                  "write: -1\nread: -1\nwrite: -1\nread: -1\nlist: nothing\nopen: null\n");
}

TEST(RunFault, AStalledAdapterTakesNothingMore) {
    EXPECT_EQ(play({"--fault", "stall"},
                   twoExchanges + Arguments{write3, readNow, write4, readNow, "list"}),
              twoAnswers + "write: -1\nread: 0\nwrite: -1\nread: 0\n" +
                  listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001"));
}

TEST(RunFault, AnOverLongCountAnnouncesMoreThanTheResponseCarries) {
    EXPECT_EQ(play({"--fault", "over-long-count"}, twoExchanges + Arguments{write3, readNow}),
              twoAnswers + "write: 8\nread: 64 37 00 03 00 07 04 00 00 ff 56 65 6c 74 72 61\n");
}

TEST(RunFault, ANotificationStormSurroundsTheResponse) {
    // The UART's notifications take two 64-byte reports: 1,200 reports come before the response.
    const Arguments reads(1201, readNow);
    const std::string output = play({"--fault", "notification-storm"},
                                    twoExchanges + Arguments{write3} + reads + Arguments{readNow});
    const std::string hotJoin = "read: 64 3f 00 00 00 82 19 00 00 04 6a 00 00 00 01 06 c6 08\n";
    EXPECT_THAT(output, StartsWith(twoAnswers + "write: 8\n" + hotJoin));
    EXPECT_THAT(output, EndsWith(response3 + hotJoin));
}

TEST(RunFault, WithoutPermissionTheAdapterHasNoStringsAndDoesNotOpen) {
    EXPECT_EQ(play({"--fault", "no-permission"}, {"list", openIt}),
              listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "(null) | (null) | (null)") +
                  "open: null\n");
}

TEST(RunFault, LostReportsAreTheOldest) {
    const Arguments writes(33, write2);
    const Arguments reads(33, readNow);
    std::string expected = "open: ok\nwrite: 8\nwrite: 8\n";
    for (int i = 0; i < 32; ++i) {
        expected += "write: 8\n";
    }
    for (int i = 0; i < 32; ++i) {
        expected += response2;
    }
    EXPECT_EQ(play({"--fault", "lost-reports"}, Arguments{openIt, write1} + writes + reads),
              expected + "read: 0\n");
}

TEST(RunCommandLine, AProgramsExitStatusIsPassedOn) {
    EXPECT_EQ(run({}, {hidProbe, "status 42"}).status, 42);
}

TEST(RunCommandLine, AProgramsArgumentsArePassedOnUntouched) {
    EXPECT_EQ(run({}, {"printf", "<%s>", "[a,b]", "", "--", "--model", "a b"}).output,
              "<[a,b]><><--><--model><a b>");
}

TEST(RunCommandLine, AProgramThatDoesNotExistExitsWith127) {
    const ProcessResult result = run({}, {"/nonexistent/program"});
    EXPECT_EQ(result.status, 127);
    EXPECT_EQ(result.errors, "veltra-virtual-adapter: cannot start /nonexistent/program: No such "
                             "file or directory\n");
    EXPECT_EQ(run({}, {""}).status, 127);
}

TEST(RunCommandLine, AProgramThatCannotBeExecutedExitsWith126) {
    const ProcessResult result = run({}, {"/"});
    EXPECT_EQ(result.status, 126);
    EXPECT_EQ(result.errors, "veltra-virtual-adapter: cannot start /: Permission denied\n");
}

/// The exit status of every command line that is refused.
constexpr int refused = 125;

TEST(RunCommandLine, EveryOptionTakesOneValueAndComesOnce) {
    const std::vector<std::pair<Arguments, std::string>> cases{
        {{"--model"}, "--model"},
        {{"--serial"}, "--serial"},
        {{"--fault-delay"}, "--fault-delay"},
        {{"--model", "full-speed", "--model", "full-speed"}, "--model"},
        {{"--fault", "none", "--fault=none"}, "--fault"},
        {{"--model", "full-speed", "high-speed"}, "high-speed"}};
    for (const auto& [options, named] : cases) {
        const ProcessResult result = run(options, {hidProbe});
        EXPECT_EQ(result.status, refused) << testing::PrintToString(options);
        EXPECT_THAT(result.errors, HasSubstr(named));
        EXPECT_EQ(result.output, "");
    }
}

TEST(RunCommandLine, AProgramIsRequired) {
    for (const Arguments& arguments : {Arguments{"run"}, Arguments{"run", "--"}}) {
        const ProcessResult result = runProcess(Arguments{virtualAdapter} + arguments);
        EXPECT_EQ(result.status, refused);
        EXPECT_THAT(result.errors, HasSubstr("-- PROGRAM is required"));
    }
}

TEST(RunCommandLine, ASubcommandIsRequired) {
    EXPECT_EQ(runProcess({virtualAdapter}).status, refused);
}

TEST(RunCommandLine, OnlyRunTakesAProgram) {
    const ProcessResult result = runProcess({virtualAdapter, "serve", "--", hidProbe});
    EXPECT_EQ(result.status, refused);
    EXPECT_THAT(result.errors, HasSubstr(hidProbe));
}

TEST(RunCommandLine, AnUnknownOptionIsRefused) {
    const ProcessResult result = run({"--colour", "blue"}, {hidProbe});
    EXPECT_EQ(result.status, refused);
    EXPECT_THAT(result.errors, HasSubstr("--colour"));
}

TEST(RunCommandLine, ABadValueIsRefusedWithWhatWasExpected) {
    const std::vector<std::pair<Arguments, std::string>> cases{
        {{"--model", "huge"}, "--model: expected one of full-speed, high-speed"},
        {{"--serial", "\xFF"}, "--serial: expected UTF-8 text of"},
        {{"--serial", ""}, "--serial: expected UTF-8 text of"},
        {{"--fault", "fire"}, "--fault: expected one of none, late-response,"},
        {{"--fault-delay", "soon"}, "--fault-delay: expected milliseconds from 0 to 3600000"}};
    for (const auto& [options, message] : cases) {
        const ProcessResult result = run(options, {hidProbe});
        EXPECT_EQ(result.status, refused);
        EXPECT_THAT(result.errors, StartsWith(message));
        EXPECT_EQ(result.output, "");
    }
}

TEST(RunCommandLine, HelpNamesEveryOption) {
    const ProcessResult result = runProcess({virtualAdapter, "run", "--help"});
    EXPECT_EQ(result.status, 0);
    for (const char* const text :
         {"--model", "--serial", "--fault", "--fault-delay", "notification-storm", "VA-0001",
          "run --model high-speed -- ./my-program"}) {
        EXPECT_THAT(result.output, HasSubstr(text));
    }
}

TEST(RunCommandLine, TheVersionIsTheProjects) {
    const ProcessResult result = runProcess({virtualAdapter, "--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, PROJECT_VERSION_TEXT "\n");
}

TEST(RunCommandLine, WithoutProcTheMessageSaysWhatIsMissing) {
    if (*sanitizerRuntime != 0) {
        GTEST_SKIP() << "a sanitizer needs /proc itself";
    }
    const Arguments withoutProc{"unshare", "--map-root-user",
                                "--mount", "sh",
                                "-c",      "mount -t tmpfs none /proc && exec \"$0\" \"$@\""};
    if (runProcess(withoutProc + Arguments{"true"}).status != 0) {
        GTEST_SKIP() << "this machine grants no namespace of mounts";
    }
    const ProcessResult result =
        runProcess(withoutProc + Arguments{virtualAdapter, "run", "--", "true"});
    EXPECT_EQ(result.status, 125);
    EXPECT_EQ(result.errors, "veltra-virtual-adapter: cannot find its own directory: "
                             "/proc/self/exe: No such file or directory\n");
}

TEST(RunEnvironment, ThePreloadedLibraryIsTheLast) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"LD_PRELOAD", preloadList(preloadLibrary)},
        {"LD_PRELOAD=" + preloadList("libm.so.6"),
         preloadList(preloadList("libm.so.6:" + preloadLibrary))}};
    for (const auto& [inherited, expected] : cases) {
        const ProcessResult result =
            runProcess({virtualAdapter, "run", "--", "printenv", "LD_PRELOAD"}, {inherited});
        EXPECT_EQ(result.output, expected + "\n");
    }
}

/// Plays calls with the library preloaded and no settings but @p settings.
ProcessResult playWithLibraryAlone(const Arguments& calls, const Arguments& settings = {}) {
    const Arguments environment{"LD_PRELOAD=" + preloadList(preloadLibrary),
                                "VELTRA_VIRTUAL_ADAPTER_MODEL", "VELTRA_VIRTUAL_ADAPTER_SERIAL",
                                "VELTRA_VIRTUAL_ADAPTER_FAULT",
                                "VELTRA_VIRTUAL_ADAPTER_FAULT_DELAY"};
    return runProcess(Arguments{hidProbe} + calls, environment + settings);
}

TEST(RunEnvironment, TheLibraryAloneIsADefaultAdapter) {
    EXPECT_EQ(playWithLibraryAlone({"list"}).output,
              listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001"));
}

TEST(RunEnvironment, AnImpossibleSettingIsExplainedAndLeavesNoAdapter) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"VELTRA_VIRTUAL_ADAPTER_MODEL=huge", "expected one of full-speed, high-speed"},
        {"VELTRA_VIRTUAL_ADAPTER_SERIAL=", "expected UTF-8 text of 1 to 126 UTF-16 units and at "
                                           "most 254 bytes"},
        {"VELTRA_VIRTUAL_ADAPTER_FAULT_DELAY=-1", "expected milliseconds from 0 to 3600000"}};
    for (const auto& [variable, expectation] : cases) {
        const ProcessResult result =
            playWithLibraryAlone({"init", "list", openIt, "exit"}, {variable});
        EXPECT_EQ(result.output, "init: -1\nlist: nothing\nopen: null\nexit: 0\n");
        EXPECT_THAT(result.errors, AllOf(StartsWith("veltra-virtual-adapter: no adapter: "),
                                         HasSubstr(variable), EndsWith(": " + expectation + "\n")));
    }
}

TEST(RunEnvironment, TheLibraryExportsEightFunctions) {
    void* const library = dlopen(preloadLibrary.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    for (const char* const name : {"hid_init", "hid_exit", "hid_enumerate", "hid_free_enumeration",
                                   "hid_open_path", "hid_write", "hid_read_timeout", "hid_close"}) {
        EXPECT_NE(dlsym(library, name), nullptr) << name;
    }
    for (const char* const name : {"hid_error", "hid_open", "hid_read", "hid_version_str"}) {
        EXPECT_EQ(dlsym(library, name), nullptr) << name;
    }
    dlclose(library);
}

/// The executable somewhere else, with or without its library.
class RunElsewhere : public testing::Test {
protected:
    static void copyTo(const fs::path& target, const std::string& source) {
        fs::create_directories(target);
        fs::copy(source, target);
    }

    /// The exit status of listing the adapters with the copied executable.
    [[nodiscard]] ProcessResult list(const fs::path& executableDirectory) const {
        return runProcess({executableDirectory / fs::path(virtualAdapter).filename(), "run", "--",
                           hidProbe, "list"});
    }

    TemporaryDirectory own;
    const fs::path& directory = own.path();
};

TEST_F(RunElsewhere, TheInstalledLibraryIsFound) {
    const fs::path programs = directory / "bin";
    copyTo(programs, virtualAdapter);
    copyTo((programs / PRELOAD_DIRECTORY).lexically_normal(), preloadLibrary);
    const ProcessResult result = list(programs);
    EXPECT_EQ(result.output,
              listed(VELTRASDK_USB_PRODUCT_ID_FULL_SPEED, "Veltra | full-speed | VA-0001"))
        << result.errors;
}

TEST_F(RunElsewhere, AMissingLibraryIsExplained) {
    copyTo(directory, virtualAdapter);
    const ProcessResult result = list(directory);
    EXPECT_EQ(result.status, 125);
    EXPECT_THAT(result.errors, HasSubstr(" is neither in " + directory.string() + " nor in "));
}

TEST_F(RunElsewhere, APathThatCannotBePreloadedIsExplained) {
    const fs::path programs = directory / "with space";
    copyTo(programs, virtualAdapter);
    copyTo(programs, preloadLibrary);
    const ProcessResult result = list(programs);
    EXPECT_EQ(result.status, 125);
    EXPECT_THAT(result.errors, HasSubstr("LD_PRELOAD cannot hold a path with a space or a colon"));
}

} // namespace
