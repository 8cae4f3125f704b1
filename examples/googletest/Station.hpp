// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The driver of a weather station, as a bench or a product would have it. It knows nothing of
// tests.
#pragma once

#include <veltrasdk/NotificationQueue.hpp>
#include <veltrasdk/VeltraSDK.hpp>

#include <poll.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class Station {
public:
    using Bytes = std::vector<uint8_t>;

    explicit Station(VeltraSDK& adapter) : sdk(adapter), notifications(adapter, 4096) {}

    /// Switches the buses on, looks for the hygrometer, and arms the button and the alarm.
    bool start() {
        return startI2c() && read(0, 0x76, 0xD0, 1) == Bytes{0x60} && startButton() && startAlarm();
    }

    /// In degrees Celsius.
    std::optional<double> temperature() {
        const auto raw = read(0, 0x48, 0x00, 2);
        if (!raw) {
            return std::nullopt;
        }
        return static_cast<int16_t>((*raw)[0] << 8 | (*raw)[1]) / 256.0;
    }

    /// Relative, in per cent.
    std::optional<unsigned> humidity() {
        const auto raw = read(0, 0x76, 0xF3, 1);
        return raw ? std::optional<unsigned>((*raw)[0]) : std::nullopt;
    }

    /// In hPa.
    std::optional<unsigned> pressure() {
        const auto raw = read(1, 0x5C, 0x10, 2);
        return raw ? std::optional<unsigned>((*raw)[0] << 8 | (*raw)[1]) : std::nullopt;
    }

    bool show(const std::string& text) {
        return sdk.i2cWrite(1, 0x3C, {}, {0x01}, false) == ResultCode_Success &&
               sdk.i2cWrite(1, 0x3C, {0x03}, Bytes(text.begin(), text.end()), false) ==
                   ResultCode_Success;
    }

    /// Waits for the button to be pressed.
    bool waitForButton() {
        const auto entry = wait(NotificationKind_Gpio);
        const auto record = entry ? entry->notification() : Notification{};
        const GpioData* const event = record.gpio();
        return event != nullptr && event->value == button;
    }

    /// Waits for the alarm, and returns what comes with it.
    std::optional<Bytes> waitForAlarm() {
        const auto entry = wait(NotificationKind_I3cIbi);
        const auto record = entry ? entry->notification() : Notification{};
        const I3cIbiData* const alarm = record.i3cIbi();
        if (alarm == nullptr) {
            return std::nullopt;
        }
        const size_t size = std::min<size_t>(alarm->payloadLength, record.size - 8);
        return Bytes(alarm->payload, alarm->payload + size);
    }

private:
    static constexpr GpioPinNumber button = GpioPinNumber_4;
    static constexpr uint8_t pullUps4700Ohm = 2;
    static constexpr uint8_t interrupts = 0x01; // of ENEC
    static constexpr int limit = 10'000;        // ms; far more than any machine takes

    /// A response that is lost is asked for once more: reading changes nothing.
    std::optional<Bytes> read(uint8_t bus, uint8_t address, uint8_t index, uint16_t count) {
        Bytes data;
        uint16_t result = ResultCode_NoResponse;
        for (int tries = 0; tries < 2 && result == ResultCode_NoResponse; ++tries) {
            result = sdk.i2cRead(bus, address, {index}, count, data, false);
        }
        return result == ResultCode_Success ? std::optional<Bytes>(data) : std::nullopt;
    }

    bool startI2c() {
        bool started = sdk.i2cSetBusVoltage(3300, true) == ResultCode_Success;
        for (uint8_t bus = 0; bus < 2; ++bus) {
            started = started && sdk.i2cControllerInit(bus, 400'000, 0) == ResultCode_Success &&
                      sdk.i2cSetPullUpResistors(bus, pullUps4700Ohm) == ResultCode_Success;
        }
        return started;
    }

    bool startButton() {
        return sdk.gpioConfigurePin(button, GpioFunctionality_InputPullDown, GpioLogicLevel_Low) ==
                   ResultCode_Success &&
               sdk.gpioConfigureInterrupt(button, GpioTriggerType_RisingEdge) == ResultCode_Success;
    }

    bool startAlarm() {
        std::vector<I3cTargetInfo> targets;
        return sdk.i3cSetBusVoltage(1800) == ResultCode_Success &&
               sdk.i3cControllerInit(I3cPushPullRate_8_MHz, I3cOpenDrainTransferRate_1_MHz,
                                     I2cTransferRate_0_4_MHz,
                                     I3cDriveStrength_8_mA) == ResultCode_Success &&
               sdk.i3cInitBus({}) == ResultCode_Success &&
               sdk.i3cGetDeviceTable(targets) == ResultCode_Success && !targets.empty() &&
               sdk.i3cCccENECDirect(targets.front().dynamicAddress, interrupts) ==
                   ResultCode_Success;
    }

    /// Others that come before are dropped.
    std::optional<NotificationQueue::Entry> wait(NotificationKind kind) {
        pollfd waiting{notifications.descriptor(), POLLIN, 0};
        NotificationQueue::Entry entry;
        while (poll(&waiting, 1, limit) > 0 && notifications.take(entry)) {
            if (entry.kind == kind) {
                return entry;
            }
        }
        return std::nullopt;
    }

    VeltraSDK& sdk;
    NotificationQueue notifications;
};
