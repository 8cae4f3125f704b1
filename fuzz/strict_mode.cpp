// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Strict mode with real threads: operations of the class or of a C handle from one to four threads,
// with an overlap of one to four, over an adapter that answers late, twice, wrongly or not at all,
// fails, and is disconnected by another thread. An operation's answer is its own or says why there
// is none; every thread comes back; and the thread sanitizer finds nothing.
#include "UnreliableAdapter.hpp"

#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

#include <array>
#include <string>
#include <thread>

using fuzzing::Bytes;
using fuzzing::Input;
using fuzzing::Outage;
using fuzzing::Outages;
using fuzzing::require;
using fuzzing::UnreliableAdapter;

namespace {

/// The adapter's made-up identifiers lie above those of so many requests, and of the boot modes
/// that as many of its answers may bring about.
constexpr size_t maxRequests = 120;
constexpr size_t maxRequestsOfOperation = 5;

/// The library's two faces with the same words, in strict mode.
class ClassFace {
public:
    explicit ClassFace(int timeoutMs) : sdk(timeoutMs) { sdk.setStrict(true); }

    void setOverlap(uint8_t requests) { sdk.setOverlap(requests); }
    void connect() { sdk.connect(""); }
    void disconnect() { sdk.disconnect(); }
    void enterBootMode() { sdk.enterBootMode(); }
    void count() { (void)(sdk.isConnected() && sdk.getUnmatchedResponses() > 0); }

    uint16_t read(uint8_t address, uint16_t length, Bytes& data) {
        return sdk.i2cRead(0, address, {}, length, data, false);
    }
    uint16_t readPin(uint8_t pin, uint8_t& level) {
        auto read = GpioLogicLevel{};
        const uint16_t result = sdk.gpioDigitalRead(GpioPinNumber{pin}, read);
        level = read;
        return result;
    }
    uint16_t send(const Bytes& message) { return sdk.uartSendMessage(message); }
    uint16_t readStrings(std::array<std::string, 5>& texts) {
        VeltraSDK::DeviceInfo info;
        const uint16_t result = sdk.getDeviceInfo(info);
        texts = {info.usbString1, info.usbString2, info.usbString3, info.usbString4,
                 info.usbString5};
        return result;
    }

private:
    VeltraSDK sdk;
};

class FlatFace {
public:
    explicit FlatFace(int timeoutMs) : handle(VeltraSDK_Create(timeoutMs)) {
        VeltraSDK_SetStrict(handle, true);
    }
    ~FlatFace() { VeltraSDK_Destroy(handle); }
    FlatFace(const FlatFace&) = delete;
    FlatFace& operator=(const FlatFace&) = delete;

    void setOverlap(uint8_t requests) { VeltraSDK_SetOverlap(handle, requests); }
    void connect() { VeltraSDK_Connect(handle, nullptr); }
    void disconnect() { VeltraSDK_Disconnect(handle); }
    void enterBootMode() { VeltraSDK_EnterBootMode(handle); }
    void count() {
        (void)(VeltraSDK_IsConnected(handle) && VeltraSDK_GetUnmatchedResponses(handle) > 0);
    }

