// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/SocketConnection.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>

using namespace std::chrono_literals;
using virtual_adapter::AdapterRack;
using virtual_adapter::AdapterSettings;
using virtual_adapter::Bytes;
using virtual_adapter::SocketConnection;

namespace {

constexpr SocketConnection::Time start{};

const Bytes hello{0x07, 0, 0, 0, 0x01, 'V', 'V', 'A', 'S', 0x01, 0x00};
const Bytes list{0x01, 0, 0, 0, 0x02};
const Bytes open1{0x02, 0, 0, 0, 0x03, 0x01};
const Bytes join1{0x05, 0, 0, 0, 0x04, 0x01, 0, 0, 0};
/// Identity string 1.
const Bytes write{0x08, 0, 0, 0, 0x05, 0x17, 0x00, 0x09, 0x00, 0x07, 0x04, 0x01};
const Bytes readNow{0x05, 0, 0, 0, 0x06, 0, 0, 0, 0};
const Bytes read20ms{0x05, 0, 0, 0, 0x06, 20, 0, 0, 0};
const Bytes readForEver{0x05, 0, 0, 0, 0x06, 0xFF, 0xFF, 0xFF, 0xFF};
const Bytes close1{0x01, 0, 0, 0, 0x07};

const Bytes opened1{0x06, 0, 0, 0, 0x83, 0x00, 0x01, 0, 0, 0};
const Bytes joined{0x02, 0, 0, 0, 0x84, 0x00};
const Bytes written{0x02, 0, 0, 0, 0x85, 0x00};
const Bytes nothingYet{0x02, 0, 0, 0, 0x86, 0x01};
const Bytes gone{0x02, 0, 0, 0, 0x86, 0x02};
const Bytes closed{0x01, 0, 0, 0, 0x87};

Bytes response() {
    Bytes message{0x42, 0,    0,    0,    0x86, 0x00, 0x37, 0x00, 0x09, 0x00, 0x07,
                  0x04, 0x00, 0x00, 0x07, 'V',  'e',  'l',  't',  'r',  'a'};
    message.resize(70);
    return message;
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

class Client {
public:
    explicit Client(AdapterRack& rack) : connection(rack) {}

    /// What the adapter answers.
    Bytes say(const Bytes& bytes, SocketConnection::Time now = start) {
        connection.receive(bytes.data(), bytes.size(), now);
        return heard(now);
    }

    Bytes heard(SocketConnection::Time now = start) {
        Bytes all;
        do {
            all = all + connection.output();
            connection.output().clear();
        } while (connection.serve(now));
        return all;
    }

    SocketConnection connection;
};

/// One adapter, and a client that has greeted it.
class SocketConnectionTest : public testing::Test {
protected:
    SocketConnectionTest() {
        EXPECT_EQ(client.say(hello), Bytes());
        EXPECT_EQ(reader.say(hello), Bytes());
    }

    AdapterRack rack{std::vector<AdapterSettings>(1)};
    Client client{rack};
    Client reader{rack};
};

TEST_F(SocketConnectionTest, AnAdapterIsListedWithItsTextsInWideCharacters) {
    const Bytes reply = client.say(list);
    const Bytes begin{0x6C, 0,    0,    0, 0x82, 0x01, 0x01, 0x01, 0x09, 0x12, 0x01, 0x00,
                      0x00, 0x01, 0x06, 0, 'V',  0,    0,    0,    'e',  0,    0,    0};
    EXPECT_EQ(Bytes(reply.begin(), reply.begin() + 24), begin);
    EXPECT_EQ(reply.size(), 0x70U);
    const Bytes end{'0', 0, 0, 0, '1', 0, 0, 0};
    EXPECT_EQ(Bytes(reply.end() - 8, reply.end()), end);
}

TEST_F(SocketConnectionTest, ARequestIsAnsweredAtTheReadersConnection) {
    EXPECT_EQ(client.say(open1), opened1);
    EXPECT_EQ(reader.say(join1), joined);
    EXPECT_EQ(reader.say(readNow), nothingYet);
    EXPECT_EQ(reader.say(readForEver), Bytes());
    EXPECT_EQ(client.say(write), written);
    EXPECT_EQ(reader.heard(), response());
}

TEST_F(SocketConnectionTest, AReadWaitsUntilItsTimeIsOver) {
    client.say(open1);
    EXPECT_EQ(client.say(read20ms), Bytes());
    EXPECT_EQ(client.connection.nextDue(), start + 20ms);
    EXPECT_EQ(client.heard(start + 19ms), Bytes());
    EXPECT_EQ(client.heard(start + 20ms), nothingYet);
    EXPECT_EQ(client.connection.nextDue(), std::nullopt);
}

TEST_F(SocketConnectionTest, AWriteIsAnsweredWhenItHasCrossedTheBus) {
    AdapterSettings slow;
    slow.latency = 1ms;
    AdapterRack another({slow});
    Client writer(another);
    Client waiter(another);
    EXPECT_EQ(writer.say(hello + open1), opened1);
    EXPECT_EQ(waiter.say(hello + join1), joined);
    EXPECT_EQ(waiter.say(readForEver), Bytes());
    EXPECT_EQ(writer.say(write), Bytes());
    EXPECT_EQ(writer.connection.nextDue(), start + 1ms);
    EXPECT_EQ(writer.heard(start + 1ms), written);
    EXPECT_EQ(waiter.heard(start + 1ms), Bytes());
    EXPECT_EQ(waiter.connection.nextDue(), start + 2ms);
    EXPECT_EQ(waiter.heard(start + 2ms), response());
}

TEST_F(SocketConnectionTest, ClosingEndsAWaitingRead) {
    client.say(open1);
    reader.say(join1);
    reader.say(readForEver);
    EXPECT_EQ(client.say(close1), closed);
    EXPECT_EQ(reader.heard(), gone);
    EXPECT_EQ(reader.say(readForEver), gone);
    EXPECT_EQ(client.say(write), (Bytes{0x02, 0, 0, 0, 0x85, 0x02}));
}

TEST_F(SocketConnectionTest, OneClientHasTheAdapterUntilItIsGone) {
    client.say(open1);
    EXPECT_EQ(reader.say(open1), (Bytes{0x06, 0, 0, 0, 0x83, 0x03, 0, 0, 0, 0}));
    client.connection.hangUp(start);
    Client next(rack);
    EXPECT_EQ(next.say(hello + open1), (Bytes{0x06, 0, 0, 0, 0x83, 0x00, 0x03, 0, 0, 0}));
}

TEST_F(SocketConnectionTest, AReaderThatIsGoneClosesNothing) {
    client.say(open1);
    reader.say(join1);
    reader.connection.hangUp(start);
    EXPECT_EQ(client.say(write), written);
}

TEST_F(SocketConnectionTest, WhatIsNotThereIsNotOpened) {
    EXPECT_EQ(client.say({0x02, 0, 0, 0, 0x03, 0x00}),
              (Bytes{0x06, 0, 0, 0, 0x83, 0x02, 0, 0, 0, 0}));
    EXPECT_EQ(client.say({0x02, 0, 0, 0, 0x03, 0x02}),
              (Bytes{0x06, 0, 0, 0, 0x83, 0x02, 0, 0, 0, 0}));
    EXPECT_EQ(reader.say(join1), (Bytes{0x02, 0, 0, 0, 0x84, 0x02}));
    EXPECT_EQ(reader.say(readNow), gone);
}

TEST_F(SocketConnectionTest, AStimulusIsAnsweredWhenItIsApplied) {
    const Bytes unplug{0x0F, 0,   0,   0,   0x08, 0x07, 0,   'V', 'A', '-',
                       '0',  '0', '0', '1', 'u',  'n',  'p', 'l', 'u', 'g'};
    Bytes sized = unplug;
    sized[0] = static_cast<uint8_t>(unplug.size() - 4);
    EXPECT_EQ(client.say(sized), (Bytes{0x01, 0, 0, 0, 0x88}));
    EXPECT_EQ(client.say(list), (Bytes{0x02, 0, 0, 0, 0x82, 0x00}));
}

TEST_F(SocketConnectionTest, HoldingTheAdaptersHasNoAnswer) {
    EXPECT_FALSE(client.connection.holdsAdapters());
    EXPECT_EQ(client.say({0x01, 0, 0, 0, 0x09}), Bytes());
    EXPECT_TRUE(client.connection.holdsAdapters());
}

TEST_F(SocketConnectionTest, MessagesMayComeInAnyPieces) {
    Bytes all;
    for (const uint8_t byte : open1 + write + readNow + close1) {
        all = all + client.say({byte});
    }
    EXPECT_EQ(all, opened1 + written + response() + closed);
    Client another(rack);
    EXPECT_EQ(another.say(hello + open1 + write + readNow + close1),
              (Bytes{0x06, 0, 0, 0, 0x83, 0x00, 0x02, 0, 0, 0}) + written + response() + closed);
}

TEST_F(SocketConnectionTest, WhatMakesNoSenseEndsTheConnectionWithAWord) {
    Bytes otherVersion = hello;
    otherVersion[9] = 2;
    const std::vector<Bytes> cases{otherVersion,                          // as the first message
                                   list,                                  // before the hello
                                   hello + Bytes{0, 0, 0, 0},             // without a kind
                                   hello + Bytes{0xFF, 0xFF, 0xFF, 0xFF}, // too long
                                   hello + Bytes{0x01, 0, 0, 0, 0x0A},    // no such kind
                                   hello + Bytes{0x02, 0, 0, 0, 0x02, 0}, // longer than its kind
                                   hello + Bytes{0x01, 0, 0, 0, 0x03},    // shorter than its kind
                                   hello + Bytes{0x03, 0, 0, 0, 0x08, 0xFF, 0xFF},
                                   hello + open1 + open1,
                                   hello + open1 + join1};
    for (const Bytes& bytes : cases) {
        AdapterRack another{std::vector<AdapterSettings>(1)};
        Client hostile(another);
        const Bytes reply = hostile.say(bytes);
        EXPECT_TRUE(hostile.connection.isOver()) << testing::PrintToString(bytes);
        EXPECT_THAT(std::string(reply.begin(), reply.end()),
                    testing::HasSubstr("\xFFveltra-virtual-adapter: "))
            << testing::PrintToString(bytes);
        EXPECT_EQ(hostile.say(list), Bytes()) << "nothing is said any more";
    }
}

} // namespace
