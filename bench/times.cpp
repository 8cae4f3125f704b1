// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The library beside raw hidapi, in the same run over the same stand-in.
#include "LoopbackHid.hpp"

#include <veltrasdk/VeltraSDK.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <hidapi.h>

namespace {

using namespace std::chrono_literals;

constexpr size_t fullSpeed = 64;
constexpr size_t highSpeed = 1024;
constexpr size_t frameHeader = 6;
constexpr int timeoutMs = 10'000;

std::unique_ptr<VeltraSDK> connected(size_t reportSize) {
    loopback_hid::setReportSize(reportSize);
    auto sdk = std::make_unique<VeltraSDK>(timeoutMs);
    sdk->connect("");
    return sdk;
}

/// hidapi alone: the device and a report that makes it answer.
struct Raw {
    explicit Raw(size_t reportSize)
        : device(openWith(reportSize)), report(reportSize + 1), response(reportSize) {}
    Raw(const Raw&) = delete;
    Raw& operator=(const Raw&) = delete;
    ~Raw() { hid_close(device); }

    /// Writes the packets of a message of @p length bytes and reads the answer.
    void exchange(size_t length) {
        const size_t payload = response.size() - 2;
        const size_t packets = (length + payload - 1) / payload;
        for (size_t packet = 0; packet < packets; ++packet) {
            report[1] =
                static_cast<uint8_t>((packet == 0 ? 1 : 0) | (packet + 1 == packets ? 2 : 0));
            hid_write(device, report.data(), report.size());
        }
        hid_read_timeout(device, response.data(), response.size(), 1000);
    }

    static hid_device* openWith(size_t reportSize) {
        loopback_hid::setReportSize(reportSize);
        return hid_open_path("1-1:1.0");
    }

    hid_device* device;
    std::vector<uint8_t> report;
    std::vector<uint8_t> response;
};

/// The value below which @p share of all lie; a mean would hide what the tail shows.
double percentile(std::vector<double>& values, double share) {
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(static_cast<double>(values.size() - 1) * share)];
}

template <typename Operation>
double microsecondsOf(const Operation& operation) {
    const auto begin = std::chrono::steady_clock::now();
    operation();
    const std::chrono::duration<double, std::micro> duration =
        std::chrono::steady_clock::now() - begin;
    return duration.count();
}

/// The library and raw hidapi in turns, so that whatever else the machine does meets both.
void smallOperation(benchmark::State& state) {
    loopback_hid::setResponseDelay(250us);
    const auto reportSize = static_cast<size_t>(state.range(0));
    const auto sdk = connected(reportSize);
    Raw raw(reportSize);
    std::vector<uint8_t> text;
    std::vector<double> library;
    std::vector<double> alone;
    for (auto _ : state) {
        library.push_back(microsecondsOf([&] { sdk->getUsbString(text, 1); }));
        alone.push_back(microsecondsOf([&] { raw.exchange(5); }));
        state.SetIterationTime(library.back() / 1e6);
    }
    state.counters["ratio"] = percentile(library, 0.5) / percentile(alone, 0.5);
}

/// Small operations of as many threads as may overlap, 1 ms each.
void overlap(benchmark::State& state) {
    constexpr int operations = 100;
    loopback_hid::setResponseDelay(1ms);
    const auto threads = static_cast<uint8_t>(state.range(0));
    loopback_hid::setReportSize(fullSpeed);
    VeltraSDK sdk(timeoutMs);
    sdk.setStrict(true);
    sdk.setOverlap(threads);
    sdk.connect("");
    for (auto _ : state) {
        std::atomic<int> left{operations};
        std::vector<std::thread> users;
        for (uint8_t user = 0; user < threads; ++user) {
            users.emplace_back([&] {
                GpioLogicLevel level{};
                while (--left >= 0) {
                    sdk.gpioDigitalRead(GpioPinNumber_1, level);
                }
            });
        }
        for (std::thread& user : users) {
            user.join();
        }
    }
}

/// From pulling the adapter out to the end of an operation that waits for its answer.
void unplug(benchmark::State& state) {
    loopback_hid::setReportSize(fullSpeed);
    loopback_hid::answerRequests(false);
    VeltraSDK sdk(static_cast<int>(state.range(0)));
    sdk.setStrict(true);
    std::vector<double> durations;
    for (auto _ : state) {
        sdk.connect("");
        const size_t before = loopback_hid::writeCalls();
        std::thread user([&] {
            GpioLogicLevel level{};
            sdk.gpioDigitalRead(GpioPinNumber_1, level);
        });
        while (loopback_hid::writeCalls() == before) {
            std::this_thread::yield();
        }
        durations.push_back(microsecondsOf([&] {
            loopback_hid::unplug(true);
            user.join();
        }));
        state.SetIterationTime(durations.back() / 1e6);
        loopback_hid::unplug(false);
        sdk.disconnect();
    }
    loopback_hid::answerRequests(true);
    state.counters["max_us"] = percentile(durations, 1);
}

void disconnect(benchmark::State& state) {
    loopback_hid::setResponseDelay(0us);
    loopback_hid::setReportSize(fullSpeed);
    VeltraSDK sdk(timeoutMs);
    std::vector<double> durations;
    for (auto _ : state) {
        // The longest wait: a read has just begun.
        const size_t before = loopback_hid::readCalls();
        sdk.connect("");
        while (loopback_hid::readCalls() == before) {
            std::this_thread::yield();
        }
        durations.push_back(microsecondsOf([&] { sdk.disconnect(); }));
        state.SetIterationTime(durations.back() / 1e6);
    }
    state.counters["p99_us"] = percentile(durations, 0.99);
}

// From one byte to 64 KiB, without any time spent by the device: what the library itself costs.
void sweepLibrary(benchmark::State& state) {
    loopback_hid::setResponseDelay(0us);
    const auto sdk = connected(static_cast<size_t>(state.range(0)));
    const std::vector<uint8_t> message(static_cast<size_t>(state.range(1)), 0x55);
    for (auto _ : state) {
        sdk->uartSendMessage(message);
    }
}

void sweepRaw(benchmark::State& state) {
    loopback_hid::setResponseDelay(0us);
    Raw raw(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        raw.exchange(static_cast<size_t>(state.range(1)) + frameHeader);
    }
}

const std::vector<std::vector<int64_t>> sweep{{64, 1024},
                                              {1, 4, 16, 64, 256, 1024, 4096, 16'384, 65'535}};

BENCHMARK(smallOperation)->Arg(fullSpeed)->Arg(highSpeed)->Iterations(2000)->UseManualTime();
BENCHMARK(overlap)->Arg(1)->Arg(2)->Iterations(10)->UseRealTime();
BENCHMARK(unplug)->Arg(5000)->Arg(-1)->Iterations(20)->UseManualTime();
BENCHMARK(disconnect)->Iterations(100)->UseManualTime();
BENCHMARK(sweepLibrary)->ArgsProduct(sweep)->UseRealTime();
BENCHMARK(sweepRaw)->ArgsProduct(sweep)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
