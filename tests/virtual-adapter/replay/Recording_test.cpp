// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "replay/Recording.hpp"

#include "virtual-adapter/replay/Conversation.hpp"

#include <gtest/gtest.h>

using namespace virtual_adapter;
using test_support::Conversation;

namespace {

const Bytes read1{0x01, 0x00, 0x03, 0x14, 0x05};
const Bytes read2{0x02, 0x00, 0x03, 0x14, 0x06};
const Bytes high1{0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01};
const Bytes refused2{0x02, 0x00, 0x03, 0x14, 0x03, 0x00};
const Bytes interrupt{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x05};

class RecordingTest : public testing::Test {
protected:
    Recording recording() {
        const std::vector<Recording> recordings = recordingsOf(conversation.capture);
        EXPECT_EQ(recordings.size(), 1U);
        return recordings.empty() ? Recording() : recordings[0];
    }

    Conversation conversation;
};

TEST_F(RecordingTest, AResponseBelongsToTheRequestOfItsIdentifierAndCode) {
    conversation.request(read1);
    conversation.message(high1);
    conversation.request(read2);
    conversation.message(interrupt);
    conversation.message(refused2);
    const Recording recorded = recording();
    ASSERT_EQ(recorded.requests.size(), 2U);
    EXPECT_EQ(recorded.requests[0].frame, read1);
    EXPECT_EQ(recorded.requests[0].status, 0);
    EXPECT_EQ(recorded.requests[1].status, 3);
    ASSERT_EQ(recorded.messages.size(), 3U);
    EXPECT_EQ(recorded.messages[0].answers, 0U);
    EXPECT_EQ(recorded.messages[0].requestsBefore, 1U);
    EXPECT_EQ(recorded.messages[1].answers, std::nullopt);
    EXPECT_EQ(recorded.messages[1].frame, interrupt);
    EXPECT_EQ(recorded.messages[2].answers, 1U);
    EXPECT_EQ(recorded.messages[2].requestsBefore, 2U);
    EXPECT_EQ(recorded.goneAfter, std::nullopt);
}

TEST_F(RecordingTest, TheOldestRequestThatWaitsIsAnsweredFirst) {
    conversation.request(read1);
    conversation.request(read1);
    conversation.message(high1);
    conversation.message(high1);
    conversation.message(high1);
    const Recording recorded = recording();
    ASSERT_EQ(recorded.messages.size(), 3U);
    EXPECT_EQ(recorded.messages[0].answers, 0U);
    EXPECT_EQ(recorded.messages[1].answers, 1U);
    EXPECT_EQ(recorded.messages[2].answers, 1U) << "the last one of its kind, once more";
}

TEST_F(RecordingTest, AnAdapterThatRefusesRequestsAndComesBackIsNotGone) {
    conversation.request(read1, -5);
    conversation.leave();
    EXPECT_TRUE(recording().requests[0].isRefused);
    EXPECT_EQ(recording().goneAfter, 1U);
    conversation.request(read2, -5);
    EXPECT_EQ(recording().goneAfter, 1U) << "a request that it does not take proves nothing";
    conversation.request(read2);
    EXPECT_EQ(recording().goneAfter, std::nullopt);
}

TEST_F(RecordingTest, TheDescriptorsTellModelAndSerialNumber) {
    conversation.descriptor(1, 0, {18, 1, 0, 2, 0, 0, 0, 64, 0x09, 0x12, 2, 0, 0, 1, 1, 2, 3, 1});
    conversation.descriptor(3, 3, {10, 3, 'S', 0, 0xE9, 0, 0x3D, 0xD8, 0x00, 0xDE});
    conversation.request(read1);
    EXPECT_EQ(recording().settings.identity.productId, 2);
    EXPECT_EQ(recording().settings.serialNumber, "S\xC3\xA9\xF0\x9F\x98\x80");
}

TEST_F(RecordingTest, AnotherDeviceIsNoAdapter) {
    conversation.descriptor(1, 0, {18, 1, 0, 2, 0, 0, 0, 64, 0x01, 0x02, 2, 0, 0, 1, 1, 2, 3, 1});
    conversation.request(read1);
    EXPECT_TRUE(recordingsOf(conversation.capture).empty());
    EXPECT_TRUE(recordingsOf({}).empty());
}

} // namespace
