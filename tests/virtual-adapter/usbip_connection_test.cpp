#include "attach/UsbIpConnection.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace virtual_adapter;

namespace {

const UsbDevice::Time start{};

const Bytes listRequest{0x01, 0x11, 0x80, 0x05, 0, 0, 0, 0};

Bytes importRequest(const std::string& busId) {
    Bytes request{0x01, 0x11, 0x80, 0x03, 0, 0, 0, 0};
    request.insert(request.end(), busId.begin(), busId.end());
    request.resize(40);
    return request;
}

Bytes submit(uint8_t sequence, uint8_t direction, uint8_t endpoint, uint8_t length,
             const Bytes& setup = Bytes(8), const Bytes& data = {}) {
    Bytes command(48);
    command.at(3) = 1;
    command.at(7) = sequence;
    command.at(15) = direction;
    command.at(19) = endpoint;
    command.at(27) = length;
    std::copy(setup.begin(), setup.end(), command.begin() + 40);
    command.insert(command.end(), data.begin(), data.end());
    return command;
}

Bytes unlink(uint8_t sequence, uint8_t unlinked) {
    Bytes command(48);
    command.at(3) = 2;
    command.at(7) = sequence;
    command.at(23) = unlinked;
    return command;
}

const Bytes selectConfiguration{0x00, 0x09, 1, 0, 0, 0, 0, 0};
const Bytes askForString3{0x17, 0x00, 0x05, 0x00, 0x07, 0x04, 0x03};
const Bytes enterBootMode{0x13, 0x00, 0x05, 0x00, 0x02, 0x04};

class Host {
public:
    explicit Host(UsbIpPort& port) : connection(port) {}

    /// Sends bytes and returns what came back.
    Bytes say(const Bytes& bytes) {
        connection.receive(bytes.data(), bytes.size(), start);
        return std::exchange(connection.output(), {});
    }

    Bytes write(uint8_t sequence, const Bytes& report) {
        return say(submit(sequence, 0, 1, static_cast<uint8_t>(report.size()), Bytes(8), report));
    }

    bool import() { return say(importRequest("1-1")).size() == 320 && connection.isPluggedIn(); }

