// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/SleepingThread.hpp"
#include "virtual-adapter/ways/ServedAdapters.hpp"

#include <gtest/gtest.h>
#include <hidapi.h>

#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <pthread.h>

using namespace std::chrono_literals;
using virtual_adapter::AdapterSettings;
using virtual_adapter::FaultKind;

namespace {

using Clock = std::chrono::steady_clock;

/// Longer than any machine takes; a test that waits so long has failed.
constexpr int generous = 30'000;
constexpr int anHour = 3'600'000;

AdapterSettings withFault(FaultKind kind, std::chrono::milliseconds delay = 0ms) {
    AdapterSettings settings;
    settings.faults = {{kind, {}}};
    settings.faultDelay = delay;
    return settings;
}

bool write(hid_device* device, uint8_t identifier) {
    const std::array<unsigned char, 8> report{0x00, 0x17, 0x00, identifier, 0x00, 0x07, 0x04, 0x01};
    return hid_write(device, report.data(), report.size()) == static_cast<int>(report.size());
}

/// The transaction identifier of the next report, or what `hid_read_timeout` returned.
int nextIdentifier(hid_device* device, int milliseconds = 0) {
    std::array<unsigned char, 64> report{};
    const int count = hid_read_timeout(device, report.data(), report.size(), milliseconds);
    return count == 64 ? report[2] : count;
}

/// A read on a thread of its own, which sleeps by now as there is no report.
class WaitingRead {
public:
    WaitingRead(hid_device* read, int milliseconds)
        : device(read), result(std::async(std::launch::async, [=] {
              threadId.set_value(static_cast<pid_t>(syscall(SYS_gettid)));
              return nextIdentifier(device, milliseconds);
          })) {
        EXPECT_TRUE(SleepingThread(threadId.get_future().get()).waitUntilAsleep());
    }

    /// What it returned. It is a failure when nothing has woken it.
    int get() {
        if (result.wait_for(std::chrono::milliseconds(generous)) != std::future_status::ready) {
            ADD_FAILURE() << "the read sleeps on";
            hid_close(device);
        }
        return result.get();
    }

private:
    hid_device* device;
    std::promise<pid_t> threadId;
    std::future<int> result;
};

/// The functions that are preloaded, with adapters in this process.
class HidapiTest : public testing::Test {
protected:
    ~HidapiTest() override { unsetenv("VELTRA_VIRTUAL_ADAPTER_SOCKET"); }

    void serve(const std::vector<AdapterSettings>& adapters) {
        served = std::make_unique<ServedAdapters>(adapters);
        setenv("VELTRA_VIRTUAL_ADAPTER_SOCKET", served->path().c_str(), 1);
    }

    void openWith(const AdapterSettings& settings) {
        serve({settings});
        device = hid_open_path("1-1:1.0");
        ASSERT_NE(device, nullptr);
    }

    void TearDown() override {
        if (device != nullptr) {
            hid_close(device);
        }
    }

