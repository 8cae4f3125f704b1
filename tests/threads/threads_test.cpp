// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/Readable.hpp"
#include "support/SdkTest.hpp"
#include "support/SleepingThread.hpp"

#include <veltrasdk/NotificationQueue.hpp>
#include <veltrasdk/VeltraAsyncSDK.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include <unistd.h>

using namespace test_support;

namespace {

// What these tests look for, the thread sanitizer finds; the other builds run the same code.

const Bytes gpioEvent{0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x2A};

/// Runs a function on a thread of its own, over and over, until the end of the scope.
class Meanwhile {
public:
    explicit Meanwhile(std::function<void()> function)
        : thread([this, repeated = std::move(function)] {
              while (!ended) {
                  repeated();
              }
          }) {}
    ~Meanwhile() {
        ended = true;
        thread.join();
    }
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;

private:
    std::atomic<bool> ended{false};
    std::thread thread;
};

class ThreadsTest : public SdkTest {
protected:
    /// Checks that the link is down for good, although reports are still there to be read.
    void expectNobodyReads() {
        EXPECT_EQ(hid.openDevices(), 0U);
        EXPECT_EQ(ScriptedHid::readingThreads(), 0U) << "a thread is left that could call back";
    }
};
INSTANTIATE_ON_BOTH_VARIANTS(ThreadsTest);

/// The response to reading 40 bytes: everything behind the command code has one value.
Bytes responseOf(uint8_t value) {
    Bytes frame(9 + 40, value);
    const Bytes header{0x01, 0x00, 0x05, 0x09};
    std::copy(header.begin(), header.end(), frame.begin());
    Bytes packet{static_cast<uint8_t>(frame.size() << 2U | 3U), 0x00};
    packet.insert(packet.end(), frame.begin(), frame.end());
    return packet;
}

TEST_P(ThreadsTest, DecodingSeesOneWholeResponseWhileLateOnesComeIn) {
    VeltraSDK& object = sdk();
    const Meanwhile lateResponses([&] {
        hid.deliver(GetParam().input(responseOf(0x11)));
        hid.deliver(GetParam().input(responseOf(0x22)));
        EXPECT_TRUE(hid.waitUntilDrained());
    });
    for (int i = 0; i < 300; ++i) {
        Bytes data;
        const uint16_t result = object.i2cRead(0, 0x50, {}, 40, data, false);
        ASSERT_TRUE(result == 0x1111 || result == 0x2222) << result;
        ASSERT_EQ(data, Bytes(40, static_cast<uint8_t>(result & 0xFFU)));
    }
}

TEST_P(ThreadsTest, NotificationsArriveWhileOperationsWait) {
    std::atomic<unsigned> notifications{0};
    hid.respond([&](const Bytes& report) {
        return std::vector<Bytes>{
            GetParam().input(gpioEvent),
            GetParam().input({0x1F, 0x00, report[3], report[4], 0x03, 0x14, 0x00, 0x00, report[7]}),
            GetParam().input(gpioEvent)};
    });
    VeltraSDK object(patientMs);
    object.onNotification([&](const Notification& notification) {
        ASSERT_NE(notification.gpio(), nullptr);
        EXPECT_EQ(notification.gpio()->value, 0x2A);
        ++notifications;
    });
    ASSERT_TRUE(object.connect(""));
    for (uint8_t i = 0; i < 200; ++i) {
        GpioLogicLevel level{};
        ASSERT_EQ(object.gpioDigitalRead(static_cast<GpioPinNumber>(i), level), 0);
        ASSERT_EQ(level, i);
    }
    ASSERT_TRUE(hid.waitUntilDrained());
    EXPECT_EQ(notifications, 400U);
    object.disconnect();
}

std::atomic<unsigned> callbacks{0};
std::atomic<bool> handleExists{false};

void countCallback(const Notification* notification) {
    EXPECT_TRUE(handleExists) << "a callback ran without its handle";
    unsigned char value = 0;
    EXPECT_TRUE(VeltraSDK_notificationAsGpio(notification, &value));
    EXPECT_EQ(value, 0x2A);
    ++callbacks;
}

TEST_P(ThreadsTest, TheCallbackRunsWhileCallsWait) {
    callbacks = 0;
    handleExists = true;
    hid.respond([&](const Bytes& report) {
        return std::vector<Bytes>{
            GetParam().input(gpioEvent),
            GetParam().input({0x1B, 0x00, report[3], report[4], 0x05, 0x19, 0x00, 0x00})};
    });
    const OwnedHandle owned(VeltraSDK_Create(patientMs));
    VeltraSDK_onNotification(owned.get(), countCallback);
    ASSERT_TRUE(VeltraSDK_Connect(owned.get(), nullptr));
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(VeltraSDK_I3cResetBus(owned.get()), 0);
    }
    EXPECT_EQ(callbacks, 200U);
}

