// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "device/AdapterLink.hpp"
#include "device/AdapterSettings.hpp"

#include <condition_variable>
#include <deque>
#include <mutex>

namespace virtual_adapter {

/// The adapter as hidapi shows it to a program. Any thread may call.
///
/// Results are hidapi's: a number of bytes, or -1 for an error.
class HidAdapter {
public:
    explicit HidAdapter(const AdapterSettings& chosen);

    [[nodiscard]] const AdapterSettings& adapterSettings() const { return settings; }

    /// Whether the program may read the adapter's strings and open it.
    [[nodiscard]] bool isAccessible() const {
        return settings.fault.kind != FaultKind::NoPermission;
    }

    bool isOnBus();
    bool isOpen();

    /// Returns false while the adapter is open already, as its interface is claimed, and when it
    /// is out of reach.
    bool open();

    /// Drops the reports that nobody has read.
    void close();

    /// Writes one output report without a report identifier.
    bool write(const Bytes& report);

    /// Waits for an input report as long as it takes when @p milliseconds is negative. Returns 0
    /// when the time is over.
    int read(uint8_t* data, size_t size, int milliseconds);

private:
    void receive();
    int takeUnread(uint8_t* data, size_t size);

    const AdapterSettings settings;
    std::mutex mutex;
    /// A report has come, or the adapter has gone.
    std::condition_variable changed;
    AdapterLink link;
    std::deque<Bytes> unread;
    bool opened = false;
};

} // namespace virtual_adapter
