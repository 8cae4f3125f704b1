// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "capture/Blocks.hpp"
#include "capture/CaptureFile.hpp"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <pthread.h>

struct hid_device_info;

namespace preload {

/// Writes what passes between a program and hidapi to the file that VELTRA_CAPTURE names, as usbmon
/// would see it. Any thread may call. Nothing here throws or takes memory; the first write that
/// fails ends the capture with a message, and never the program.
class CaptureRecorder {
public:
    static constexpr size_t maxAdapters = 16;

    /// An adapter that may be opened later: only the enumeration tells its identity.
    void listed(const hid_device_info& device);

    /// The file is opened with the first adapter, so that programs which have none leave it alone.
    void opened(const void* handle, const char* path);

    /// Before the report is on its way. Returns the transfer's identifier, 0 without a record.
    uint64_t writing(const void* handle, const uint8_t* data, size_t length);
    void written(const void* handle, uint64_t transfer, int result);

    void reading(const void* handle, size_t length);
    void haveRead(const void* handle, const uint8_t* data, size_t length, int result);

    void closing(const void* handle);

    // Around a fork: the child begins a section of its own.
    void lock() { pthread_mutex_lock(&mutex); }
    void unlock() { pthread_mutex_unlock(&mutex); }
    void startAnewAfterFork();

private:
    enum class State { NotAsked, Recording, Ended };

    /// As many characters as a string descriptor takes.
    static constexpr size_t maxText = 126;

    struct Identity {
        char path[64];
        uint16_t vendorId;
        uint16_t productId;
        uint16_t release;
        /// Manufacturer, product, serial number.
        wchar_t texts[3][maxText + 1];
    };

    struct Adapter {
        std::atomic<const void*> handle;
        uint16_t bus;
        uint8_t device;
        /// The read that waits for a report, 0 for none.
        std::atomic<uint64_t> read;
        /// Nothing has come since a read failed: further failures are not told.
        std::atomic<bool> isGone;
    };

    void start();
    [[nodiscard]] const Identity* identityOf(const char* path) const;
    [[nodiscard]] uint8_t freeDevice(const char* path) const;
    Adapter* adapterBehind(const void* handle);
    void describe(capture::Blocks& blocks, const Adapter& adapter, const Identity& identity);
    void descriptor(capture::Blocks& blocks, const Adapter& adapter, uint8_t type, uint8_t index,
                    const uint8_t* content, size_t size);
    uint64_t submitRead(capture::Blocks& blocks, const Adapter& adapter, size_t length);
    uint64_t nextTransfer() { return transfers.fetch_add(1, std::memory_order_relaxed); }
    void append(const capture::Blocks& blocks);
    void end(int error);

    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    std::atomic<State> state{State::NotAsked};
    bool hasSection = false;
    capture::CaptureFile file;
    std::atomic<uint64_t> transfers{1};
    Adapter adapters[maxAdapters]{};
    Identity identities[maxAdapters]{};
    size_t nextIdentity = 0;
};

} // namespace preload
