// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/Connection.hpp"

#include "usbip/EchoDevice.hpp"
#include "usbip/Messages.hpp"
#include "usbip/Protocol.hpp"

#include <gtest/gtest.h>

#include <utility>

using namespace usbip;

namespace {

const Time start{};

class Host {
public:
    explicit Host(ExportedDevice& exported) : connection(exported) {}

    /// Sends bytes and returns what came back.
    Bytes say(const Bytes& bytes) {
        connection.receive(bytes.data(), bytes.size(), start);
        return std::exchange(connection.output(), {});
    }

    bool import() { return say(importRequest()).size() == 320 && connection.isPluggedIn(); }

    Connection connection;
};

/// The answer to a transfer that brought no data.
Bytes ended(uint32_t sequence, Status status = Status::Completed, size_t actualLength = 0) {
    return returnSubmit(sequence, {sequence, status, actualLength, {}});
}

Bytes brought(uint32_t sequence, const Bytes& data) {
    return returnSubmit(sequence, {sequence, Status::Completed, data.size(), data});
}

class ConnectionTest : public testing::Test {
protected:
    ExportedDevice exported = exportedEcho();
};

TEST_F(ConnectionTest, AListIsAnsweredAndTheConnectionIsOver) {
    Host host(exported);
    EXPECT_EQ(host.say(listRequest).size(), 328U);
    EXPECT_TRUE(host.connection.isOver());
}

TEST_F(ConnectionTest, AnImportPlugsTheDeviceIn) {
    Host host(exported);
    ASSERT_TRUE(host.import());
    EXPECT_TRUE(host.say(submitRead(2)).empty()) << "nothing to read yet";
    EXPECT_EQ(host.say(submitWrite(3, {7, 8})),
              ended(3, Status::Completed, 2) + brought(2, {7, 8}));
    EXPECT_FALSE(host.connection.isOver());
}

TEST_F(ConnectionTest, ADeviceIsForOneHostAtATime) {
    Host first(exported);
    ASSERT_TRUE(first.import());
    Host second(exported);
    EXPECT_EQ(second.say(importRequest()), importRefusal(Refusal::DeviceBusy));
    EXPECT_TRUE(second.connection.isOver());
    Host third(exported);
    EXPECT_EQ(third.say(listRequest), listReply(nullptr)) << "a taken device is not listed";
}

TEST_F(ConnectionTest, TheDeviceIsFreeAgainOnceItsHostHasGone) {
    {
        Host first(exported);
        ASSERT_TRUE(first.import());
    }
    Host second(exported);
    EXPECT_TRUE(second.import());
}

TEST_F(ConnectionTest, PluggingInAgainMakesAFreshDevice) {
    {
        Host host(exported);
        ASSERT_TRUE(host.import());
        host.say(submitWrite(1, {7, 8}));
    }
    Host host(exported);
    ASSERT_TRUE(host.import());
    EXPECT_TRUE(host.say(submitRead(1)).empty());
}

TEST_F(ConnectionTest, AnotherDeviceDoesNotExist) {
    Host host(exported);
    EXPECT_EQ(host.say(importRequest("1-2")), importRefusal(Refusal::NoSuchDevice));
    EXPECT_TRUE(host.connection.isOver());
    EXPECT_FALSE(exported.isTaken);
}

TEST_F(ConnectionTest, APendingCommandIsTakenBack) {
    Host host(exported);
    ASSERT_TRUE(host.import());
    host.say(submitRead(2));
    EXPECT_EQ(host.say(unlink(3, 2)), returnUnlink(3, true));
    EXPECT_EQ(host.say(unlink(4, 2)), returnUnlink(4, false));
}

TEST_F(ConnectionTest, ACommandThatWasTakenBackIsPendingNoMore) {
    Host host(exported);
    ASSERT_TRUE(host.import());
    for (int i = 0; i < 300; ++i) {
        host.say(submitRead(2));
        ASSERT_EQ(host.say(unlink(3, 2)), returnUnlink(3, true)) << i;
    }
    EXPECT_FALSE(host.connection.isOver());
}

TEST_F(ConnectionTest, ADeviceThatLeavesItsBusEndsTheConnection) {
    Host host(exported);
    ASSERT_TRUE(host.import());
    host.say(submitRead(2));
    EXPECT_EQ(host.say(submitWrite(3, leave)),
              ended(3, Status::Completed, leave.size()) + ended(2, Status::Unplugged));
    EXPECT_TRUE(host.connection.isOver());
}

TEST_F(ConnectionTest, CommandsMayFollowTheImportAtOnce) {
    Host host(exported);
    EXPECT_EQ(host.say(importRequest() + submit(1, towardsDevice, 0, 0)).size(), 320U + 48U);
}

TEST_F(ConnectionTest, ACommandBehindTheOneThatEndsTheConnectionIsNotAnswered) {
    Host host(exported);
    ASSERT_TRUE(host.import());
    EXPECT_EQ(host.say(submitWrite(1, leave) + submit(2, towardsDevice, 0, 0)),
              ended(1, Status::Completed, leave.size()));
}

TEST_F(ConnectionTest, ARequestBehindTheOneThatEndsTheConnectionIsNotAnswered) {
    Host host(exported);
    EXPECT_EQ(host.say(listRequest + importRequest()).size(), 328U);
    EXPECT_FALSE(exported.isTaken);
}

TEST_F(ConnectionTest, MalformedInputEndsOnlyItsConnection) {
    Host good(exported);
    ASSERT_TRUE(good.import());
    Host bad(exported);
    EXPECT_TRUE(bad.say({'G', 'E', 'T', ' ', '/', ' ', 'H', 'T'}).empty());
    EXPECT_TRUE(bad.connection.isOver());
    EXPECT_FALSE(good.say(submit(1, towardsDevice, 0, 0)).empty());
    EXPECT_TRUE(good.say(Bytes(48, 0xFF)).empty());
    EXPECT_TRUE(good.connection.isOver());
}

TEST_F(ConnectionTest, AHostThatReadsNothingIsHeardNoMore) {
    Host host(exported);
    ASSERT_TRUE(host.import());
    const Bytes command = submit(1, towardsHost, 0, 18);
    EXPECT_TRUE(host.connection.wantsInput());
    for (int i = 0; i < 20000; ++i) {
        host.connection.receive(command.data(), command.size(), start);
    }
    EXPECT_FALSE(host.connection.wantsInput());
    host.connection.output().clear();
    EXPECT_TRUE(host.connection.wantsInput());
}

TEST_F(ConnectionTest, AHostThatKeepsTooMuchPendingIsHungUpOn) {
    Host host(exported);
    ASSERT_TRUE(host.import());
    for (int i = 0; i < 257; ++i) {
        EXPECT_FALSE(host.connection.isOver());
        host.say(submitRead(2));
    }
    EXPECT_TRUE(host.connection.isOver());
}

} // namespace
