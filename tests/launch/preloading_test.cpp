// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "launch/StartFailure.hpp"
#include "launch/preloading.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>

using launch::PreloadPlace;

namespace {

/// As LD_PRELOAD is with and without the runtime of a sanitizer.
std::string behindSanitizer(const std::string& list) {
    const std::string runtime = VELTRA_SANITIZER_RUNTIME;
    return runtime.empty() ? list : runtime + ":" + list;
}

std::string preloadedBehind(const std::string& inherited, const std::string& library,
                            PreloadPlace place) {
    const char* const before = std::getenv("LD_PRELOAD");
    const std::string kept = before == nullptr ? "" : before;
    setenv("LD_PRELOAD", inherited.c_str(), 1);
    launch::preload(library, place);
    const std::string list = std::getenv("LD_PRELOAD");
    setenv("LD_PRELOAD", kept.c_str(), 1);
    return list;
}

TEST(Preloading, TheFirstLibraryStandsBehindASanitizersRuntimeOnly) {
    EXPECT_EQ(preloadedBehind("", "/ours.so", PreloadPlace::First), behindSanitizer("/ours.so"));
    EXPECT_EQ(preloadedBehind("/a.so:/b.so", "/ours.so", PreloadPlace::First),
              behindSanitizer("/ours.so:/a.so:/b.so"));
    EXPECT_EQ(preloadedBehind(behindSanitizer("/a.so"), "/ours.so", PreloadPlace::First),
              behindSanitizer("/ours.so:/a.so"));
}

TEST(Preloading, TheLastLibraryStandsBehindWhatWasThere) {
    EXPECT_EQ(preloadedBehind("/a.so:/b.so", "/ours.so", PreloadPlace::Last),
              behindSanitizer("/a.so:/b.so:/ours.so"));
}

TEST(Preloading, ALibraryThatWasThereStandsThereOnce) {
    EXPECT_EQ(preloadedBehind("/a.so:/ours.so:/b.so", "/ours.so", PreloadPlace::First),
              behindSanitizer("/ours.so:/a.so:/b.so"));
    EXPECT_EQ(preloadedBehind("/ours.so:/a.so", "/ours.so", PreloadPlace::Last),
              behindSanitizer("/a.so:/ours.so"));
}

void expectRefusal(const std::function<void()>& call, int status, const std::string& text) {
    try {
        call();
        FAIL() << "it was not refused";
    } catch (const launch::StartFailure& failure) {
        EXPECT_EQ(failure.exitStatus, status);
        EXPECT_EQ(failure.what(), text);
    }
}

TEST(Preloading, APathThatTheVariableCannotHoldIsRefused) {
    expectRefusal([] { launch::preload("/a b.so", PreloadPlace::First); }, 125,
                  "LD_PRELOAD cannot hold a path with a space or a colon: /a b.so");
}

TEST(Preloading, AProgramThatIsNotThereIsToldFromOneThatCannotBeExecuted) {
    expectRefusal([] { launch::execute({"/no/where"}); }, 127,
                  "cannot start /no/where: No such file or directory");
    expectRefusal([] { launch::execute({"/proc/self/status"}); }, 126,
                  "cannot start /proc/self/status: Permission denied");
}

} // namespace