    std::unique_ptr<ServedAdapters> served;
    hid_device* device = nullptr;
};

/// The paths of what is listed, a space behind each.
std::string listed(unsigned short vendor = 0, unsigned short product = 0) {
    std::string paths;
    hid_device_info* const first = hid_enumerate(vendor, product);
    for (const hid_device_info* info = first; info != nullptr; info = info->next) {
        paths += std::string(info->path) + " ";
    }
    hid_free_enumeration(first);
    return paths;
}

TEST_F(HidapiTest, WithoutASocketThereIsNoAdapter) {
    EXPECT_EQ(hid_init(), 0);
    EXPECT_EQ(hid_enumerate(0, 0), nullptr);
    EXPECT_EQ(hid_open_path("1-1:1.0"), nullptr);
    setenv("VELTRA_VIRTUAL_ADAPTER_SOCKET", "/nonexistent/socket", 1);
    EXPECT_EQ(hid_enumerate(0, 0), nullptr);
    EXPECT_EQ(hid_open_path("1-1:1.0"), nullptr);
    EXPECT_EQ(hid_exit(), 0);
}

TEST_F(HidapiTest, AdaptersOfOneSocketAreChosenByTheirSerialNumbers) {
    AdapterSettings first;
    first.serialNumber = "A";
    AdapterSettings second;
    second.identity = virtual_adapter::usbIdentities[1];
    second.serialNumber = "B\xC3\xA9";
    serve({first, second});
    EXPECT_EQ(listed(), "1-1:1.0 1-2:1.0 ");
    EXPECT_EQ(listed(first.identity.vendorId, second.identity.productId), "1-2:1.0 ");
    EXPECT_EQ(listed(0x4242), "");
    hid_device_info* const info = hid_enumerate(0, second.identity.productId);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(std::wstring(info->serial_number), L"B\u00E9");
    EXPECT_EQ(std::wstring(info->product_string), L"high-speed");
    hid_free_enumeration(info);
}

TEST_F(HidapiTest, AdaptersArePluggedInAndOutWithTheVariable) {
    serve({AdapterSettings()});
    AdapterSettings second;
    second.serialNumber = "second";
    const ServedAdapters another({AdapterSettings(), second});
    const std::string one = served->path();
    setenv("VELTRA_VIRTUAL_ADAPTER_SOCKET", (one + ":" + another.path()).c_str(), 1);
    EXPECT_EQ(listed(), "1-1:1.0 2-1:1.0 2-2:1.0 ");
    setenv("VELTRA_VIRTUAL_ADAPTER_SOCKET", one.c_str(), 1);
    EXPECT_EQ(listed(), "1-1:1.0 ");
}

TEST_F(HidapiTest, APathMustBeSpelledAsItIsListed) {
    serve({AdapterSettings()});
    for (const char* const path : {"", "1-1", "1-1:1.0 ", "01-1:1.0", "1-2:1.0", "2-1:1.0",
                                   "0-1:1.0", "1-0:1.0", "-1-1:1.0", "4294967297-1:1.0"}) {
        EXPECT_EQ(hid_open_path(path), nullptr) << path;
    }
    EXPECT_EQ(hid_open_path(nullptr), nullptr);
}

TEST_F(HidapiTest, AReportIsCutToTheReadersBuffer) {
    openWith({});
    ASSERT_TRUE(write(device, 1));
    std::array<unsigned char, 4> start{};
    EXPECT_EQ(hid_read_timeout(device, start.data(), start.size(), 0), 4);
    EXPECT_EQ(start, (std::array<unsigned char, 4>{0x37, 0x00, 0x01, 0x00}));
    EXPECT_EQ(nextIdentifier(device), 0) << "the report's rest is gone";
}

TEST_F(HidapiTest, ALongReportFitsALargerBuffer) {
    AdapterSettings settings;
    settings.identity = virtual_adapter::usbIdentities[1];
    openWith(settings);
    ASSERT_TRUE(write(device, 1));
    std::array<unsigned char, 2048> report{};
    EXPECT_EQ(hid_read_timeout(device, report.data(), report.size(), 0), 1024);
}

TEST_F(HidapiTest, AWriteOfSeveralReportsIsTakenAsOneLongerThanThatIsNot) {
    openWith({});
    const std::vector<unsigned char> longest(65'537);
    EXPECT_EQ(hid_write(device, longest.data(), longest.size()), 65'537)
        << "the report identifier does not count";
    const std::vector<unsigned char> tooLong(65'538);
    EXPECT_EQ(hid_write(device, tooLong.data(), tooLong.size()), -1);
    EXPECT_TRUE(write(device, 1)) << "the connection is whole";
}

TEST_F(HidapiTest, AReadWaitsUntilItsTimeIsOver) {
    openWith({});
    const auto start = Clock::now();
    EXPECT_EQ(nextIdentifier(device, 20), 0);
    EXPECT_GE(Clock::now() - start, 20ms);
}

TEST_F(HidapiTest, AWaitingReadIsEndedByAReport) {
    for (const int patience : {anHour, -1}) {
        openWith({});
        WaitingRead read(device, patience);
        ASSERT_TRUE(write(device, 9));
        EXPECT_EQ(read.get(), 9);
        hid_close(device);
    }
}

TEST_F(HidapiTest, AWaitingReadIsEndedByUnplugging) {
    openWith(withFault(FaultKind::Unplug));
    EXPECT_TRUE(write(device, 1));
    EXPECT_TRUE(write(device, 2));
    EXPECT_EQ(nextIdentifier(device), 1);
    EXPECT_EQ(nextIdentifier(device), 2);
    WaitingRead read(device, -1);
    EXPECT_FALSE(write(device, 3));
    EXPECT_EQ(read.get(), -1);
    EXPECT_EQ(nextIdentifier(device, generous), -1);
    EXPECT_FALSE(write(device, 4));
    EXPECT_EQ(hid_enumerate(0, 0), nullptr);
    hid_close(device);
    EXPECT_EQ(hid_open_path("1-1:1.0"), nullptr);
}

TEST_F(HidapiTest, AWaitingReadIsEndedByClosing) {
    for (const int patience : {anHour, -1}) {
        openWith({});
        WaitingRead read(device, patience);
        hid_close(device);
        EXPECT_EQ(read.get(), -1);
    }
}

TEST_F(HidapiTest, AWaitingReadIsEndedWhenTheAdaptersProcessEnds) {
    openWith({});
    WaitingRead read(device, -1);
    served.reset();
    EXPECT_EQ(read.get(), -1);
    EXPECT_FALSE(write(device, 1));
    EXPECT_EQ(nextIdentifier(device, generous), -1);
    hid_close(device);
    EXPECT_EQ(hid_exit(), 0);
}

TEST_F(HidapiTest, ALateResponseComesAfterItsDelay) {
    for (const int patience : {generous, -1}) {
        openWith(withFault(FaultKind::LateResponse, 30ms));
        write(device, 1);
        write(device, 2);
        EXPECT_EQ(nextIdentifier(device), 1);
        EXPECT_EQ(nextIdentifier(device), 2);
        const auto start = Clock::now();
        write(device, 3);
        EXPECT_EQ(nextIdentifier(device, patience), 3);
        EXPECT_GE(Clock::now() - start, 30ms);
        hid_close(device);
    }
}

TEST_F(HidapiTest, AReadGivesUpOnAResponseThatIsTooLate) {
    openWith(withFault(FaultKind::LateResponse, 1h));
    for (uint8_t i = 1; i <= 3; ++i) {
        write(device, i);
    }
    EXPECT_EQ(nextIdentifier(device), 1);
    EXPECT_EQ(nextIdentifier(device), 2);
    EXPECT_EQ(nextIdentifier(device, 10), 0);
}

TEST_F(HidapiTest, AReadWhoseThreadIsCancelledLosesNoReport) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "a cancelled thread leaves frames that the sanitizer takes for those of others";
#endif
    openWith({});
    std::atomic<pid_t> id{0};
    std::pair<hid_device*, std::atomic<pid_t>*> shared{device, &id};
    pthread_t thread{};
    const auto read = [](void* argument) -> void* {
        auto& [itsDevice, itsId] = *static_cast<decltype(shared)*>(argument);
        *itsId = static_cast<pid_t>(syscall(SYS_gettid));
        nextIdentifier(itsDevice, -1);
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, nullptr, read, &shared), 0);
    while (id == 0) {
        std::this_thread::yield();
    }
    EXPECT_TRUE(SleepingThread(id).waitUntilAsleep());
    pthread_cancel(thread);
    pthread_join(thread, nullptr);
    ASSERT_TRUE(write(device, 5));
    EXPECT_EQ(nextIdentifier(device, generous), 5);
    EXPECT_EQ(nextIdentifier(device, 1), 0);
}

TEST_F(HidapiTest, ReadersAndWritersMayMeet) {
    openWith({});
    constexpr int perWriter = 500;
    std::atomic<int> received{0};
    auto reader = [&] {
        while (received < 2 * perWriter) {
            if (nextIdentifier(device, 1) > 0) {
                ++received;
            }
        }
    };
    auto writer = [&](uint8_t identifier) {
        for (int i = 0; i < perWriter; ++i) {
            EXPECT_TRUE(write(device, identifier));
        }
    };
    std::vector<std::thread> threads;
    threads.emplace_back(reader);
    threads.emplace_back(reader);
    threads.emplace_back(writer, uint8_t{1});
    threads.emplace_back(writer, uint8_t{2});
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(received, 2 * perWriter);
}

TEST_F(HidapiTest, AHandleThatNeverWasOneIsRefused) {
    openWith({});
    auto* const stranger = reinterpret_cast<hid_device*>(&device);
    EXPECT_FALSE(write(stranger, 1));
    EXPECT_FALSE(write(nullptr, 1));
    EXPECT_EQ(nextIdentifier(stranger), -1);
    hid_close(stranger);
    hid_close(nullptr);
    EXPECT_TRUE(write(device, 1));
}

} // namespace