    UsbIpConnection connection;
};

class UsbIpConnectionTest : public testing::Test {
protected:
    UsbIpPort port{{}, false};
};

TEST_F(UsbIpConnectionTest, AListIsAnsweredAndTheConnectionIsOver) {
    Host host(port);
    EXPECT_EQ(host.say(listRequest).size(), 328U);
    EXPECT_TRUE(host.connection.isOver());
}

TEST_F(UsbIpConnectionTest, AnImportPlugsTheAdapterIn) {
    Host host(port);
    ASSERT_TRUE(host.import());
    EXPECT_EQ(host.say(submit(1, 0, 0, 0, selectConfiguration)),
              usbIpReturnSubmit(1, {1, UsbStatus::Completed, 0, {}}));
    EXPECT_TRUE(host.say(submit(2, 1, 1, 64)).empty()) << "nothing to read yet";
    const Bytes replies = host.write(3, askForString3);
    EXPECT_EQ(replies.size(), 48U + 48U + 64U);
    EXPECT_EQ(replies.at(7), 3) << "the write";
    EXPECT_EQ(replies.at(48 + 7), 2) << "the read";
    EXPECT_FALSE(host.connection.isOver());
}

TEST_F(UsbIpConnectionTest, ATransferTowardsTheDeviceIsNeverAnsweredWithData) {
    Host host(port);
    ASSERT_TRUE(host.import());
    const Bytes getDeviceDescriptor{0x80, 0x06, 0x00, 0x01, 0, 0, 18, 0};
    EXPECT_EQ(host.say(submit(1, 0, 0, 0, getDeviceDescriptor)).size(), 48U);
}

TEST_F(UsbIpConnectionTest, AnAdapterIsForOneHostAtATime) {
    Host first(port);
    ASSERT_TRUE(first.import());
    Host second(port);
    EXPECT_EQ(second.say(importRequest("1-1")), usbIpImportRefusal(UsbIpRefusal::DeviceBusy));
    EXPECT_TRUE(second.connection.isOver());
    Host third(port);
    EXPECT_EQ(third.say(listRequest), usbIpListReply(nullptr)) << "a taken device is not listed";
}

TEST_F(UsbIpConnectionTest, TheAdapterIsFreeAgainOnceItsHostHasGone) {
    {
        Host first(port);
        ASSERT_TRUE(first.import());
    }
    Host second(port);
    EXPECT_TRUE(second.import());
}

TEST_F(UsbIpConnectionTest, AnotherDeviceDoesNotExist) {
    Host host(port);
    EXPECT_EQ(host.say(importRequest("1-2")), usbIpImportRefusal(UsbIpRefusal::NoSuchDevice));
    EXPECT_TRUE(host.connection.isOver());
    EXPECT_FALSE(port.isTaken);
}

TEST_F(UsbIpConnectionTest, APendingCommandIsTakenBack) {
    Host host(port);
    ASSERT_TRUE(host.import());
    host.say(submit(1, 0, 0, 0, selectConfiguration));
    host.say(submit(2, 1, 1, 64));
    EXPECT_EQ(host.say(unlink(3, 2)), usbIpReturnUnlink(3, true));
    EXPECT_EQ(host.say(unlink(4, 2)), usbIpReturnUnlink(4, false));
}

TEST_F(UsbIpConnectionTest, BootModeEndsTheConnection) {
    Host host(port);
    ASSERT_TRUE(host.import());
    host.say(submit(1, 0, 0, 0, selectConfiguration));
    host.say(submit(2, 1, 1, 64));
    const Bytes replies = host.write(3, enterBootMode);
    ASSERT_EQ(replies.size(), 96U);
    EXPECT_EQ(Bytes(replies.begin() + 48, replies.end()),
              usbIpReturnSubmit(2, {2, UsbStatus::Unplugged, 0, {}}));
    EXPECT_TRUE(host.connection.isOver());
}

TEST_F(UsbIpConnectionTest, BootModeThatHadToWaitEndsTheConnectionToo) {
    port.settings.fault = {FaultKind::LateResponse, 40ms};
    Host host(port);
    ASSERT_TRUE(host.import());
    host.say(submit(1, 0, 0, 0, selectConfiguration));
    for (uint8_t sequence : {uint8_t{2}, uint8_t{3}}) {
        host.write(sequence, askForString3);
        host.say(submit(4, 1, 1, 64));
    }
    // The late response holds the others back until the adapter takes no more.
    while (!host.write(5, askForString3).empty()) {
    }
    EXPECT_TRUE(host.write(6, enterBootMode).empty());
    EXPECT_TRUE(host.say(submit(7, 1, 1, 64)).empty());
    EXPECT_TRUE(host.say(submit(8, 1, 1, 64)).empty());
    EXPECT_FALSE(host.connection.isOver());
    host.connection.serve(start + 40ms);
    EXPECT_TRUE(host.connection.isOver());
}

TEST_F(UsbIpConnectionTest, PluggingInAgainMakesAFreshAdapter) {
    {
        Host host(port);
        ASSERT_TRUE(host.import());
        host.say(submit(1, 0, 0, 0, selectConfiguration));
        host.write(2, enterBootMode);
    }
    Host host(port);
    ASSERT_TRUE(host.import());
    EXPECT_EQ(host.say(submit(1, 0, 0, 0, selectConfiguration)),
              usbIpReturnSubmit(1, {1, UsbStatus::Completed, 0, {}}));
}

TEST_F(UsbIpConnectionTest, CommandsMayFollowTheImportAtOnce) {
    Host host(port);
    Bytes bytes = importRequest("1-1");
    const Bytes command = submit(1, 0, 0, 0, selectConfiguration);
    bytes.insert(bytes.end(), command.begin(), command.end());
    EXPECT_EQ(host.say(bytes).size(), 320U + 48U);
}

TEST_F(UsbIpConnectionTest, MalformedInputEndsOnlyItsConnection) {
    Host good(port);
    ASSERT_TRUE(good.import());
    Host bad(port);
    EXPECT_TRUE(bad.say({'G', 'E', 'T', ' ', '/', ' ', 'H', 'T'}).empty());
    EXPECT_TRUE(bad.connection.isOver());
    EXPECT_FALSE(good.say(submit(1, 0, 0, 0, selectConfiguration)).empty());
    EXPECT_TRUE(good.say(Bytes(48, 0xFF)).empty());
    EXPECT_TRUE(good.connection.isOver());
}

TEST_F(UsbIpConnectionTest, AHostThatReadsNothingIsHeardNoMore) {
    Host host(port);
    ASSERT_TRUE(host.import());
    const Bytes getDeviceDescriptor{0x80, 0x06, 0x00, 0x01, 0, 0, 18, 0};
    const Bytes command = submit(1, 1, 0, 18, getDeviceDescriptor);
    EXPECT_TRUE(host.connection.wantsInput());
    for (int i = 0; i < 20000; ++i) {
        host.connection.receive(command.data(), command.size(), start);
    }
    EXPECT_FALSE(host.connection.wantsInput());
    host.connection.output().clear();
    EXPECT_TRUE(host.connection.wantsInput());
}

TEST_F(UsbIpConnectionTest, AHostThatKeepsTooMuchPendingIsHungUpOn) {
    Host host(port);
    ASSERT_TRUE(host.import());
    host.say(submit(1, 0, 0, 0, selectConfiguration));
    for (int i = 0; i < 257; ++i) {
        EXPECT_FALSE(host.connection.isOver());
        host.say(submit(2, 1, 1, 64));
    }
    EXPECT_TRUE(host.connection.isOver());
}

} // namespace
