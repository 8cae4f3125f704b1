// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "Inbox.hpp"

#include "ExitStatus.hpp"
#include "Failure.hpp"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace veltra {
namespace {

void expectFailure(const Failure& failure, const std::string& kind, const std::string& text) {
    EXPECT_EQ(failure.exitStatus, ExitStatus::Refused);
    EXPECT_EQ(failure.kind, kind);
    EXPECT_EQ(failure.text, text);
}

TEST(Inbox, WhereThereIsNoQueueForItIsAFailureOfMemory) {
    VeltraSDK adapter(0);
    const Inbox first(adapter); // an adapter has one queue only
    try {
        const Inbox second(adapter);
        FAIL() << "there are two";
    } catch (const Failure& failure) {
        expectFailure(failure, "memory",
                      "either memory or a file descriptor is missing for the notification queue");
    }
}

TEST(Failure, AnAllocationThatFailsIsToldInWords) {
    expectFailure(Failure::ofException(std::bad_alloc()), "memory", "not enough memory");
    expectFailure(Failure::ofException(std::bad_array_new_length()), "memory", "not enough memory");
}

TEST(Failure, WhatNobodyHasForeseenIsToldAsItIs) {
    expectFailure(Failure::ofException(std::runtime_error("cannot wait for clients")), "internal",
                  "cannot wait for clients");
}

} // namespace
} // namespace veltra
