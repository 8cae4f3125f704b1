// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <algorithm>
#include <fstream>
#include <sched.h>

namespace {

/// The first processor that this process may use.
std::string someProcessor() {
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    sched_getaffinity(0, sizeof allowed, &allowed);
    size_t number = 0;
    while (number < size_t{CPU_SETSIZE} && !CPU_ISSET(number, &allowed)) {
        ++number;
    }
    return std::to_string(number);
}

/// How many system calls a program makes that reads a pin's level so often; -1 where they cannot
/// be counted. On one processor its two threads do not meet at a lock, which would add calls now
/// and then.
long systemCallsOf(int operations) {
    const TemporaryDirectory directory;
    const std::string trace = directory.path() / "trace";
    const ProcessResult result =
        run({}, {"taskset", "-c", someProcessor(), "strace", "-f", "-qq", "-o", trace,
                 SMALL_OPERATIONS, std::to_string(operations)});
    if (result.status != 0) {
        return -1;
    }
    long calls = 0;
    std::ifstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        // The second line of a call during which another thread made one.
        if (line.find(" resumed>") == std::string::npos) {
            ++calls;
        }
    }
    return calls;
}

TEST(RunSystemCalls, ASmallOperationTakesAtMostSix) {
    constexpr int operations = 500;
    double fewest = 1e9;
    // Other programs on the processor may disturb one count, not each.
    for (int attempt = 0; attempt < 5 && fewest > 6; ++attempt) {
        const long few = systemCallsOf(10);
        const long more = systemCallsOf(10 + operations);
        if (few < 0 || more < 0) {
            GTEST_SKIP() << "strace is missing, or may not trace here";
        }
        fewest = std::min(fewest, static_cast<double>(more - few) / operations);
    }
    RecordProperty("system calls", std::to_string(fewest));
    EXPECT_LE(fewest, 6.0);
    EXPECT_GE(fewest, 3.9) << "two messages and their answers";
}

} // namespace
