// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What check_run_google_tests.py runs, one at a time.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <iostream>

TEST(Misbehaving, Passes) {
    std::cout << "printed by the one that passes" << std::endl;
}

TEST(Misbehaving, Fails) {
    FAIL() << "for this reason";
}

TEST(Misbehaving, Crashes) {
    std::cout << "last words" << std::endl;
    std::abort();
}

TEST(Misbehaving, Hangs) {
    for (;;) {
        pause();
    }
}

TEST(Misbehaving, LeavesAComplaint) {
    std::cerr << "a sanitizer's complaint" << std::endl;
    std::atexit([] { _exit(66); });
}

TEST(Misbehaving, IsSkipped) {
    GTEST_SKIP() << "nothing to see";
}
