// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/ListeningSocket.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

using namespace usbip;

namespace {

TEST(ListeningSocket, AnAddressMustBeNumeric) {
    for (const char* const name : {"localhost", "*", "0", "127.1", "0x7f000001", "", " 127.0.0.1",
                                   "127.0.0.1%lo", "%lo", "[::1]"}) {
        EXPECT_FALSE(isNumericAddress(name)) << name;
        EXPECT_THROW(listeningSocket(name, 0), std::runtime_error) << name;
    }
    for (const char* const address : {"127.0.0.1", "0.0.0.0", "::", "::1", "fe80::1%lo"}) {
        EXPECT_TRUE(isNumericAddress(address)) << address;
    }
}

TEST(ListeningSocket, TheLoopbackIsKnown) {
    EXPECT_TRUE(isOnLoopback(listeningSocket("127.0.0.1", 0)));
    EXPECT_TRUE(isOnLoopback(listeningSocket("127.255.0.9", 0)));
    EXPECT_FALSE(isOnLoopback(listeningSocket("0.0.0.0", 0)));
}

TEST(ListeningSocket, TheLoopbackOfIpv6IsKnown) {
    if (!std::filesystem::exists("/proc/net/if_inet6")) {
        GTEST_SKIP() << "this machine has no IPv6";
    }
    EXPECT_TRUE(isOnLoopback(listeningSocket("::1", 0)));
    EXPECT_FALSE(isOnLoopback(listeningSocket("::", 0)));
    EXPECT_GT(portOf(listeningSocket("::1", 0)), 0);
}

TEST(ListeningSocket, APortInUseIsAnError) {
    const FileDescriptor first = listeningSocket("127.0.0.1", 0);
    EXPECT_THROW(listeningSocket("127.0.0.1", portOf(first)), std::runtime_error);
}

} // namespace
