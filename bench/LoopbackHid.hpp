#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

/// A stand-in for hidapi that answers every request at once or after a delay, allocates nothing
/// while it runs, and costs as little as it can, so that what is measured is the library.
///
/// Each message is answered when its last packet arrives: with the same transaction identifier and
/// command code, status 0, and a string of five bytes where the payload begins.
namespace loopback_hid {

/// 64 or 1024; takes effect when a device is opened.
void setReportSize(size_t reportSize);

/// How long the device takes to answer.
void setResponseDelay(std::chrono::nanoseconds delay);

/// How long a report occupies the bus: hid_write returns that much after the previous one.
void setReportTime(std::chrono::nanoseconds time);

/// Makes every read fail at once, as after an unplug.
void unplug(bool unplugged);

/// The number of hid_read_timeout calls so far.
size_t readCalls();

} // namespace loopback_hid
