// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "guest/sendAll.hpp"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <numeric>
#include <thread>
#include <vector>

#include <pthread.h>

using guest::sendAll;

namespace {

using Bytes = std::vector<uint8_t>;

class SendAll : public testing::Test {
protected:
    SendAll() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0); }
    ~SendAll() override {
        close(ends[0]);
        close(ends[1]);
    }

    [[nodiscard]] Bytes receive(size_t size) const {
        Bytes bytes(size);
        const ssize_t received = recv(ends[1], bytes.data(), size, MSG_WAITALL);
        bytes.resize(received < 0 ? 0 : static_cast<size_t>(received));
        return bytes;
    }

    std::array<int, 2> ends{};
};

TEST_F(SendAll, ThePartsArriveOneBehindTheOtherAndAnEmptyOneIsNone) {
    Bytes first{1, 2, 3};
    Bytes last{4, 5};
    std::array<iovec, 3> parts{{{first.data(), 3}, {nullptr, 0}, {last.data(), 2}}};
    EXPECT_TRUE(sendAll(ends[0], parts.data(), parts.size()));
    EXPECT_EQ(receive(5), (Bytes{1, 2, 3, 4, 5}));
}

TEST_F(SendAll, WhatSignalsBreakIntoPiecesArrivesWhole) {
    struct sigaction returning {};
    returning.sa_handler = [](int) {};
    struct sigaction before {};
    sigaction(SIGUSR1, &returning, &before);
    // More than any buffer holds: the sender waits, and each signal ends what it has waited in.
    Bytes large(4'000'000);
    std::iota(large.begin(), large.end(), uint8_t{0});
    Bytes sent = large;
    std::array<iovec, 2> parts{
        {{sent.data(), 1'234'567}, {sent.data() + 1'234'567, sent.size() - 1'234'567}}};
    bool isSent = false;
    std::thread sender([&] {
        isSent = sendAll(ends[0], parts.data(), parts.size());
        shutdown(ends[0], SHUT_WR);
    });
    Bytes received;
    for (Bytes piece{0}; !piece.empty() && received.size() < large.size();) {
        pthread_kill(sender.native_handle(), SIGUSR1);
        piece = receive(50'000);
        received.insert(received.end(), piece.begin(), piece.end());
    }
    sender.join();
    sigaction(SIGUSR1, &before, nullptr);
    EXPECT_TRUE(isSent);
    EXPECT_TRUE(received == large);
}

TEST_F(SendAll, WhoeverListensNoMoreIsAnErrorAndNoSignal) {
    shutdown(ends[1], SHUT_RD);
    Bytes bytes{1};
    iovec part{bytes.data(), bytes.size()};
    EXPECT_FALSE(sendAll(ends[0], &part, 1));
    EXPECT_EQ(errno, EPIPE);
}

} // namespace
