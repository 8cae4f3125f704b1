// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

/// A stand-in for hidapi that answers every request at once or after a delay, allocates nothing
/// while it runs, and costs as little as it can, so that what is measured is the library.
///
/// It stands apart from the stand-in of the tests for that reason: the allocations and the
/// instructions of the whole process are counted around it, and a queue, a script and a record of
/// every report would drown what the library adds.
///
/// Each message is answered when its last packet arrives: with the same transaction identifier and
/// command code, status 0, and a payload that each command takes for as much data as it may be
/// asked for here. Each opening makes another device, up to two at a time.
namespace loopback_hid {

/// 64 or 1024; takes effect when a device is opened.
void setReportSize(size_t reportSize);

/// How long the device takes to answer.
void setResponseDelay(std::chrono::nanoseconds delay);

/// The data bytes of a response: an I2C, SPI or I3C read; GETPID has six, a string five. Those of
/// an I2C read are the target's address.
constexpr size_t dataSize = 16;

/// Whether requests are answered at all.
void answerRequests(bool answers);

/// Makes the next @p count reads find a notification of a GPIO interrupt at once.
void notify(size_t count);

/// Makes every read fail at once, as after an unplug.
void unplug(bool unplugged);

/// The numbers of hid_read_timeout and hid_write calls so far.
size_t readCalls();
size_t writeCalls();

} // namespace loopback_hid