TEST_P(ThreadsTest, ALinkClosesInAStormOfReports) {
    std::atomic<unsigned> notifications{0};
    std::atomic<bool> linkIsUp{false};
    VeltraSDK object(0);
    object.onNotification([&](const Notification&) {
        EXPECT_TRUE(linkIsUp) << "a handler ran after the disconnect";
        ++notifications;
    });
    hid.deliverEndlessly(GetParam().input(gpioEvent));
    for (int i = 0; i < 50; ++i) {
        notifications = 0;
        linkIsUp = true;
        ASSERT_TRUE(object.connect(""));
        ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 3));
        object.disconnect();
        linkIsUp = false;
        EXPECT_GT(notifications, 0U);
        expectNobodyReads();
        EXPECT_EQ(object.i3cResetBus(), 0x4000);
    }
}

TEST_P(ThreadsTest, BootModeEndsTheLinkInAStormOfReports) {
    std::atomic<unsigned> notifications{0};
    VeltraSDK object(0);
    object.onNotification([&](const Notification&) { ++notifications; });
    hid.deliverEndlessly(GetParam().input(gpioEvent));
    for (int i = 0; i < 20; ++i) {
        notifications = 0;
        ASSERT_TRUE(object.connect(""));
        ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 3));
        EXPECT_EQ(object.enterBootMode(), 0);
        EXPECT_GT(notifications, 0U);
        expectNobodyReads();
    }
}

TEST_P(ThreadsTest, NoHandlerRunsAfterDestructionInAStormOfNotifications) {
    hid.deliverEndlessly(GetParam().input(gpioEvent));
    for (int i = 0; i < 50; ++i) {
        // A handler that ran too late would touch freed memory.
        auto notifications = std::make_unique<unsigned>(0);
        auto object = std::make_unique<VeltraSDK>(0);
        object->onNotification([&](const Notification&) { ++*notifications; });
        ASSERT_TRUE(object->connect(""));
        ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 3));
        object.reset();
        expectNobodyReads();
        EXPECT_GT(*notifications, 0U);
        notifications.reset();
    }
}

TEST_P(ThreadsTest, NoReceiverRunsAfterDestructionInAStormOfFrames) {
    hid.deliverEndlessly(GetParam().input(gpioEvent));
    for (int i = 0; i < 50; ++i) {
        unsigned frames = 0;
        auto object = std::make_unique<VeltraAsyncSDK>();
        // A receiver that ran too late would touch the memory that it owned.
        object->onResponse([&frames, last = Bytes()](const Bytes& frame) mutable {
            last = frame;
            ++frames;
        });
        ASSERT_TRUE(object->connect(""));
        ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 3));
        object.reset();
        expectNobodyReads();
        EXPECT_GT(frames, 0U);
    }
}

TEST_P(ThreadsTest, DestructionInAStormOfResponsesIsOrderly) {
    hid.deliverEndlessly(GetParam().input(responseOf(0x11)));
    for (int i = 0; i < 50; ++i) {
        VeltraSDK object(0);
        ASSERT_TRUE(object.connect(""));
        ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 3));
    }
}