    uint16_t read(uint8_t address, uint16_t length, Bytes& data) {
        data.resize(length);
        return static_cast<uint16_t>(
            VeltraSDK_I2cRead(handle, 0, address, nullptr, 0, length, data.data(), false));
    }
    uint16_t readPin(uint8_t pin, uint8_t& level) {
        auto read = GpioLogicLevel{};
        const int16_t result = VeltraSDK_GpioDigitalRead(handle, GpioPinNumber{pin}, &read);
        level = read;
        return static_cast<uint16_t>(result);
    }
    uint16_t send(const Bytes& message) {
        return static_cast<uint16_t>(VeltraSDK_UartSendMessage(
            handle, message.data(), static_cast<uint16_t>(message.size())));
    }
    uint16_t readStrings(std::array<std::string, 5>& texts) {
        int16_t result = 0;
        for (uint8_t i = 0; i < texts.size() && result == 0; ++i) {
            std::array<char, 16> text{};
            result = VeltraSDK_GetUsbString(handle, static_cast<uint8_t>(i + 1), text.data(),
                                            text.size());
            texts.at(i) = text.data();
        }
        return static_cast<uint16_t>(result);
    }

private:
    VeltraSDK_Handle* handle;
};

struct Operation {
    uint8_t number;
    uint8_t kind;
    uint16_t size;
};

/// What was read is the operation's own, its missing end zeros; nothing where no answer came.
template <typename Read>
void checkAnswer(const UnreliableAdapter& adapter, uint8_t mark, uint16_t result,
                 const Read& read) {
    const bool isAnswered = result == ResultCode_Success || result == adapter.refusalOf(mark);
    require(isAnswered || result == ResultCode_NoResponse || result == ResultCode_NotConnected,
            "a result is the operation's own, or says that there is none");
    size_t own = 0;
    while (own < read.size() && static_cast<uint8_t>(read[own]) == mark) {
        ++own;
    }
    for (size_t i = own; i < read.size(); ++i) {
        require(read[i] == 0, "what is read is the operation's own");
    }
    if (result == ResultCode_Success) {
        require(own == read.size() || adapter.hasCut(mark), "what is read is whole");
    } else {
        require(isAnswered || own == 0, "without an answer nothing is read");
    }
}

template <typename Face>
void run(Face& face, const UnreliableAdapter& adapter, const Operation& operation) {
    const uint8_t mark = UnreliableAdapter::markOf(operation.number);
    Bytes data;
    switch (operation.kind) {
    case 0:
        checkAnswer(adapter, mark, face.read(operation.number, operation.size, data), data);
        break;
    case 1: {
        uint8_t level = 0;
        const uint16_t result = face.readPin(operation.number, level);
        checkAnswer(adapter, mark, result, Bytes{level});
        break;
    }
    case 2:
        checkAnswer(adapter, mark, face.send(Bytes(operation.size, mark)), data);
        break;
    default: {
        std::array<std::string, 5> texts;
        const uint16_t result = face.readStrings(texts);
        uint8_t index = 0;
        for (const std::string& text : texts) {
            // A string has no status, and is empty where it was not read any more.
            ++index;
            checkAnswer(adapter, UnreliableAdapter::markOf(index),
                        text.empty() ? result : uint16_t{ResultCode_Success}, text);
        }
        break;
    }
    }
}

template <typename Face>
void converse(uint8_t settings, int timeoutMs, UnreliableAdapter& adapter, Outages& outages,
              Input& input) {
    Face face(timeoutMs);
    face.setOverlap(static_cast<uint8_t>(1 + (settings >> 4U & 3U)));
    face.connect();
    std::vector<std::vector<Operation>> scripts(1 + (settings >> 6U));
    size_t requests = 0;
    for (uint8_t number = 0; requests + maxRequestsOfOperation <= maxRequests && !input.isEmpty();
         ++number) {
        const uint8_t byte = input.byte();
        const auto kind = static_cast<uint8_t>(byte >> 2U & 3U);
        const auto size = static_cast<uint16_t>(1 + (byte >> 4U) * 55);
        scripts[(byte & 3U) % scripts.size()].push_back({number, kind, size});
        requests += kind == 3 ? maxRequestsOfOperation : 1;
    }
    std::atomic<size_t> running{scripts.size()};
    std::vector<std::thread> threads;
    threads.reserve(scripts.size());
    for (const auto& script : scripts) {
        threads.emplace_back([&] {
            for (const Operation& operation : script) {
                run(face, adapter, operation);
            }
            if (--running == 0) {
                outages.close();
            }
        });
    }
    while (const std::optional<Outage> outage = outages.next()) {
        *outage == Outage::BootMode ? face.enterBootMode() : face.disconnect();
        face.count();
        if (*outage != Outage::Disconnect) {
            face.connect();
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr std::array timeoutsMs{0, 1, 3, -1};
    Input input(data, size);
    const uint8_t settings = input.byte();
    const int timeoutMs = timeoutsMs.at(settings >> 2U & 3U);
    const bool isHighSpeed = (settings & 1U) != 0;
    const bool isInC = (settings & 2U) != 0;
    Outages outages;
    UnreliableAdapter adapter(isHighSpeed, timeoutMs < 0, input.bytes(), outages);
    (isInC ? converse<FlatFace> : converse<ClassFace>)(settings, timeoutMs, adapter, outages,
                                                       input);
    return 0;
}
