#pragma once

#include "Input.hpp"

#include <hidapi.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

namespace fuzzing {

/// A stand-in for hidapi with one adapter that answers each report with what it was told. One
/// exists at a time.
///
/// A write returns only when the polling thread has dealt with all that answers it. An operation
/// with a time-out of 0 thus finds its response there or never, and a run depends on nothing but
/// its input.
///
/// An answer is a list, ended by 0: 1 and bytes for a report; 2 and bytes in two parts for a
/// message, which is cut into packets; 3 for a read that fails; 4 for the write to fail; 5 and
/// bytes in two parts for a message that answers the request with its own identifier and command.
class HostileHid {
public:
    explicit HostileHid(bool highSpeed);
    ~HostileHid();
    HostileHid(const HostileHid&) = delete;
    HostileHid& operator=(const HostileHid&) = delete;

    static HostileHid& instance();

    /// Gives the answers to the next writes, one list after the other.
    void answerWith(Bytes lists);

    // The functions of hidapi that have something to do end here.
    hid_device_info* enumerate() { return &adapter; }
    hid_device* open();
    int write(const uint8_t* report, size_t length);
    int readTimeout(uint8_t* report, size_t length);

private:
    /// Nothing stands for a read that fails.
    using Read = std::optional<Bytes>;

    void answerMessage(std::deque<Read>& reads, const Bytes& message) const;

    size_t reportSize;
    Bytes answerLists;
    Input answers{nullptr, 0};
    hid_device_info adapter{};
    Bytes request;

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Read> pending;
    bool readerIsWaiting = false;
    bool lastReadFailed = false;
};

} // namespace fuzzing