TEST_P(ThreadsTest, AHandleIsDestroyedInAStormOfNotifications) {
    hid.deliverEndlessly(GetParam().input(gpioEvent));
    for (int i = 0; i < 50; ++i) {
        callbacks = 0;
        handleExists = true;
        VeltraSDK_Handle* const connected = VeltraSDK_Create(0);
        VeltraSDK_onNotification(connected, countCallback);
        ASSERT_TRUE(VeltraSDK_Connect(connected, nullptr));
        ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 3));
        VeltraSDK_Destroy(connected);
        handleExists = false;
        EXPECT_GT(callbacks, 0U);
        expectNobodyReads();
    }
}

TEST_P(ThreadsTest, AnOpenLinkIsConnectedAgainWhileReportsArrive) {
    std::atomic<unsigned> notifications{0};
    VeltraSDK object(patientMs);
    object.onNotification([&](const Notification&) { ++notifications; });
    ASSERT_TRUE(object.connect(""));
    hid.deliverEndlessly(GetParam().input(gpioEvent));
    for (int i = 0; i < 500; ++i) {
        ASSERT_TRUE(object.connect(""));
    }
    ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 3));
    object.disconnect();
    EXPECT_GT(notifications, 0U);
    EXPECT_EQ(hid.enumerateCalls(), 1U);
}

TEST_P(ThreadsTest, ALinkClosesInAStormOfReadErrors) {
    VeltraSDK object(0);
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(object.connect(""));
        hid.failReading(true);
        ASSERT_TRUE(hid.waitForReads(hid.readCalls() + 3));
        object.disconnect();
        hid.failReading(false);
        EXPECT_EQ(hid.openDevices(), 0U);
    }
}

TEST_P(ThreadsTest, AQueueKeepsItsOrderAndCountsItsLossInAStormOfNotifications) {
    // Each notification carries its number; a small queue loses many.
    std::atomic<unsigned> sent{0};
    VeltraSDK object(0);
    NotificationQueue queue(object, 300);
    const Meanwhile storm([&] {
        const unsigned number = sent++;
        object.handleResponse({0x00, 0x00, 0x81, 0x14, 0x00, 0x00,
                               static_cast<uint8_t>(number & 0xFFU),
                               static_cast<uint8_t>(number >> 8U & 0xFFU),
                               static_cast<uint8_t>(number >> 16U & 0xFFU)});
    });
    NotificationQueue::Entry entry;
    uint64_t expected = 0;
    for (int i = 0; i < 3000; ++i) {
        ASSERT_TRUE(isReadable(queue.descriptor(), generousLimitMs));
        ASSERT_TRUE(queue.take(entry));
        ASSERT_EQ(entry.frame.size(), 9U);
        expected += entry.lostBefore;
        ASSERT_EQ(entry.frame[6] | entry.frame[7] << 8U | entry.frame[8] << 16U, expected);
        ++expected;
    }
}

TEST_P(ThreadsTest, AQueueIsTakenFromWhileThePollingThreadFillsIt) {
    VeltraSDK object(0);
    NotificationQueue queue(object, 1 << 12);
    hid.deliverEndlessly(GetParam().input(gpioEvent));
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(object.connect(""));
        NotificationQueue::Entry entry;
        for (int taken = 0; taken < 20; ++taken) {
            ASSERT_TRUE(isReadable(queue.descriptor(), generousLimitMs));
            ASSERT_TRUE(queue.take(entry));
            ASSERT_EQ(entry.notification().gpio()->value, 0x2A);
        }
        object.disconnect();
        do {
            ASSERT_TRUE(queue.take(entry));
        } while (!entry.isEndOfLink());
        ASSERT_FALSE(queue.take(entry));
        ASSERT_FALSE(isReadable(queue.descriptor()));
    }
}

