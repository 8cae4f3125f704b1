// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include <veltra-virtual-adapter/tell.h>

#include <gtest/gtest.h>

#include <string>

// Once told, the adapter is unplugged for whoever shares it.
TEST(Plain, IsTheFirstToUnplug) {
    EXPECT_STREQ(veltraTell("unplug"), nullptr);
}

TEST(Plain, DISABLED_IsNotRun) {
    FAIL();
}

TEST(DISABLED_Whole, IsNotRun) {
    FAIL();
}

class Parametrised : public testing::TestWithParam<std::string> {};

TEST_P(Parametrised, HasAnyCharacters) {
    EXPECT_NE(GetParam(), "");
}

INSTANTIATE_TEST_SUITE_P(Some, Parametrised, testing::Values("a;b", "[c", "d # e"));

template <typename Type>
class Typed : public testing::Test {};

using Types = testing::Types<int, char>;
TYPED_TEST_SUITE(Typed, Types);

TYPED_TEST(Typed, HasAType) {
    EXPECT_GE(sizeof(TypeParam), 1U);
}
