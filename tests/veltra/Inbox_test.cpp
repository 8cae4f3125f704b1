// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Inbox.hpp"

#include "ExitStatus.hpp"
#include "Failure.hpp"

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(Inbox, WhereThereIsNoQueueForItIsAFailureOfMemory) {
    VeltraSDK adapter(0);
    const Inbox first(adapter); // an adapter has one queue only
    try {
        const Inbox second(adapter);
        FAIL() << "there are two";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.exitStatus, ExitStatus::Refused);
        EXPECT_EQ(failure.kind, "memory");
        EXPECT_EQ(failure.text,
                  "either memory or a file descriptor is missing for the notification queue");
    }
}

} // namespace
} // namespace veltra
