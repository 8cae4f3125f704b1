// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/SocketServer.hpp"

#include "launch/SocketPlace.hpp"
#include "socket/Channel.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <future>

using launch::SocketPlace;
using usbip::FileDescriptor;
using virtual_adapter::AdapterRack;
using virtual_adapter::AdapterSettings;
using virtual_adapter::ClientMessage;
using virtual_adapter::ClientMessageKind;
using virtual_adapter::Reply;
using virtual_adapter::ReplyKind;
using virtual_adapter::SocketServer;

namespace {

/// A server on a thread of its own.
class SocketServerTest : public testing::Test {
protected:
    ~SocketServerTest() override {
        const uint64_t one = 1;
        (void)!write(stop.get(), &one, sizeof one);
        if (ended.valid()) {
            ended.get();
        }
    }

    void start() {
        ended = std::async(std::launch::async, [this] { server.run(stop); });
    }

    /// Whether it ends by itself.
    bool hasEnded() {
        return ended.wait_for(std::chrono::seconds(30)) == std::future_status::ready;
    }

    /// Whether it answers somebody new, who then goes.
    bool answers() {
        const FileDescriptor socket(virtual_adapter::greetAdapter(place.path().c_str()));
        ClientMessage list(ClientMessageKind::List);
        Reply reply;
        std::array<uint8_t, 4096> buffer{};
        return sendMessage(socket.get(), list) &&
               receiveReply(socket.get(), ReplyKind::Adapters, buffer.data(), buffer.size(), reply);
    }

    TemporaryDirectory directory;
    SocketPlace place = SocketPlace::at(directory.path() / "adapter");
    AdapterRack rack{std::vector<AdapterSettings>(1)};
    SocketServer server{rack, place.takeListener()};
    FileDescriptor stop{eventfd(0, EFD_CLOEXEC)};
    std::future<void> ended;
};

/// A process that holds nothing and waits for its end.
pid_t silentProcess() {
    const pid_t child = fork();
    if (child == 0) {
        close_range(0, ~0U, 0);
        for (;;) {
            pause();
        }
    }
    return child;
}

void end(pid_t process) {
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

TEST_F(SocketServerTest, ItLivesAsLongAsAProgramThatHoldsNothing) {
    const pid_t program = silentProcess();
    server.endWithPrograms(program, std::chrono::milliseconds(0));
    start();
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(answers()) << "each that goes could have been the last";
    }
    end(program);
    EXPECT_TRUE(hasEnded());
}

TEST_F(SocketServerTest, ItEndsWithTheLastProgram) {
    const pid_t program = silentProcess();
    server.endWithPrograms(program, std::chrono::milliseconds(0));
    start();
    end(program);
    EXPECT_TRUE(hasEnded());
}

TEST_F(SocketServerTest, AProgramThatHasAskedForItIsWatchedWhateverItHolds) {
    const pid_t first = silentProcess();
    server.endWithPrograms(first, std::chrono::milliseconds(0));
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const pid_t second = fork();
    if (second == 0) {
        ClientMessage hold(ClientMessageKind::Hold);
        const bool connected =
            sendMessage(virtual_adapter::greetAdapter(place.path().c_str()), hold);
        (void)!write(ends[1], connected ? "+" : "-", 1);
        close_range(0, ~0U, 0);
        for (;;) {
            pause();
        }
    }
    char connected = 0;
    ASSERT_EQ(read(ends[0], &connected, 1), 1);
    EXPECT_EQ(connected, '+');
    close(ends[0]);
    close(ends[1]);
    start();
    // Whoever connects later is answered later.
    EXPECT_TRUE(answers());
    end(first);
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(answers());
    }
    end(second);
    EXPECT_TRUE(hasEnded());
}

TEST_F(SocketServerTest, WhatTheAdapterHasToSayComesWithItsNextAnswer) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
    server.passOn(FileDescriptor(ends[0]));
    const FileDescriptor speaker(ends[1]);
    start();
    const std::string text = std::string(1500, 'x') + "\n";
    ASSERT_EQ(write(speaker.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
    testing::internal::CaptureStderr();
    EXPECT_TRUE(answers());
    EXPECT_TRUE(answers());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), text) << "once, though in two notices";
}

TEST_F(SocketServerTest, SilentClientsKeepNobodyOut) {
    start();
    std::vector<FileDescriptor> silent;
    for (int i = 0; i < 100; ++i) {
        silent.emplace_back(virtual_adapter::connectToAdapter(place.path().c_str()));
        ASSERT_TRUE(silent.back().isOpen());
    }
    EXPECT_TRUE(answers());
}

TEST_F(SocketServerTest, AnotherUserIsNotAnswered) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root becomes another user";
    }
    // Let it pass what the file system keeps others from.
    std::filesystem::permissions(directory.path(), std::filesystem::perms::all);
    std::filesystem::permissions(place.path(), std::filesystem::perms::all);
    start();
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        // Without the C library, which would change the other threads too.
        const bool changed = syscall(SYS_setresuid, nobody, nobody, nobody) == 0;
        _exit(changed && !answers() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(answers());
}

} // namespace
