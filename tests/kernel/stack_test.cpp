// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The library on a real kernel, run inside the virtual machine: stack_test COMMAND
#include <veltrasdk/VeltraSDK.hpp>

#include <hidapi/hidapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;
using namespace std::chrono_literals;

/// For something that must happen, however slow the machine.
constexpr int patientMs = 60'000;
constexpr int briefMs = 200;

void require(bool condition, const std::string& what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

void waitUntil(const std::function<bool()>& condition, const std::string& what) {
    const auto limit = Clock::now() + std::chrono::milliseconds(patientMs);
    while (!condition()) {
        require(Clock::now() < limit, "waited in vain: " + what);
        std::this_thread::sleep_for(5ms);
    }
}

/// The driver that has the adapter's interface.
std::string driver(const std::string& interface) {
    const std::filesystem::path link = "/sys/bus/usb/devices/" + interface + "/driver";
    return std::filesystem::exists(link) ? std::filesystem::read_symlink(link).filename() : "none";
}

/// Path of the one adapter, whether or not it may be opened.
std::string adapterPath() {
    std::string path;
    hid_device_info* const devices = hid_enumerate(VELTRASDK_USB_VENDOR_ID, 0);
    for (const hid_device_info* device = devices; device != nullptr; device = device->next) {
        path = device->path;
    }
    hid_free_enumeration(devices);
    return path;
}

std::string serialNumber(VeltraSDK& sdk) {
    std::vector<uint8_t> text;
    require(sdk.getUsbString(text, 3) == 0, "reading the serial number");
    return {text.begin(), text.end()};
}

/// The adapter is listed, but nobody without the right can open it.
void refused(const std::string& serial) {
    VeltraSDK sdk(briefMs);
    require(!adapterPath().empty(), "the adapter is listed");
    require(!sdk.connect(""), "connecting without the right must fail");
    require(!sdk.connectWithSerialNumber(serial), "so must connecting by serial number");
}

/// Short and long messages, notifications, and the kernel's driver before, during and after.
void exercise(const std::string& serial) {
    VeltraSDK sdk(patientMs);
    std::atomic<size_t> received{0};
    sdk.onNotification([&](const Notification& notification) {
        const UartRxData* const uart = notification.uartRx();
        received += uart == nullptr ? 0 : uart->length;
    });
    const std::string path = adapterPath();
    waitUntil([&] { return driver(path) == "usbhid"; }, "the kernel's driver has the adapter");

    for (int i = 0; i < 2; ++i) {
        require(sdk.connectWithSerialNumber(serial), "connecting by serial number");
        require(driver(path) == "usbfs", "the kernel's driver is detached");
        require(serialNumber(sdk) == serial, "the serial number");
        sdk.disconnect();
        waitUntil([&] { return driver(path) == "usbhid"; }, "the kernel's driver is back");
    }

    require(sdk.connect(path), "connecting by path");
    const std::vector<uint8_t> longMessage(0x4000, 0x55);
    require(sdk.uartSendMessage(longMessage) != 0, "16 KiB to a UART without a voltage");
    require(sdk.uartSetBusVoltage(3300, true) == 0, "the I/O voltage");
    require(sdk.uartInit(UartBaudRate_115200, UartHwHandshake_None, UartParity_None,
                         UartDataSize_8Bits, UartStopBit_1) == 0,
            "the UART");
    // Fewer reports than hidapi keeps unread, however slow this machine is.
    const std::vector<uint8_t> message(1000, 0x55);
    require(sdk.uartSendMessage(message) == 0, "sending through the UART");
    waitUntil([&] { return received == message.size(); }, "every byte comes back");
}

double processorMilliseconds() {
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
}

/// Processor time that this process uses while its main thread does nothing for 5 s.
double idleMilliseconds() {
    const double before = processorMilliseconds();
    std::this_thread::sleep_for(5s);
    return processorMilliseconds() - before;
}

/// An adapter that is pulled out and put in again while one object watches: it says when it is
/// ready for either.
void replug(const std::string& serial) {
    VeltraSDK sdk(briefMs);
    require(sdk.connect(""), "connecting");
    std::cout << "CPU of an idle, connected handle over 5 s: " << idleMilliseconds() << " ms\n"
              << "connected" << std::endl;
    waitUntil(
        [&] {
            std::vector<uint8_t> text;
            return sdk.getUsbString(text, 3) != 0;
        },
        "the adapter is pulled out");
    std::cout << "CPU of an unplugged, still open handle over 5 s: " << idleMilliseconds() << " ms"
              << std::endl;
    sdk.disconnect();
    require(!sdk.connect(""), "an adapter that is gone is not found");
    std::cout << "disconnected" << std::endl;
    waitUntil([&] { return sdk.connectWithSerialNumber(serial); }, "the adapter is back");
    waitUntil(
        [&] {
            std::vector<uint8_t> text;
            return sdk.getUsbString(text, 3) == 0;
        },
        "the adapter answers again");
}

std::string distribution(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    const auto at = [&](size_t percent) { return times[(times.size() - 1) * percent / 100]; };
    return "median " + std::to_string(at(50)) + " ms, 99th percentile " + std::to_string(at(99)) +
           " ms of " + std::to_string(times.size());
}

double timed(const std::function<void()>& action) {
    const auto start = Clock::now();
    action();
    return Milliseconds(Clock::now() - start).count();
}

void append(std::vector<double>& times, size_t count, const std::function<void()>& action) {
    for (size_t i = 0; i < count; ++i) {
        times.push_back(timed(action));
    }
}

/// The same request written and read without the library.
void appendRawRoundTrips(std::vector<double>& times, size_t count, size_t reportSize) {
    hid_device* const device = hid_open_path(adapterPath().c_str());
    require(device != nullptr, "opening the adapter without the library");
    std::vector<uint8_t> request{0x00, 0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x03};
    request.resize(1 + reportSize);
    std::vector<uint8_t> response(reportSize);
    append(times, count, [&] {
        require(hid_write(device, request.data(), request.size()) > 0, "writing");
        require(hid_read_timeout(device, response.data(), response.size(), patientMs) > 0,
                "reading");
    });
    hid_close(device);
}

/// Library and hidapi take turns, so that a change of the machine's load meets both.
void measure(const std::string& reportSize) {
    constexpr size_t turns = 5;
    constexpr size_t roundTripsPerTurn = 40;
    VeltraSDK sdk(patientMs);
    std::vector<double> library;
    std::vector<double> raw;
    std::vector<double> disconnects;
    for (size_t turn = 0; turn < turns; ++turn) {
        require(sdk.connect(""), "connecting");
        append(library, roundTripsPerTurn, [&] { serialNumber(sdk); });
        append(disconnects, 1, [&] { sdk.disconnect(); });
        appendRawRoundTrips(raw, roundTripsPerTurn, std::stoul(reportSize));
    }
    std::cout << "round trip through the library: " << distribution(library)
              << "\nround trip through hidapi alone: " << distribution(raw)
              << "\ndisconnect: " << distribution(disconnects) << std::endl;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    try {
        require(arguments.size() == 2, "usage: stack_test COMMAND ARGUMENT");
        const std::string& command = arguments[0];
        if (command == "refused") {
            refused(arguments[1]);
        } else if (command == "exercise") {
            exercise(arguments[1]);
        } else if (command == "replug") {
            replug(arguments[1]);
        } else if (command == "measure") {
            measure(arguments[1]);
        } else {
            require(false, "no such command: " + command);
        }
    } catch (const std::exception& error) {
        std::cerr << "stack_test: FAILED: " << error.what() << std::endl;
        return 1;
    }
    return 0;
}