TEST_P(ThreadsTest, ClosingAQueueEndsTheWaitOfWhoeverPolls) {
    VeltraSDK object(0);
    NotificationQueue queue(object, 1 << 12);
    std::promise<pid_t> id;
    std::thread waiting([&] {
        id.set_value(gettid());
        EXPECT_TRUE(isReadable(queue.descriptor(), generousLimitMs));
        NotificationQueue::Entry entry;
        EXPECT_FALSE(queue.take(entry));
        EXPECT_FALSE(queue.isOpen());
    });
    const SleepingThread thread(id.get_future().get());
    EXPECT_TRUE(thread.waitUntilAsleep());
    queue.close();
    waiting.join();
}

TEST_P(ThreadsTest, AQueueIsClosedAndOpenedInAStormWhileSomebodyTakes) {
    const OwnedHandle owned(VeltraSDK_Create(0));
    ASSERT_TRUE(VeltraSDK_Connect(owned.get(), nullptr));
    hid.deliverEndlessly(GetParam().input(gpioEvent));
    for (int i = 0; i < 50; ++i) {
        const int descriptor = VeltraSDK_OpenNotificationQueue(owned.get(), 1 << 12);
        ASSERT_GE(descriptor, 0);
        std::promise<void> begun;
        std::thread taking([&] {
            VeltraSDK_QueuedNotification notification{};
            std::array<uint8_t, 16> frame{};
            bool isFirst = true;
            while (isReadable(descriptor, generousLimitMs) &&
                   VeltraSDK_TakeNotification(owned.get(), &notification, frame.data(),
                                              frame.size())) {
                EXPECT_EQ(frame[6], 0x2A);
                if (std::exchange(isFirst, false)) {
                    begun.set_value();
                }
            }
        });
        begun.get_future().wait();
        VeltraSDK_CloseNotificationQueue(owned.get());
        taking.join();
    }
}

TEST_P(ThreadsTest, AHandleWithAnOpenQueueIsDestroyedInAStormOfNotifications) {
    hid.deliverEndlessly(GetParam().input(gpioEvent));
    for (int i = 0; i < 50; ++i) {
        const OwnedHandle owned(VeltraSDK_Create(0));
        const int descriptor = VeltraSDK_OpenNotificationQueue(owned.get(), 1 << 12);
        ASSERT_TRUE(VeltraSDK_Connect(owned.get(), nullptr));
        ASSERT_TRUE(isReadable(descriptor, generousLimitMs));
    }
    expectNobodyReads();
}

TEST(Threads, TwoObjectsWorkInTwoThreads) {
    ScriptedHid hid;
    hid.attach({"1-1:1.0", vendorId, fullSpeed.productId, L"VA-0001"});
    hid.attach({"1-2:1.0", vendorId, highSpeed.productId, L"VA-0002"});
    hid.respond([](const Bytes& report) {
        const Variant& variant = report.size() == 65 ? fullSpeed : highSpeed;
        return std::vector<Bytes>{
            variant.input({0x1F, 0x00, report[3], report[4], 0x03, 0x14, 0x00, 0x00, report[7]})};
    });
    // hidapi wants these calls one at a time.
    std::mutex lifecycle;
    const auto work = [&](const std::string& path, uint8_t pin) {
        for (int round = 0; round < 10; ++round) {
            std::unique_lock<std::mutex> lock(lifecycle);
            auto object = std::make_unique<VeltraSDK>(patientMs);
            ASSERT_TRUE(object->connect(path));
            lock.unlock();
            for (int i = 0; i < 50; ++i) {
                GpioLogicLevel level{};
                ASSERT_EQ(object->gpioDigitalRead(static_cast<GpioPinNumber>(pin), level), 0);
                ASSERT_EQ(level, pin);
            }
            lock.lock();
            object.reset();
        }
    };
    std::thread other(work, "1-1:1.0", 0x11);
    work("1-2:1.0", 0x22);
    other.join();
    EXPECT_EQ(hid.writes().size(), 1000U);
}

} // namespace
