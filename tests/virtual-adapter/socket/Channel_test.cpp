// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "socket/Channel.hpp"
#include "usbip/FileDescriptor.hpp"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

using usbip::FileDescriptor;
using virtual_adapter::ClientMessage;
using virtual_adapter::ClientMessageKind;
using virtual_adapter::Reply;
using virtual_adapter::ReplyKind;

namespace {

using Bytes = std::vector<uint8_t>;

/// A client whose adapter says what the test wants it to.
class ChannelTest : public testing::Test {
protected:
    ChannelTest() {
        std::array<int, 2> ends{};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
        client = FileDescriptor(ends[0]);
        adapter = FileDescriptor(ends[1]);
    }

    /// Says it, and nothing after it.
    void say(const Bytes& bytes) {
        EXPECT_EQ(write(adapter.get(), bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
        adapter.reset();
    }

    bool receive() {
        return receiveReply(client.get(), ReplyKind::Written, buffer.data(), buffer.size(), reply);
    }

    FileDescriptor client;
    FileDescriptor adapter;
    std::array<uint8_t, 16> buffer{};
    Reply reply;
};

TEST_F(ChannelTest, AMessageIsItsSizeItsKindItsFieldsAndItsBytes) {
    const Bytes data{0xAA, 0xBB};
    ClientMessage message(ClientMessageKind::Tell);
    message.u8(1).u16(0x0302).u32(0x07060504).bytes(data.data(), data.size());
    ASSERT_TRUE(sendMessage(client.get(), message));
    Bytes received(32);
    received.resize(static_cast<size_t>(read(adapter.get(), received.data(), received.size())));
    EXPECT_EQ(received, (Bytes{0x0A, 0, 0, 0, 0x08, 1, 2, 3, 4, 5, 6, 7, 0xAA, 0xBB}));
}

TEST_F(ChannelTest, AReplyIsHandedOutWithoutItsHead) {
    say({0x03, 0, 0, 0, 0x85, 0x11, 0x22});
    ASSERT_TRUE(receive());
    EXPECT_EQ(Bytes(reply.data, reply.data + reply.size), (Bytes{0x11, 0x22}));
}

TEST_F(ChannelTest, TextsAreForPeople) {
    testing::internal::CaptureStderr();
    say({0x03, 0, 0, 0, 0x90, 'a', '\n', 0x02, 0, 0, 0, 0x90, 'b', 0x01, 0, 0, 0, 0x85});
    EXPECT_TRUE(receive());
    EXPECT_EQ(reply.size, 0U);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "a\nb");
}

TEST_F(ChannelTest, ARefusalIsPrintedAndNoReply) {
    testing::internal::CaptureStderr();
    say({0x04, 0, 0, 0, 0xFF, 'n', 'o', '\n'});
    EXPECT_FALSE(receive());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "no\n");
}

TEST_F(ChannelTest, WhatMakesNoSenseIsNoReply) {
    const std::vector<Bytes> cases{{},
                                   {0x01, 0, 0, 0},
                                   {0x00, 0, 0, 0, 0x85},
                                   {0x02, 0, 0, 0, 0x85},
                                   {0x01, 0, 0, 0, 0x86},
                                   {0x0D, 0, 0, 0, 0x85, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                                   {0xFF, 0xFF, 0xFF, 0xFF, 0x85},
                                   {0xFF, 0xFF, 0xFF, 0xFF, 0x90},
                                   {0x01, 0, 0, 0, 0x85, 0x00}};
    for (const Bytes& bytes : cases) {
        std::array<int, 2> ends{};
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
        client = FileDescriptor(ends[0]);
        adapter = FileDescriptor(ends[1]);
        say(bytes);
        EXPECT_FALSE(receive()) << testing::PrintToString(bytes);
    }
}

TEST_F(ChannelTest, WithoutAnAdapterNothingIsSent) {
    adapter.reset();
    ClientMessage message(ClientMessageKind::List);
    EXPECT_FALSE(sendMessage(client.get(), message)) << "and no signal is raised";
}

TEST_F(ChannelTest, APathThatIsNoSocketsIsNotConnectedTo) {
    for (const std::string& path : {std::string(), std::string("/nonexistent"),
                                    std::string("/dev/null"), "/" + std::string(200, 'x')}) {
        EXPECT_EQ(virtual_adapter::connectToAdapter(path.c_str()), -1) << path;
    }
}

} // namespace
