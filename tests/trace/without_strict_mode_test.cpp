// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The traces were printed by the library of revision f8faf48, which had no strict mode.
#include "support/Variant.hpp"
#include "trace/Session.hpp"

#include <algorithm>
#include <fstream>

using namespace test_support;

namespace {

std::vector<std::string> linesOf(const std::string& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class WithoutStrictModeTest : public testing::TestWithParam<Variant> {};
INSTANTIATE_ON_BOTH_VARIANTS(WithoutStrictModeTest);

TEST_P(WithoutStrictModeTest, EveryCallAndResultIsThatOfTheTimeBeforeStrictMode) {
    const std::vector<std::string> before =
        linesOf(std::string(TRACES) + "/" + GetParam().name + ".txt");
    Session session(GetParam().productId, GetParam().reportSize);
    useClass(session);
    useHandle(session);
    const std::vector<std::string>& now = session.trace();
    ASSERT_FALSE(before.empty());
    const auto [first, second] =
        std::mismatch(before.begin(), before.end(), now.begin(), now.end());
    EXPECT_TRUE(first == before.end() && second == now.end())
        << "line " << first - before.begin() + 1
        << "\nbefore: " << (first == before.end() ? "nothing more" : *first)
        << "\nnow:    " << (second == now.end() ? "nothing more" : *second);
}

} // namespace
