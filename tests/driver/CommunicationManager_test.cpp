// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/CommunicationManager.hpp"
#include "support/ThreadStart.hpp"
#include "support/Variant.hpp"

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>

#include <gtest/gtest.h>

using namespace test_support;

namespace {

class CommunicationManagerTest : public testing::TestWithParam<Variant> {
protected:
    CommunicationManagerTest() {
        hid.attach({"1-1:1.0", vendorId, GetParam().productId, L"VA-0001"});
        manager.assignCallback([this](const Bytes& message) { received.push_back(message); });
    }

    /// Sends a request without a head.
    void send(const Bytes& request) {
        Message message{};
        message.data = request.data();
        message.dataSize = request.size();
        manager.sendRequest(message);
    }

    void deliver(const std::vector<Bytes>& reports) {
        for (const Bytes& report : reports) {
            hid.deliver(report);
        }
    }

    /// The messages of all reports delivered so far.
    const std::vector<Bytes>& messages() {
        EXPECT_TRUE(hid.waitUntilDrained());
        return received;
    }

    ScriptedHid hid;
    std::vector<Bytes> received;
    CommunicationManager manager;
};
INSTANTIATE_ON_BOTH_VARIANTS(CommunicationManagerTest);

TEST_P(CommunicationManagerTest, AnEmptyRequestSendsNothing) {
    ASSERT_TRUE(manager.connect("", ""));
    send({});
    EXPECT_TRUE(hid.writes().empty());
}

TEST_P(CommunicationManagerTest, AShortRequestIsOneReport) {
    hid.expectWrite(GetParam().output({0x13, 0x00, 0x01, 0x00, 0x02, 0x04}));
    ASSERT_TRUE(manager.connect("", ""));
    send({0x01, 0x00, 0x02, 0x04});
}

TEST_P(CommunicationManagerTest, ALongRequestIsSentInOrder) {
    const Bytes request = counting(65'549);
    hid.expectWrites(GetParam().outputs(request), {});
    ASSERT_TRUE(manager.connect("", ""));
    send(request);
}

TEST_P(CommunicationManagerTest, AHeadAndDataAreSentAsOneMessage) {
    for (const size_t headSize : {1U, 14U, 16U}) {
        for (const size_t size : {16U, 62U, 63U, 124U, 1022U, 1023U, 65'549U}) {
            const Bytes request = counting(size);
            hid.expectWrites(GetParam().outputs(request), {});
            ASSERT_TRUE(manager.connect("", ""));
            Message message{};
            std::copy_n(request.begin(), headSize, message.head.begin());
            message.headSize = headSize;
            message.data = request.data() + headSize;
            message.dataSize = size - headSize;
            manager.sendRequest(message);
        }
    }
}

TEST_P(CommunicationManagerTest, ARequestDoesNotRepeatTheOneBefore) {
    hid.expectWrites(GetParam().outputs(counting(2000)), {});
    hid.expectWrite(GetParam().output({0x07, 0x00, 0x55}));
    ASSERT_TRUE(manager.connect("", ""));
    send(counting(2000));
    send({0x55});
}

TEST_P(CommunicationManagerTest, EveryPacketIsWrittenThoughWritesFail) {
    ASSERT_TRUE(manager.connect("", ""));
    hid.failWriting(-1);
    const Bytes request = counting(2000);
    send(request);
    EXPECT_EQ(hid.writes(), GetParam().outputs(request));
}

TEST_P(CommunicationManagerTest, AResponseOfOneReportIsHandedUpWithoutItsPadding) {
    ASSERT_TRUE(manager.connect("", ""));
    deliver({GetParam().input({0x0F, 0x00, 0x0A, 0x0B, 0x0C})});
    EXPECT_EQ(messages(), (std::vector<Bytes>{{0x0A, 0x0B, 0x0C}}));
}

TEST_P(CommunicationManagerTest, AResponseOverSeveralReportsIsHandedUpOnceAndWhole) {
    ASSERT_TRUE(manager.connect("", ""));
    for (const size_t size : {62U, 63U, 124U, 1022U, 1023U, 65'549U}) {
        deliver(GetParam().inputs(counting(size)));
    }
    EXPECT_TRUE(messages() ==
                (std::vector<Bytes>{counting(62), counting(63), counting(124), counting(1022),
                                    counting(1023), counting(65'549)}));
}

TEST_P(CommunicationManagerTest, NothingIsHandedUpBeforeTheLastPacket) {
    ASSERT_TRUE(manager.connect("", ""));
    deliver({GetParam().input({0x09, 0x00, 0x01, 0x02}), GetParam().input({0x04, 0x00, 0x03})});
    EXPECT_TRUE(messages().empty());
}

TEST_P(CommunicationManagerTest, AFirstPacketDropsAHalfJoinedMessage) {
    ASSERT_TRUE(manager.connect("", ""));
    deliver({GetParam().input({0x09, 0x00, 0x01, 0x02}), GetParam().input({0x05, 0x00, 0x03}),
             GetParam().input({0x06, 0x00, 0x04})});
    EXPECT_EQ(messages(), (std::vector<Bytes>{{0x03, 0x04}}));
}

TEST_P(CommunicationManagerTest, AContinuationWithoutAFirstPacketIsAMessageOfItsOwn) {
    ASSERT_TRUE(manager.connect("", ""));
    deliver({GetParam().input({0x0A, 0x00, 0x01, 0x02})});
    EXPECT_EQ(messages(), (std::vector<Bytes>{{0x01, 0x02}}));
}

TEST_P(CommunicationManagerTest, AHalfJoinedMessageOutlivesADisconnect) {
    ASSERT_TRUE(manager.connect("", ""));
    deliver({GetParam().input({0x09, 0x00, 0x01, 0x02})});
    ASSERT_TRUE(hid.waitUntilDrained());
    manager.disconnect();
    ASSERT_TRUE(manager.connect("", ""));
    deliver({GetParam().input({0x06, 0x00, 0x03})});
    EXPECT_EQ(messages(), (std::vector<Bytes>{{0x01, 0x02, 0x03}}));
}

TEST_P(CommunicationManagerTest, TheLastReceiverAssignedGetsTheMessages) {
    std::vector<Bytes> others;
    manager.assignCallback([&](const Bytes& message) { others.push_back(message); });
    ASSERT_TRUE(manager.connect("", ""));
    deliver({GetParam().input({0x07, 0x00, 0x01})});
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(others, (std::vector<Bytes>{{0x01}}));
}

TEST_P(CommunicationManagerTest, AWholeMessageWithoutAReceiverIsABadFunctionCall) {
    ASSERT_TRUE(manager.connect("", ""));
    manager.assignCallback(nullptr);
    manager.onDriverResponseCallback(GetParam().input({0x05, 0x00, 0x01}));
    EXPECT_THROW(manager.onDriverResponseCallback(GetParam().input({0x06, 0x00, 0x02})),
                 std::bad_function_call);
}

TEST_P(CommunicationManagerTest, AReportBeforeTheFirstConnectIsDropped) {
    manager.onDriverResponseCallback(GetParam().input({0x07, 0x00, 0x01}));
    EXPECT_TRUE(received.empty());
}

TEST_P(CommunicationManagerTest, AReportReadBeforeConnectIsDoneIsNotLost) {
    deliver({GetParam().input({0x07, 0x00, 0x55})});
    {
        const ThreadStart slowly([&](const auto& start) {
            const int result = start();
            EXPECT_FALSE(hid.waitForReads(2, 100)) << "the report was handled too early";
            return result;
        });
        ASSERT_TRUE(manager.connect("", ""));
    }
    EXPECT_EQ(messages(), (std::vector<Bytes>{{0x55}}));
}

TEST_P(CommunicationManagerTest, ConnectingAnOpenLinkEnumeratesNothingAndKeepsItWorking) {
    hid.expectWrite(GetParam().output({0x07, 0x00, 0x55}), {GetParam().input({0x07, 0x00, 0x66})});
    ASSERT_TRUE(manager.connect("", ""));
    EXPECT_TRUE(manager.connect("no such path", "no such serial number"));
    EXPECT_EQ(hid.enumerateCalls(), 1U);
    send({0x55});
    EXPECT_EQ(messages(), (std::vector<Bytes>{{0x66}}));
}

TEST_P(CommunicationManagerTest, ConnectingAnOpenLinkDoesNotWaitForTheReceiverThatRuns) {
    std::promise<void> entered;
    std::promise<void> connectedAgain;
    auto mayReturn = connectedAgain.get_future();
    auto outcome = std::future_status::deferred;
    manager.assignCallback([&](const Bytes&) {
        entered.set_value();
        outcome = mayReturn.wait_for(std::chrono::milliseconds(generousLimitMs));
    });
    ASSERT_TRUE(manager.connect("", ""));
    deliver({GetParam().input({0x07, 0x00, 0x01})});
    entered.get_future().wait();
    EXPECT_TRUE(manager.connect("", ""));
    connectedAgain.set_value();
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(outcome, std::future_status::ready) << "connecting waited for the receiver";
}

TEST_P(CommunicationManagerTest, AFailedConnectChangesNothing) {
    EXPECT_FALSE(manager.connect("no such path", ""));
    EXPECT_FALSE(manager.connect("", "no such serial number"));
    EXPECT_EQ(hid.openDevices(), 0U);
    EXPECT_TRUE(manager.connect("1-1:1.0", "VA-0001"));
    EXPECT_EQ(hid.openedPath(), "1-1:1.0");
}

TEST_P(CommunicationManagerTest, AfterConnectingTheOtherModelRequestsAreSplitByItsSize) {
    const Variant& other = GetParam().reportSize == fullSpeed.reportSize ? highSpeed : fullSpeed;
    hid.attach({"1-2:1.0", vendorId, other.productId, L"VA-0002"});
    const Bytes request = counting(1023);
    hid.expectWrites(GetParam().outputs(request), {});
    hid.expectWrites(other.outputs(request), other.inputs(counting(2000)));
    ASSERT_TRUE(manager.connect("1-1:1.0", ""));
    send(request);
    manager.disconnect();
    ASSERT_TRUE(manager.connect("1-2:1.0", ""));
    send(request);
    EXPECT_EQ(messages(), std::vector<Bytes>{counting(2000)});
}

TEST_P(CommunicationManagerTest, ARequestAfterADisconnectWritesNothing) {
    ASSERT_TRUE(manager.connect("", ""));
    manager.disconnect();
    send({0x55});
    EXPECT_TRUE(hid.writes().empty());
}

TEST_P(CommunicationManagerTest, AReadErrorIsHandedUp) {
    std::promise<void> told;
    manager.assignReadErrorCallback([&] { told.set_value(); });
    hid.deliverReadError();
    ASSERT_TRUE(manager.connect("", ""));
    EXPECT_EQ(told.get_future().wait_for(std::chrono::milliseconds(generousLimitMs)),
              std::future_status::ready);
    manager.disconnect();
}

} // namespace
