// The library beside raw hidapi, in the same run over the same stand-in.
#include "LoopbackHid.hpp"

#include <veltrasdk/VeltraSDK.hpp>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include <benchmark/benchmark.h>
#include <hidapi.h>

namespace {

using namespace std::chrono_literals;

constexpr size_t fullSpeed = 64;
constexpr size_t highSpeed = 1024;
constexpr size_t frameHeader = 6;

std::unique_ptr<VeltraSDK> connected(size_t reportSize) {
    loopback_hid::setReportSize(reportSize);
    auto sdk = std::make_unique<VeltraSDK>(-1);
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

void setDevice(std::chrono::nanoseconds responseDelay, std::chrono::nanoseconds reportTime) {
    loopback_hid::setResponseDelay(responseDelay);
    loopback_hid::setReportTime(reportTime);
}

/// Times each iteration by itself, less its preparation: a mean would hide what the median and the
/// tail show.
template <typename Preparation, typename Operation>
void timeEach(benchmark::State& state, const Preparation& prepare, const Operation& operation) {
    std::vector<double> microseconds;
    for (auto _ : state) {
        prepare();
        const auto begin = std::chrono::steady_clock::now();
        operation();
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
        microseconds.push_back(seconds.count() * 1e6);
        state.SetIterationTime(seconds.count());
    }
    std::sort(microseconds.begin(), microseconds.end());
    state.counters["median_us"] = microseconds[microseconds.size() / 2];
    state.counters["p99_us"] = microseconds[(microseconds.size() - 1) * 99 / 100];
}

template <typename Operation>
void timeEach(benchmark::State& state, const Operation& operation) {
    timeEach(
        state, [] {}, operation);
}

void smallOperationLibrary(benchmark::State& state) {
    setDevice(250us, 0us);
    const auto sdk = connected(fullSpeed);
    std::vector<uint8_t> text;
    timeEach(state, [&] { sdk->getUsbString(text, 1); });
}

void smallOperationRaw(benchmark::State& state) {
    setDevice(250us, 0us);
    Raw raw(fullSpeed);
    timeEach(state, [&] { raw.exchange(5); });
}

void longRequestLibrary(benchmark::State& state) {
    setDevice(0us, 125us);
    const auto sdk = connected(highSpeed);
    const std::vector<uint8_t> message(65'535, 0x55);
    timeEach(state, [&] { sdk->uartSendMessage(message); });
}

void longRequestRaw(benchmark::State& state) {
    setDevice(0us, 125us);
    Raw raw(highSpeed);
    timeEach(state, [&] { raw.exchange(65'535 + frameHeader); });
}

void disconnect(benchmark::State& state) {
    setDevice(0us, 0us);
    loopback_hid::setReportSize(fullSpeed);
    VeltraSDK sdk(-1);
    // The longest wait: a read has just begun.
    const auto connectAndRead = [&] {
        const size_t before = loopback_hid::readCalls();
        sdk.connect("");
        while (loopback_hid::readCalls() == before) {
            std::this_thread::yield();
        }
    };
    timeEach(state, connectAndRead, [&] { sdk.disconnect(); });
}

// From one byte to 64 KiB, without any time spent by the device: what the library itself costs.
void sweepLibrary(benchmark::State& state) {
    setDevice(0us, 0us);
    const auto sdk = connected(static_cast<size_t>(state.range(0)));
    const std::vector<uint8_t> message(static_cast<size_t>(state.range(1)), 0x55);
    for (auto _ : state) {
        sdk->uartSendMessage(message);
    }
}

void sweepRaw(benchmark::State& state) {
    setDevice(0us, 0us);
    Raw raw(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        raw.exchange(static_cast<size_t>(state.range(1)) + frameHeader);
    }
}

const std::vector<std::vector<int64_t>> sweep{{64, 1024},
                                              {1, 4, 16, 64, 256, 1024, 4096, 16'384, 65'535}};

BENCHMARK(smallOperationLibrary)->Iterations(2000)->UseManualTime();
BENCHMARK(smallOperationRaw)->Iterations(2000)->UseManualTime();
BENCHMARK(longRequestLibrary)->Iterations(100)->UseManualTime();
BENCHMARK(longRequestRaw)->Iterations(100)->UseManualTime();
BENCHMARK(disconnect)->Iterations(100)->UseManualTime();
BENCHMARK(sweepLibrary)->ArgsProduct(sweep)->UseRealTime();
BENCHMARK(sweepRaw)->ArgsProduct(sweep)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
