// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Reads of two devices in turns, in strict mode and behind one response that came late: how many
// had another device's data. An answer takes 1 ms, as a frame of full speed does, so that luck
// brings nobody back in step.
#include "LoopbackHid.hpp"

#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

#include <array>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

using namespace std::chrono_literals;

constexpr int timeoutMs = 100;
constexpr auto lateBeyondTimeout = 150ms;
constexpr int alternatingReads = 2000;
constexpr uint16_t length = loopback_hid::dataSize;

using Data = std::vector<uint8_t>;

class ClassReader {
public:
    ClassReader() {
        sdk.setStrict(true);
        sdk.connect("");
    }
    uint16_t read(uint8_t device, Data& data) {
        return sdk.i2cRead(0, device, {}, length, data, false);
    }
    [[nodiscard]] uint64_t dropped() const { return sdk.getUnmatchedResponses(); }

private:
    VeltraSDK sdk{timeoutMs};
};

class FlatReader {
public:
    FlatReader() {
        VeltraSDK_SetStrict(handle, true);
        VeltraSDK_Connect(handle, nullptr);
    }
    ~FlatReader() { VeltraSDK_Destroy(handle); }
    FlatReader(const FlatReader&) = delete;
    FlatReader& operator=(const FlatReader&) = delete;

    uint16_t read(uint8_t device, Data& data) {
        data.assign(length, 0);
        return static_cast<uint16_t>(
            VeltraSDK_I2cRead(handle, 0, device, nullptr, 0, length, data.data(), false));
    }
    [[nodiscard]] uint64_t dropped() const { return VeltraSDK_GetUnmatchedResponses(handle); }

private:
    VeltraSDK_Handle* handle = VeltraSDK_Create(timeoutMs);
};

template <typename Reader>
void outOfStep(benchmark::State& state) {
    constexpr std::array<uint8_t, 2> devices{0x48, 0x50};
    loopback_hid::setReportSize(static_cast<size_t>(state.range(0)));
    Reader reader;
    int wrong = 0;
    for (auto _ : state) {
        Data data;
        loopback_hid::setResponseDelay(lateBeyondTimeout);
        wrong += reader.read(devices[0], data) == ResultCode_NoResponse ? 0 : 1;
        loopback_hid::setResponseDelay(1ms);
        for (size_t i = 0; i < alternatingReads; ++i) {
            const uint8_t device = devices.at(i % devices.size());
            const bool isRight = reader.read(device, data) == 0 && data == Data(length, device);
            wrong += isRight ? 0 : 1;
        }
    }
    state.counters["wrong"] = wrong;
    state.counters["dropped"] = static_cast<double>(reader.dropped());
}

BENCHMARK(outOfStep<ClassReader>)->Name("outOfStep")->Arg(64)->Arg(1024)->Iterations(1);
BENCHMARK(outOfStep<FlatReader>)->Name("outOfStepInC")->Arg(64)->Arg(1024)->Iterations(1);

} // namespace
