// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Strict mode with several threads on one object. What these tests look for, the thread sanitizer
// finds; the other builds run the same code.
#include "support/SdkTest.hpp"

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>

using namespace test_support;

namespace {

constexpr size_t maxThreads = 8;

/// Runs @p function on so many threads, each with its number, and waits for them all.
void onThreads(size_t count, const std::function<void(uint8_t)>& function) {
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        threads.emplace_back([&, number = static_cast<uint8_t>(i)] { function(number); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

size_t word(uint8_t low, uint8_t high) {
    return low + size_t{high} * 0x100;
}

/// An adapter that joins the reports of a request and insists that they come one after the other.
/// Whatever it is asked to read, it answers with the target's address.
class Adapter {
public:
    explicit Adapter(const Variant& adapterVariant) : variant(adapterVariant) {}

    std::vector<Bytes> operator()(const Bytes& report) {
        constexpr size_t packet = 1;
        constexpr size_t payload = packet + 2;
        const bool isFirst = (report[packet] & 1U) != 0;
        const size_t length = word(report[packet], report[packet + 1]) >> 2U & 0x3FFU;
        EXPECT_EQ(isFirst, request.empty()) << "reports of two requests are mixed";
        request.insert(request.end(), report.begin() + payload,
                       report.begin() + payload + static_cast<std::ptrdiff_t>(length));
        if ((report[packet] & 2U) == 0) {
            return {};
        }
        const Bytes whole = std::exchange(request, {});
        return variant.inputs(responseTo(whole));
    }

    static Bytes responseTo(const Bytes& request) {
        Bytes response(request.begin(), request.begin() + 4);
        response.insert(response.end(), 5, 0x00);
        const bool isRead = request[2] == 0x05 && request[3] == 0x09;
        if (isRead) {
            response.resize(9 + word(request[5], request[6]), request[7]);
        } else if (request.size() > 6) {
            // A message of the UART: all its bytes are the same.
            EXPECT_EQ(Bytes(request.begin() + 6, request.end()),
                      Bytes(request.size() - 6, request[6]));
        }
        return response;
    }

private:
    const Variant& variant;
    Bytes request;
};

class StrictThreadsTest : public SdkTest {
protected:
    /// One thread's operations: reads of any size and messages of many reports.
    void use(VeltraSDK& object, uint8_t number, int rounds) {
        const auto address = static_cast<uint8_t>(0x10 + number);
        for (int i = 0; i < rounds; ++i) {
            const auto length = static_cast<uint16_t>(i % 3 == 0 ? 200 : 16 + number);
            Bytes data;
            ASSERT_EQ(object.i2cRead(0, address, {}, length, data, false), 0);
            ASSERT_EQ(data, Bytes(length, address));
            ASSERT_EQ(object.uartSendMessage(Bytes(i % 2 == 0 ? 20 : 700, address)), 0);
        }
    }
};
INSTANTIATE_IN_STRICT_MODE(StrictThreadsTest);

TEST_P(StrictThreadsTest, OneToEightThreadsGetTheirOwnAnswersAtEveryOverlap) {
    hid.respond(Adapter(GetParam()));
    VeltraSDK& object = sdk();
    for (uint8_t overlap = 1; overlap <= 4; ++overlap) {
        ASSERT_EQ(object.setOverlap(overlap), 0);
        for (const size_t threads : {1U, 2U, 5U, 8U}) {
            onThreads(threads, [&](uint8_t number) { use(object, number, 12); });
        }
    }
    EXPECT_EQ(object.getUnmatchedResponses(), 0U);
}

TEST_P(StrictThreadsTest, CallsOnOneHandleGetTheirOwnBytes) {
    hid.respond(Adapter(GetParam()));
    VeltraSDK_Handle* const shared = handle();
    ASSERT_EQ(VeltraSDK_SetOverlap(shared, 2), 0);
    onThreads(maxThreads, [&](uint8_t number) {
        const auto address = static_cast<uint8_t>(0x10 + number);
        const auto length = static_cast<uint16_t>(8 + number);
        const Bytes message(300, address);
        for (int i = 0; i < 30; ++i) {
            Bytes data(length);
            ASSERT_EQ(VeltraSDK_I2cRead(shared, 0, address, nullptr, 0, length, data.data(), false),
                      0);
            ASSERT_EQ(data, Bytes(length, address));
            ASSERT_EQ(VeltraSDK_UartSendMessage(shared, message.data(), 300), 0);
        }
    });
    EXPECT_EQ(VeltraSDK_GetUnmatchedResponses(shared), 0U);
}

TEST_P(StrictThreadsTest, SoManySmallOperationsAreOutstandingAsTheOverlapSays) {
    // An adapter that answers only when so many requests are there, the last one first.
    for (size_t overlap = 1; overlap <= 4; ++overlap) {
        std::vector<Bytes> held;
        hid.respond([&](const Bytes& report) {
            const Bytes request(report.begin() + 3, report.end());
            held.insert(held.begin(), GetParam().inputs(Adapter::responseTo(request)).front());
            EXPECT_LE(held.size(), overlap);
            return held.size() == overlap ? std::exchange(held, {}) : std::vector<Bytes>();
        });
        VeltraSDK object(patientMs);
        object.setStrict(true);
        ASSERT_EQ(object.setOverlap(static_cast<uint8_t>(overlap)), 0);
        ASSERT_TRUE(object.connect(""));
        onThreads(overlap, [&](uint8_t number) {
            const auto address = static_cast<uint8_t>(0x10 + number);
            for (int i = 0; i < 50; ++i) {
                Bytes data;
                ASSERT_EQ(object.i2cRead(0, address, {}, 16, data, false), 0);
                ASSERT_EQ(data, Bytes(16, address));
            }
        });
    }
}

TEST_P(StrictThreadsTest, IdentifiersOfOutstandingRequestsAreNotGivenOutAgain) {
    VeltraSDK object(patientMs);
    object.setStrict(true);
    ASSERT_EQ(object.setOverlap(2), 0);
    ASSERT_TRUE(object.connect(""));
    const Bytes readPin1{0x17, 0x00, 0x01, 0x00, 0x03, 0x14, 0x05};
    const Bytes readPin2{0x17, 0x00, 0x02, 0x00, 0x03, 0x14, 0x06};
    onWire(readPin1);
    auto first = std::async(std::launch::async, [&] {
        GpioLogicLevel level{};
        EXPECT_EQ(object.gpioDigitalRead(GpioPinNumber_5, level), 0);
        return level;
    });
    ASSERT_TRUE(hid.waitForWrites(1));
    for (unsigned i = 2; i <= 65'535; ++i) {
        object.generateTransactionId();
    }
    hid.expectWrite(GetParam().output(readPin2),
                    {GetParam().input({0x1F, 0x00, 0x02, 0x00, 0x03, 0x14, 0x00, 0x00, 0x02}),
                     GetParam().input({0x1F, 0x00, 0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01})});
    GpioLogicLevel level{};
    EXPECT_EQ(object.gpioDigitalRead(GpioPinNumber_6, level), 0);
    EXPECT_EQ(level, 0x02);
    EXPECT_EQ(first.get(), 0x01);
}

TEST_P(StrictThreadsTest, ALongTurnOfOthersIsNotCountedAsWaiting) {
    // With a time-out of 0 only what has been answered when the write returns succeeds.
    hid.settleWrites(true);
    hid.respond(Adapter(GetParam()));
    VeltraSDK object(0);
    object.setStrict(true);
    ASSERT_TRUE(object.connect(""));
    onThreads(maxThreads, [&](uint8_t number) { use(object, number, 5); });
}

TEST_P(StrictThreadsTest, TheLinkIsClosedAndOpenedWhileOthersUseIt) {
    hid.respond(Adapter(GetParam()));
    VeltraSDK& object = sdk();
    ASSERT_EQ(object.setOverlap(3), 0);
    std::atomic<bool> over{false};
    std::atomic<unsigned> answered{0};
    auto users = std::async(std::launch::async, [&] {
        onThreads(4, [&](uint8_t number) {
            const auto address = static_cast<uint8_t>(0x10 + number);
            while (!over) {
                Bytes data;
                const uint16_t result = object.i2cRead(0, address, {}, 16, data, false);
                EXPECT_TRUE(result == 0 || result == 0x4000) << result;
                EXPECT_EQ(data, result == 0 ? Bytes(16, address) : Bytes());
                answered += result == 0 ? 1 : 0;
            }
        });
    });
    for (int i = 0; i < 20; ++i) {
        const unsigned before = answered;
        while (answered == before) {
            std::this_thread::yield();
        }
        if (i % 2 == 0) {
            object.disconnect();
        } else {
            EXPECT_EQ(object.enterBootMode(), 0);
        }
        EXPECT_EQ(hid.openDevices(), 0U);
        ASSERT_TRUE(object.connect(""));
        ASSERT_EQ(object.isConnected(), true);
    }
    over = true;
    users.get();
}

TEST_P(StrictThreadsTest, AnUnpluggedAdapterEndsEverybodyAndTheNextConnectionServesThem) {
    VeltraSDK& object = sdk();
    for (int i = 0; i < 10; ++i) {
        std::atomic<size_t> requests{0};
        hid.respond([&, adapter = Adapter(GetParam())](const Bytes& report) mutable {
            if (++requests == 20) {
                hid.failReading(true);
                hid.failWriting(-1);
                return std::vector<Bytes>();
            }
            return adapter(report);
        });
        onThreads(maxThreads, [&](uint8_t) {
            uint16_t result = 0;
            while (result == 0) {
                result = object.i3cResetBus();
            }
            EXPECT_EQ(result, 0x4000);
        });
        hid.failReading(false);
        hid.failWriting(std::nullopt);
        object.disconnect();
        ASSERT_TRUE(object.connect(""));
    }
}

} // namespace
