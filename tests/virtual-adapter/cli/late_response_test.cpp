// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/cli/RunProgram.hpp"

#include <gmock/gmock.h>

using testing::MatchesRegex;

namespace {

/// The fourth request on are reads; the second read is late, and the one that is tried again too.
class LateResponse : public testing::TestWithParam<const char*> {
protected:
    static std::string outputOf(const char* mode) {
        const ProcessResult result = run(
            {"--model", GetParam(), "--fault", "late-response@i2c-read:2", "--fault-delay", "3000"},
            {LATE_RESPONSE_PROBE, mode});
        EXPECT_EQ(result.status, 0) << result.output << result.errors;
        return result.output;
    }
};

TEST_P(LateResponse, KeepsAProgramThatMerelyTriesAgainOneResponseBehind) {
    EXPECT_THAT(outputOf("default"), MatchesRegex("timed out, tried again\n[1-9][0-9]* wrong\n"));
}

TEST_P(LateResponse, DoesNoHarmInStrictMode) {
    EXPECT_EQ(outputOf("strict"), "timed out, tried again\n0 wrong\n");
}

INSTANTIATE_TEST_SUITE_P(Models, LateResponse, testing::Values("full-speed", "high-speed"));

} // namespace
