// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What a forked child may do, through the real hidapi and libusb.
#include "support/ScriptedHid.hpp"
#include "usb/UsbTestBed.hpp"

#include <veltrasdk/NotificationQueue.hpp>
#include <veltrasdk/VeltraSDK.hpp>

#include <gtest/gtest.h>

#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace test_support;

namespace {

constexpr int patientMs = generousLimitMs;

/// The bed comes first, since it must outlive everything that uses hidapi.
class ForkTest : public testing::Test {
protected:
    ForkTest() { bed.plugIn(); }

    /// The exit status of a child that does what it is given and ends with _exit.
    template <typename Act>
    static int statusOfChild(Act act) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(generousLimitMs / 1000); // what hangs is ended, and is no success
            _exit(act());
        }
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    static int execute(const char* command) {
        // What is preloaded into a test is not meant for it.
        char* const environment[] = {nullptr};
        execle("/bin/sh", "sh", "-c", command, nullptr, environment);
        return 127;
    }

    /// Whether a new object reaches the adapter.
    static bool works() {
        VeltraSDK sdk(patientMs);
        VeltraSDK::DeviceInfo info;
        return sdk.connect("") && sdk.getDeviceInfo(info) == 0 && info.usbString3 == "VA-0001";
    }

    UsbTestBed bed;
};

TEST_F(ForkTest, AChildThatEndsWithExitLeavesTheConnectionToItsParent) {
    VeltraSDK sdk(patientMs);
    ASSERT_TRUE(sdk.connect(""));
    EXPECT_EQ(statusOfChild([] { return 5; }), 5);
    EXPECT_TRUE(sdk.isConnected());
    EXPECT_EQ(sdk.gpioSetVoltage(3300, true), 0);
}

TEST_F(ForkTest, AChildThatExecutesAnotherProgramLeavesTheConnectionToItsParent) {
    VeltraSDK sdk(patientMs);
    ASSERT_TRUE(sdk.connect(""));
    EXPECT_EQ(statusOfChild([] { return execute("exit 6"); }), 6);
    EXPECT_TRUE(sdk.isConnected());
    EXPECT_EQ(sdk.gpioSetVoltage(3300, true), 0);
}

TEST_F(ForkTest, AProgramThatAChildExecutesInheritsNothingOfTheConnection) {
    VeltraSDK sdk(patientMs);
    const NotificationQueue queue(sdk, 4096);
    ASSERT_GE(queue.descriptor(), 0);
    ASSERT_TRUE(sdk.connect(""));
    const std::string listing = "ls -l /proc/" + std::to_string(getpid()) + "/fd | grep -q ";
    const std::string own = "ls -l /proc/self/fd | grep -q ";
    for (const char* file : {"bus/usb", "eventfd"}) {
        EXPECT_EQ(statusOfChild([&] { return execute((listing + file).c_str()); }), 0) << file;
        EXPECT_EQ(statusOfChild([&] { return execute((own + file).c_str()); }), 1) << file;
    }
}

TEST_F(ForkTest, AChildOfAProcessWithoutObjectsUsesTheLibraryAsItsOwn) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitizer lets no child start a thread";
#endif
    EXPECT_EQ(statusOfChild([] { return works() ? 0 : 1; }), 0);
    EXPECT_TRUE(works());
    // What was destroyed leaves nothing behind that a child would stumble over.
    EXPECT_EQ(statusOfChild([] { return works() ? 0 : 1; }), 0);
    EXPECT_TRUE(works());
}

} // namespace
