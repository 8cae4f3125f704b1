// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gmock/gmock.h>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

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
        {{"--model", "full-speed", "high-speed"}, "high-speed"},
        {{"--fault", "stall", "unplug"}, "unplug"}};
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

TEST(RunCommandLine, AnUnknownCommandIsNamed) {
    const std::vector<std::pair<std::string, Arguments>> cases{
        {"bogus", {}}, {"--bogus", {}}, {"bogus", {"serve", "--fire"}}, {"bogus", {"--port", "1"}}};
    for (const auto& [word, rest] : cases) {
        const ProcessResult result = runProcess(Arguments{virtualAdapter, word} + rest);
        EXPECT_EQ(result.status, refused);
        EXPECT_EQ(result.errors,
                  "veltra-virtual-adapter: '" + word +
                      "' is none of its commands: run, serve, attach, check, tell, replay; --help "
                      "says what they do\n");
        EXPECT_EQ(result.output, "");
    }
}

TEST(RunCommandLine, AProgramWithoutItsSeparatorBringsWhatToType) {
    const std::string complaint =
        "veltra-virtual-adapter: -- is missing in front of the program; type: "
        "veltra-virtual-adapter run ";
    const std::vector<std::pair<Arguments, std::string>> cases{
        {{"./prog"}, "-- ./prog\n"},
        {{"./prog", "--help"}, "-- ./prog ...\n"},
        {{"--model", "high-speed", "./prog", "-x", "serve"}, "[OPTIONS] -- ./prog ...\n"}};
    for (const auto& [arguments, line] : cases) {
        const ProcessResult result = runProcess(Arguments{virtualAdapter, "run"} + arguments);
        EXPECT_EQ(result.status, refused);
        EXPECT_EQ(result.errors, complaint + line);
        EXPECT_EQ(result.output, "");
    }
}

TEST(RunCommandLine, AWordTooManyBehindACommandIsNotTakenForOne) {
    const ProcessResult result = runProcess({virtualAdapter, "serve", "serve"});
    EXPECT_EQ(result.status, refused);
    EXPECT_THAT(result.errors, HasSubstr("serve starts no program; type: "
                                         "veltra-virtual-adapter run -- serve\n"));
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
        {{"--fault", "fire"}, "--fault: 'fire' is no fault: expected one of late-response,"},
        {{"--fault-delay", "soon"}, "--fault-delay: expected milliseconds from 0 to 3600000"}};
    for (const auto& [options, message] : cases) {
        const ProcessResult result = run(options, {hidProbe});
        EXPECT_EQ(result.status, refused);
        EXPECT_THAT(result.errors, StartsWith("veltra-virtual-adapter: run: " + message));
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

TEST(RunCommandLine, EveryOptionHasARowInTheDocuments) {
    std::ifstream stream(RUN_PAGE);
    const std::string page{std::istreambuf_iterator<char>(stream), {}};
    std::istringstream help(runProcess({virtualAdapter, "run", "--help"}).output);
    size_t options = 0;
    for (std::string line; std::getline(help, line);) {
        if (line.rfind("  --", 0) == 0) {
            const std::string name = line.substr(2, line.find(' ', 2) - 2);
            EXPECT_THAT(page, HasSubstr("\n| `" + name + "` | "));
            ++options;
        }
    }
    EXPECT_EQ(options, 8U);
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
        {"LD_PRELOAD=" + preloadList("libm.so.6"), preloadList("libm.so.6:" + preloadLibrary)},
        {"LD_PRELOAD=" + preloadList(preloadLibrary + ":libm.so.6"),
         preloadList("libm.so.6:" + preloadLibrary)}};
    for (const auto& [inherited, expected] : cases) {
        const ProcessResult result =
            runProcess({virtualAdapter, "run", "--", "printenv", "LD_PRELOAD"}, {inherited});
        EXPECT_EQ(result.output, expected + "\n");
    }
}

TEST(RunEnvironment, WithoutASocketTheLibraryHasNoAdapter) {
    for (const std::string socket :
         {"VELTRA_VIRTUAL_ADAPTER_SOCKET", "VELTRA_VIRTUAL_ADAPTER_SOCKET=",
          "VELTRA_VIRTUAL_ADAPTER_SOCKET=/nonexistent:/dev/null"}) {
        const ProcessResult result =
            runProcess({hidProbe, "init", "list", "open 1-1:1.0", "exit"},
                       {"LD_PRELOAD=" + preloadList(preloadLibrary), socket});
        EXPECT_EQ(result.output, "init: 0\nlist: nothing\nopen: null\nexit: 0\n") << socket;
        EXPECT_EQ(result.errors, "") << socket;
    }
}

TEST(RunEnvironment, TheLibraryBringsNoRuntimeOfItsOwn) {
    if (*sanitizerRuntime != 0) {
        GTEST_SKIP() << "a sanitizer brings its own";
    }
    // What a foreign program has loaded anyway.
    EXPECT_EQ(runProcess({"sh", "-c", "objdump -p \"$0\" | grep NEEDED", preloadLibrary}).output,
              "  NEEDED               libc.so.6\n");
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
