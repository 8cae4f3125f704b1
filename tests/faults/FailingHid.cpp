#include "faults/FailingHid.hpp"

#include "faults/FailingAllocation.hpp"
#include "support/ScriptedHid.hpp"

#include <hidapi.h>

#include <mutex>

#include <gtest/gtest.h>

using namespace test_support;

namespace {

// The polling thread reads while a test makes the other calls.
std::mutex mutex;
HidCall failingCall = HidCall::Init;
size_t remaining = 0;
bool failed = false;

bool fails(HidCall call) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (call != failingCall || remaining == 0 || --remaining > 0) {
        return false;
    }
    failed = true;
    return true;
}

} // namespace

namespace test_support {

FailingHidCall::FailingHidCall(HidCall call, size_t position) {
    const std::lock_guard<std::mutex> lock(mutex);
    failingCall = call;
    remaining = position;
    failed = false;
}

FailingHidCall::~FailingHidCall() {
    const std::lock_guard<std::mutex> lock(mutex);
    remaining = 0;
}

bool FailingHidCall::happened() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return failed;
}

} // namespace test_support

// The linker's --wrap makes these names: the library's calls arrive at __wrap_, and __real_ is the
// stand-in. What the stand-in allocates is not the library's.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {

int __real_hid_init(void);
int __real_hid_exit(void);
hid_device_info* __real_hid_enumerate(unsigned short vendorId, unsigned short productId);
void __real_hid_free_enumeration(hid_device_info* devices);
hid_device* __real_hid_open_path(const char* path);
void __real_hid_close(hid_device* device);
int __real_hid_write(hid_device* device, const unsigned char* data, size_t length);
int __real_hid_read_timeout(hid_device* device, unsigned char* data, size_t length,
                            int milliseconds);

int __wrap_hid_init(void) {
    const SparedAllocations spared;
    __real_hid_init();
    return fails(HidCall::Init) ? -1 : 0;
}

int __wrap_hid_exit(void) {
    const SparedAllocations spared;
    __real_hid_exit();
    return fails(HidCall::Exit) ? -1 : 0;
}

hid_device_info* __wrap_hid_enumerate(unsigned short vendorId, unsigned short productId) {
    const SparedAllocations spared;
    return fails(HidCall::Enumerate) ? nullptr : __real_hid_enumerate(vendorId, productId);
}

void __wrap_hid_free_enumeration(hid_device_info* devices) {
    const SparedAllocations spared;
    __real_hid_free_enumeration(devices);
}

hid_device* __wrap_hid_open_path(const char* path) {
    const SparedAllocations spared;
    return fails(HidCall::OpenPath) ? nullptr : __real_hid_open_path(path);
}

void __wrap_hid_close(hid_device* device) {
    const SparedAllocations spared;
    __real_hid_close(device);
}

int __wrap_hid_write(hid_device* device, const unsigned char* data, size_t length) {
    const SparedAllocations spared;
    constexpr size_t packet = 1;
    // The adapter does not answer a message of which it has lost a report.
    static bool messageIsLost = false;
    const bool failing = fails(HidCall::Write);
    messageIsLost = failing || (messageIsLost && (data[packet] & 1U) == 0);
    if (messageIsLost) {
        return failing ? -1 : static_cast<int>(length);
    }
    const int written = __real_hid_write(device, data, length);
    EXPECT_TRUE(ScriptedHid::instance().waitUntilDrained());
    return written;
}

int __wrap_hid_read_timeout(hid_device* device, unsigned char* data, size_t length,
                            int milliseconds) {
    const SparedAllocations spared;
    return fails(HidCall::ReadTimeout)
               ? -1
               : __real_hid_read_timeout(device, data, length, milliseconds);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
