// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "guest/outOfTheWay.hpp"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

using guest::outOfTheWay;

namespace {

class OutOfTheWay : public testing::Test {
protected:
    OutOfTheWay() { getrlimit(RLIMIT_NOFILE, &before); }
    ~OutOfTheWay() override { setrlimit(RLIMIT_NOFILE, &before); }

    void limit(rlim_t descriptors) const {
        const rlimit lowered{descriptors, before.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &lowered), 0);
    }

    rlimit before{};
    const int low = open("/dev/null", O_RDONLY);
};

TEST_F(OutOfTheWay, ADescriptorLiesBelowTheUsualLimit) {
    limit(1024);
    const int moved = outOfTheWay(low);
    EXPECT_GE(moved, 896);
    EXPECT_EQ(fcntl(low, F_GETFD), -1);
    EXPECT_EQ(fcntl(moved, F_GETFD), FD_CLOEXEC);
    const int next = outOfTheWay(open("/dev/null", O_RDONLY));
    EXPECT_EQ(next, moved + 1);
    close(moved);
    close(next);
}

TEST_F(OutOfTheWay, ALowerLimitLeavesLessRoom) {
    limit(300);
    const int moved = outOfTheWay(low);
    EXPECT_EQ(moved, 300 - 128);
    close(moved);
}

TEST_F(OutOfTheWay, WithoutRoomADescriptorStays) {
    limit(256);
    EXPECT_EQ(outOfTheWay(low), low);
    EXPECT_EQ(fcntl(low, F_GETFD), 0);
    close(low);
}

} // namespace
