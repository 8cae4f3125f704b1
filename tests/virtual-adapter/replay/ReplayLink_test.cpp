// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "replay/ReplayLink.hpp"

#include "virtual-adapter/replay/Conversation.hpp"

#include <gtest/gtest.h>

using namespace virtual_adapter;
using test_support::Conversation;

namespace {

using Frames = std::vector<Bytes>;

const Bytes readPin5{0x01, 0x00, 0x03, 0x14, 0x05};
const Bytes readPin6{0x02, 0x00, 0x03, 0x14, 0x06};
const Bytes pin5IsHigh{0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01};
const Bytes pin6IsLow{0x02, 0x00, 0x03, 0x14, 0x00, 0x00, 0x00};
const Bytes interrupt{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x05};

Bytes withIdentifier(uint8_t identifier, Bytes frame) {
    frame[0] = identifier;
    return frame;
}

class ReplayLinkTest : public testing::Test {
protected:
    /// Whether the adapter takes the request.
    bool send(const Bytes& frame) {
        if (!link) {
            recording = recordingsOf(conversation.capture).at(0);
            link.emplace(recording,
                         [this](const std::string& text) { differences.push_back(text); });
        }
        return link->writeReport(Conversation::reportOf(frame), {});
    }

    Frames received() {
        Frames frames;
        while (link->nextInputDue()) {
            Bytes report = link->takeInputReport({}).value();
            EXPECT_EQ(report.size(), 64U);
            report.resize(2 + report[0] / 4U);
            frames.emplace_back(report.begin() + 2, report.end());
        }
        return frames;
    }

    Conversation conversation;
    Recording recording;
    std::optional<ReplayLink> link;
    std::vector<std::string> differences;
};

TEST_F(ReplayLinkTest, AnAnswerCarriesTheProgramsIdentifier) {
    conversation.request(readPin5);
    conversation.message(pin5IsHigh);
    EXPECT_TRUE(send(withIdentifier(9, readPin5)));
    EXPECT_EQ(received(), Frames{withIdentifier(9, pin5IsHigh)});
    EXPECT_EQ(link->missing(), "");
}

TEST_F(ReplayLinkTest, TheNextRecordedRequestIsPreferred) {
    const Bytes pin5IsLow{0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x00};
    conversation.request(readPin5);
    conversation.message(pin5IsHigh);
    conversation.request(readPin6);
    conversation.message(pin6IsLow);
    conversation.request(readPin5);
    conversation.message(pin5IsLow);
    send(readPin6);
    send(readPin5);
    EXPECT_EQ(received(), (Frames{pin6IsLow, pin5IsLow}));
    send(readPin5);
    EXPECT_EQ(received(), Frames{pin5IsHigh}) << "what is left is used as well";
}

TEST_F(ReplayLinkTest, NotificationsFollowTheRequestThatTheyFollowed) {
    conversation.message(interrupt);
    conversation.request(readPin5);
    conversation.message(pin5IsHigh);
    conversation.message(interrupt);
    conversation.request(readPin6);
    send(readPin5);
    EXPECT_EQ(received(), (Frames{interrupt, pin5IsHigh, interrupt}));
    send(readPin6);
    EXPECT_EQ(received(), Frames()) << "a lost response is lost";
}

TEST_F(ReplayLinkTest, ALateResponseIsLateAgain) {
    conversation.request(readPin5);
    conversation.request(readPin6);
    conversation.message(pin5IsHigh);
    conversation.message(pin6IsLow);
    send(withIdentifier(7, readPin5));
    EXPECT_EQ(received(), Frames());
    send(withIdentifier(8, readPin6));
    EXPECT_EQ(received(), (Frames{withIdentifier(7, pin5IsHigh), withIdentifier(8, pin6IsLow)}));
}

TEST_F(ReplayLinkTest, ARefusedRequestIsRefusedAgain) {
    conversation.request(readPin5, -5);
    conversation.request(readPin6);
    EXPECT_FALSE(send(readPin5));
    EXPECT_TRUE(send(readPin6));
    EXPECT_TRUE(link->isOnBus());
}

TEST_F(ReplayLinkTest, AnAdapterThatLeftLeavesAgain) {
    conversation.request(readPin5);
    conversation.message(pin5IsHigh);
    conversation.leave();
    conversation.request(readPin6, -5);
    EXPECT_TRUE(send(readPin5));
    EXPECT_FALSE(link->isOnBus());
    EXPECT_EQ(received(), Frames{pin5IsHigh});
    EXPECT_FALSE(send(readPin6));
    EXPECT_EQ(link->missing(), "");
    EXPECT_TRUE(differences.empty());
}

TEST_F(ReplayLinkTest, TheFirstDifferenceIsToldAndTheAdapterIsGone) {
    conversation.request(readPin5);
    conversation.message(pin5IsHigh);
    conversation.request(readPin6);
    conversation.message(pin6IsLow);
    send(readPin5);
    EXPECT_FALSE(send({0x03, 0x00, 0x03, 0x14, 0x07}));
    EXPECT_FALSE(link->isOnBus());
    EXPECT_FALSE(send({0x04, 0x00, 0x03, 0x14, 0x08}));
    EXPECT_EQ(differences,
              std::vector<std::string>{
                  "request 2 was not recorded\n"
                  "  sent:     command 0x1403, payload 07\n"
                  "  recorded: command 0x1403, payload 06, answered with status 0x0000"});
}

TEST_F(ReplayLinkTest, ARequestTooManyIsADifference) {
    conversation.request(readPin5);
    send(readPin5);
    EXPECT_EQ(link->missing(), "");
    EXPECT_FALSE(send(readPin5));
    EXPECT_EQ(differences, std::vector<std::string>{"request 2 was not recorded\n"
                                                    "  sent:     command 0x1403, payload 05\n"
                                                    "  recorded: nothing more"});
}

TEST_F(ReplayLinkTest, WhatWasNotSentIsMissing) {
    conversation.request({0x01, 0x00, 0x05, 0x19});
    conversation.request(readPin6);
    send(readPin6);
    EXPECT_EQ(link->missing(), "command 0x1905, payload none, not answered");
}

} // namespace
