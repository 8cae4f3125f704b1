// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "launch/ChildProgram.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <future>
#include <thread>

#include <pthread.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

std::atomic<bool> isToBeSignalled{false};

TEST(ChildProgramTest, ASignalThatAnotherThreadGetsAtOnceIsPassedOn) {
    std::promise<void> running;
    std::promise<void> over;
    std::thread other([&] {
        running.set_value();
        over.get_future().wait();
    });
    running.get_future().wait();
    // As soon as there is a child, which may well be quicker than this process.
    pthread_atfork(
        nullptr,
        [] {
            if (isToBeSignalled.exchange(false)) {
                kill(getpid(), SIGTERM);
            }
        },
        nullptr);
    isToBeSignalled = true;
    launch::ChildProgram child([] {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // nothing is left behind, whatever becomes of the test
        for (;;) {
            pause();
        }
        return 0;
    });
    child.wait();
    EXPECT_TRUE(child.wasKilled());
    over.set_value();
    other.join();
}

TEST(ChildProgramTest, ItsExitStatusIsThatOfTheChild) {
    launch::ChildProgram child([] { return 7; });
    EXPECT_EQ(child.wait(), 7);
    EXPECT_FALSE(child.wasKilled());
}

} // namespace
