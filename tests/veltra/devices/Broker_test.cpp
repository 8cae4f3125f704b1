// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "devices/Broker.hpp"
#include "devices/I2cDevice.hpp"
#include "devices/RecordingBuses.hpp"
#include "launch/SocketPlace.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <thread>

using devices::Bytes;
using devices::RequestKind;
using usbip::FileDescriptor;
using virtual_adapter::ByteWriter;

namespace {

class BrokerTest : public testing::Test {
protected:
    BrokerTest() {
        switchboard.add("i2c-0", std::make_unique<devices::I2cDevice>(buses, 0));
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe(ends.data()), 0);
        stop = FileDescriptor(ends[0]);
        stopper = FileDescriptor(ends[1]);
        thread =
            std::thread([this] { devices::Broker(switchboard, place.takeListener()).run(stop); });
    }
    ~BrokerTest() override {
        stopper.reset();
        thread.join();
    }

    [[nodiscard]] FileDescriptor connected() const {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, place.path().c_str(), place.path().size());
        FileDescriptor client(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        EXPECT_EQ(connect(client.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        return client;
    }

    static Bytes request(RequestKind kind, uint8_t device, const Bytes& content) {
        const auto size = static_cast<uint32_t>(1 + devices::idSize + content.size());
        return ByteWriter()
            .u32(size)
            .u8(static_cast<uint8_t>(kind))
            .u8(device)
            .zeros(devices::idSize - 1)
            .bytes(content)
            .take();
    }
    static Bytes opening(uint8_t device) {
        return request(RequestKind::Open, device, {2, 'i', '2', 'c', '-', '0'});
    }
    static Bytes reading(uint8_t device, uint8_t count) {
        return request(RequestKind::Read, device, {count, 0, 0, 0});
    }

    static void say(const FileDescriptor& client, const Bytes& bytes) {
        EXPECT_EQ(send(client.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(bytes.size()));
    }
    /// All until the connection ends, or the given number of bytes.
    static Bytes hear(const FileDescriptor& client, size_t size = 1000) {
        Bytes heard(size);
        size_t have = 0;
        ssize_t got = 0;
        while (have < size && (got = recv(client.get(), heard.data() + have, size - have, 0)) > 0) {
            have += static_cast<size_t>(got);
        }
        heard.resize(have);
        return heard;
    }
    Bytes ask(const Bytes& bytes) const {
        const FileDescriptor client = connected();
        say(client, bytes);
        return hear(client);
    }

    const Bytes done{4, 0, 0, 0, 0, 0, 0, 0};
    const Bytes noDevice{4, 0, 0, 0, 0xED, 0xFF, 0xFF, 0xFF};

    RecordingBuses buses;
    devices::Switchboard switchboard;
    TemporaryDirectory directory;
    launch::SocketPlace place = launch::SocketPlace::at(directory.path() / "socket");
    FileDescriptor stop;
    FileDescriptor stopper;
    std::thread thread;
};

TEST_F(BrokerTest, ADeviceLivesAsLongAsItsConnection) {
    {
        const FileDescriptor device = connected();
        say(device, opening(7));
        EXPECT_EQ(hear(device, 8), done);
        EXPECT_EQ(ask(reading(7, 2)), (Bytes{6, 0, 0, 0, 2, 0, 0, 0, 1, 2}));
        EXPECT_EQ(ask(opening(7)), (Bytes{4, 0, 0, 0, 0xF0, 0xFF, 0xFF, 0xFF})) << "it is taken";
        const FileDescriptor copy(dup(device.get()));
        EXPECT_EQ(send(copy.get(), "x", 1, MSG_NOSIGNAL), -1) << "nobody reads past the functions";
        EXPECT_EQ(errno, EPIPE);
    }
    Bytes answer = done;
    while (answer != noDevice) { // when the broker has seen it
        answer = ask(reading(7, 0));
    }
}

TEST_F(BrokerTest, SilentSlowAndVanishingProgramsHarmNobody) {
    const FileDescriptor silent = connected();
    const FileDescriptor slow = connected();
    say(slow, {2, 0, 0, 0});
    {
        const FileDescriptor vanishing = connected();
        say(vanishing, {1, 0});
    }
    const FileDescriptor device = connected();
    say(device, opening(1));
    EXPECT_EQ(hear(device, 8), done);
    for (const uint8_t byte : reading(1, 1)) {
        say(silent, {byte});
    }
    EXPECT_EQ(hear(silent), (Bytes{5, 0, 0, 0, 1, 0, 0, 0, 1}));
}

TEST_F(BrokerTest, AMessageThatIsTooLongOrFollowedByAnotherEndsItsConnection) {
    EXPECT_EQ(ask({0xFF, 0xFF, 0xFF, 0xFF}), Bytes());
    Bytes two = reading(1, 1);
    two.push_back(0);
    EXPECT_EQ(ask(two), Bytes());
    EXPECT_EQ(ask({0, 0, 0, 0}), (Bytes{4, 0, 0, 0, 0xEA, 0xFF, 0xFF, 0xFF}));
}

TEST_F(BrokerTest, AHouseFullOfSilentProgramsMakesRoom) {
    std::vector<FileDescriptor> silent;
    for (int i = 0; i < 300; ++i) {
        silent.push_back(connected());
    }
    EXPECT_EQ(ask(request(RequestKind::Find, 0, {'i', '2', 'c', '-', '0'})), done);
    EXPECT_EQ(hear(silent.front()), Bytes()) << "the one that was silent for longest had to go";
}

TEST_F(BrokerTest, WhatIsNotThereIsNotFound) {
    EXPECT_EQ(ask(request(RequestKind::Find, 0, {'i', '2', 'c', '-', '1'})),
              (Bytes{4, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(ask(reading(9, 1)), noDevice);
}

} // namespace
