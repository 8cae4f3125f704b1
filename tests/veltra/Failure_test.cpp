// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Failure.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <new>
#include <regex>
#include <stdexcept>

namespace veltra {
namespace {

namespace fs = std::filesystem;

std::string contentsOf(const fs::path& file) {
    std::ifstream stream(file);
    EXPECT_TRUE(stream.is_open()) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

void expectFailure(const Failure& failure, const std::string& kind, const std::string& text) {
    EXPECT_EQ(failure.exitStatus, ExitStatus::Refused);
    EXPECT_EQ(failure.kind, kind);
    EXPECT_EQ(failure.text, text);
}

TEST(Failure, AnAllocationThatFailsIsToldInWords) {
    expectFailure(Failure::ofException(std::bad_alloc()), "memory", "not enough memory");
    expectFailure(Failure::ofException(std::bad_array_new_length()), "memory", "not enough memory");
}

TEST(Failure, WhatNobodyHasForeseenIsToldAsItIs) {
    expectFailure(Failure::ofException(std::runtime_error("cannot wait for clients")), "internal",
                  "cannot wait for clients");
}

TEST(Failure, EachKindOfTheSchemaIsComparedAsJsonByATest) {
    const fs::path tests(VELTRA_TESTS);
    std::string compared = contentsOf(tests / "at_a_terminal.py");
    for (const fs::directory_entry& transcript : fs::directory_iterator(tests / "golden")) {
        compared += contentsOf(transcript.path());
    }
    const std::string schema = contentsOf(tests / "../../veltra/schema.json");
    std::smatch kinds;
    ASSERT_TRUE(
        std::regex_search(schema, kinds, std::regex(R"re("kind": \{"enum": \[([^\]]*)\])re")));
    const std::string listed = kinds[1];
    const std::regex name(R"re("([a-z-]+)")re");
    size_t count = 0;
    for (std::sregex_iterator kind(listed.begin(), listed.end(), name), end; kind != end; ++kind) {
        EXPECT_NE(compared.find("\"kind\":" + kind->str()), std::string::npos) << kind->str();
        ++count;
    }
    EXPECT_GT(count, 20U);
}

} // namespace
} // namespace veltra
