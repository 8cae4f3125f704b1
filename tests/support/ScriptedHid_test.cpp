// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The stand-in itself: what it is told to do with a conversation, it does.
#include "support/AsyncSdkTest.hpp"

#include <future>

#include <gtest/gtest-spi.h>

using namespace test_support;

namespace {

class ScriptedHidTest : public AsyncSdkTest {
protected:
    ScriptedHidTest() {
        sdk.disconnect();
        sdk.onResponse([this](const Bytes& frame) { received.push_back(frame.front()); });
        EXPECT_TRUE(sdk.connect(""));
    }

    void TearDown() override { sdk.disconnect(); }

    [[nodiscard]] static Bytes request(uint8_t identifier) {
        return GetParam().output({0x17, 0x00, identifier, 0x00, 0x03, 0x14, 0x05});
    }
    [[nodiscard]] static Bytes response(uint8_t identifier) {
        return GetParam().input({0x1F, 0x00, identifier, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01});
    }

    void send(uint8_t identifier) {
        EXPECT_EQ(sdk.gpioDigitalRead(identifier, GpioPinNumber_5), 0);
    }

    /// Sends a message that takes three reports.
    void sendLong() { EXPECT_EQ(sdk.uartSendMessage(9, Bytes(2 * GetParam().reportSize)), 0); }

    // The identifiers received, on the polling thread; whoever has waited until everything was read
    // may look.
    Bytes received;
};
INSTANTIATE_ON_BOTH_VARIANTS(ScriptedHidTest);

TEST_P(ScriptedHidTest, AWriteThatDiffersShowsTheBytesExpectedAndSeen) {
    const std::string rest = "\n  and " + std::to_string(GetParam().reportSize + 1 - 8) + " zeros";
    hid.expectWrite(request(0x11));
    EXPECT_NONFATAL_FAILURE(send(0x12), "expected:\n  00 17 00 11 00 03 14 05" + rest +
                                            "\nseen:\n  00 17 00 12 00 03 14 05" + rest);
}

TEST_P(ScriptedHidTest, AWriteThatNothingExpectsShowsItsBytes) {
    hid.expectWrite(request(1));
    send(1);
    EXPECT_NONFATAL_FAILURE(send(2), "nothing expects:\n  00 17 00 02 00 03 14 05");
}

TEST(ScriptedHid, AWriteThatWasExpectedAndNotMadeShowsItsBytes) {
    EXPECT_NONFATAL_FAILURE(
        {
            ScriptedHid hid;
            hid.expectWrite({0x00, 0x17});
        },
        "1 expected writes were not made; the next is\n  00 17");
}

TEST(ScriptedHid, TheUseOfADeviceThatIsNotOpenIsAMisuse) {
    ScriptedHid hid;
    const Bytes report(65);
    EXPECT_NONFATAL_FAILURE(hid.write(nullptr, report.data(), report.size()), "is not open");
}

TEST_P(ScriptedHidTest, AnswersComeLateTwiceOrNever) {
    hid.expectWrite(request(1));
    hid.expectWrite(request(2), {response(1), response(2), response(2)});
    hid.expectWrite(request(3));
    send(1);
    send(2);
    send(3);
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, (Bytes{1, 2, 2}));
}

TEST_P(ScriptedHidTest, AWriteThatSettlesReturnsWhenItsAnswersHaveBeenReceived) {
    hid.settleWrites(true);
    hid.expectWrite(request(1), {response(1), response(2)});
    send(1);
    EXPECT_EQ(received, (Bytes{1, 2}));
}

TEST_P(ScriptedHidTest, AReadErrorStandsInThePlaceOfAReport) {
    const size_t readsBefore = hid.readCalls();
    hid.deliver(response(1));
    hid.deliverReadError();
    hid.deliver(response(2));
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, (Bytes{1, 2}));
    EXPECT_GE(hid.readCalls(), readsBefore + 3);
}

TEST_P(ScriptedHidTest, AResponderThatWaitsStallsTheWriteAndNotTheReads) {
    std::promise<void> isStalled;
    std::promise<void> mayGoOn;
    hid.respond([&](const Bytes&) {
        isStalled.set_value();
        mayGoOn.get_future().wait();
        return std::vector<Bytes>{response(1)};
    });
    auto writing = std::async(std::launch::async, [&] { send(1); });
    isStalled.get_future().wait();
    hid.deliver(response(7));
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, (Bytes{7}));
    EXPECT_TRUE(hid.writes().empty());
    mayGoOn.set_value();
    writing.get();
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, (Bytes{7, 1}));
}

TEST_P(ScriptedHidTest, AResponderUnplugsTheAdapterInTheMiddleOfAMessage) {
    size_t reports = 0;
    hid.respond([&](const Bytes&) {
        if (++reports == 2) {
            hid.failWriting(-1);
            hid.failReading(true);
            hid.detachAll();
        }
        return std::vector<Bytes>{};
    });
    sendLong();
    EXPECT_EQ(reports, 3U) << "the library goes on writing";
    sdk.disconnect();
    EXPECT_FALSE(sdk.connect(""));
}

TEST_P(ScriptedHidTest, TheMessageOfWhichTheNthWriteWasLostIsNotAnswered) {
    hid.respond([&](const Bytes&) { return std::vector<Bytes>{response(1)}; });
    hid.failNth(HidCall::Write, 2);
    sendLong();
    EXPECT_TRUE(hid.nthHasFailed());
    EXPECT_EQ(hid.writes().size(), 1U);
    send(1);
    EXPECT_EQ(hid.writes().size(), 2U);
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(received, (Bytes{1, 1}));
}

TEST_P(ScriptedHidTest, EachOfSeveralAdaptersReadsItsOwnAnswers) {
    hid.attach({"1-2:1.0", vendorId, GetParam().productId, L"VA-0002"});
    VeltraAsyncSDK other;
    Bytes receivedByOther;
    other.onResponse([&](const Bytes& frame) { receivedByOther.push_back(frame.front()); });
    ASSERT_TRUE(other.connectWithSerialNumber("VA-0002"));
    hid.expectWrite(request(1), {response(1)});
    hid.expectWrite(request(2), {response(2)});
    hid.expectWrite(request(3), {response(3)});
    send(1);
    EXPECT_EQ(other.gpioDigitalRead(2, GpioPinNumber_5), 0);
    send(3);
    ASSERT_TRUE(hid.waitUntilDrained());
    other.disconnect();
    EXPECT_EQ(received, (Bytes{1, 3}));
    EXPECT_EQ(receivedByOther, Bytes{2});
}

TEST_P(ScriptedHidTest, AThreadThatReadsIsKnownUntilItHasEnded) {
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(ScriptedHid::readingThreads(), 1U);
    sdk.disconnect();
    EXPECT_EQ(ScriptedHid::readingThreads(), 0U);
}

} // namespace
