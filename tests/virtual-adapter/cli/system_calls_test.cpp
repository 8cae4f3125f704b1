// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

/// How many system calls the probe makes that writes a request and reads its response so often,
/// less those with which it prints; -1 where they cannot be counted.
long systemCallsOf(int operations) {
    const TemporaryDirectory directory;
    const std::string trace = directory.path() / "trace";
    Arguments program{"strace", "-f",  "-qq",    "-e",          "trace=!write",
                      "-o",     trace, hidProbe, "open 1-1:1.0"};
    for (int i = 0; i < operations; ++i) {
        program.insert(program.end(), {"write 00 17 00 01 00 07 04 01", "read 30000"});
    }
    if (run({}, program).status != 0) {
        return -1;
    }
    std::ifstream lines(trace);
    return std::count(std::istreambuf_iterator<char>(lines), {}, '\n');
}

TEST(RunSystemCalls, ARequestAndItsResponseTakeFour) {
    constexpr int operations = 500;
    const long few = systemCallsOf(1);
    const long more = systemCallsOf(1 + operations);
    if (few < 0 || more < 0) {
        GTEST_SKIP() << "strace is missing, or may not trace here";
    }
    // Two messages and their answers, whatever else the machine does. Six would still do.
    EXPECT_EQ(more - few, 4 * operations);
}

} // namespace
