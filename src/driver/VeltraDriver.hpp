// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver/Hidapi.hpp"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// An output report in the making: the report identifier, 0 for unnumbered reports, and room for a
/// packet. Only what is written to it has a value.
class OutputReport {
public:
    static constexpr size_t identifierSize = 1;
    /// The largest report of any adapter variant, its identifier not counted.
    static constexpr size_t maxSize = 1024;

    OutputReport() { bytes[0] = 0; } // NOLINT(cppcoreguidelines-pro-type-member-init)

    [[nodiscard]] const uint8_t* data() const { return bytes.data(); }
    [[nodiscard]] uint8_t* packet() { return bytes.data() + identifierSize; }

private:
    std::array<uint8_t, identifierSize + maxSize> bytes;
};

/// Finds the adapter among the HID devices, opens it, writes one report per packet and reads
/// reports on a thread of its own.
class VeltraDriver {
public:
    /// One adapter variant.
    struct MervoDeviceCharacteristics {
        uint16_t vendorId;
        uint16_t productId;
        /// Payload bytes of one HID report.
        size_t endpointSize;
    };

    VeltraDriver() = default;
    ~VeltraDriver();
    VeltraDriver(const VeltraDriver&) = delete;
    VeltraDriver& operator=(const VeltraDriver&) = delete;

    /// The variant with these identifiers, or null.
    static const MervoDeviceCharacteristics* findMervoDeviceCharacteristics(uint16_t vendorId,
                                                                            uint16_t productId);

    /// Opens the first known adapter whose HID path and serial number equal the arguments; an
    /// empty argument matches any. An open driver returns true at once.
    [[gnu::cold]] bool open(const std::string& path, const std::string& serialNumber);

    /// Stops the polling thread and closes the device. Must not be called from the callback.
    [[gnu::cold]] void close();

    /// Only while open.
    [[nodiscard]] size_t getEndpointSize() const { return deviceCharacteristics->endpointSize; }

    /// Writes @p packet as one report, padded with zeros or cut to the report's size. Returns
    /// false when closed or when the write failed.
    [[gnu::cold]] bool sendCommand(const std::vector<uint8_t>& packet);

    /// The same for a packet that stands in the report already, at most a report's size of it.
    bool sendReport(OutputReport& report, size_t packetSize);

    /// Installs the receiver of reports, which runs on the polling thread; only while closed.
    void onResponse(std::function<void(const std::vector<uint8_t>&)> callback);

    /// Installs who is told of each read that fails, on the polling thread; only while closed.
    void onReadError(std::function<void()> callback);

    /// Whether a read has failed since the device was opened.
    [[nodiscard]] bool hasReadError() const { return readError; }

private:
    void pollingLoop();
    [[gnu::cold]] void pausePolling(std::chrono::milliseconds pause);
    [[gnu::cold]] void endPause();

    static const std::vector<MervoDeviceCharacteristics> mervoDeviceList;

    // Given up last, when the device is closed.
    Hidapi hidapi;
    const MervoDeviceCharacteristics* deviceCharacteristics = nullptr;
    // Not read by the library; tells whoever looks at an object which adapter it holds.
    std::string devicePath;
    hid_device* device = nullptr;
    std::function<void(const std::vector<uint8_t>&)> responseCallback;
    std::function<void()> readErrorCallback;
    std::atomic<bool> readError{false};
    bool isOpen = false;
    std::atomic<bool> isPolling{false};
    std::thread pollingThread;

    // Let `close` and a written report end the pause that follows a read error. A report counts
    // that was written since the failed read began: what answers it may be there by now.
    std::atomic<bool> hasWritten{false};
    std::atomic<bool> isPausing{false};
    std::mutex pauseMutex;
    std::condition_variable pauseEnded;
};

/// Whether hidapi's serial number equals @p serialNumber, given in UTF-8, byte for byte; false for
/// a null @p deviceSerial. Throws std::range_error for a code point that UTF-8 cannot hold.
bool compareSerial(const std::string& serialNumber, const wchar_t* deviceSerial);
