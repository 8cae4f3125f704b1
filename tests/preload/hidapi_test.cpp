// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/FailingAllocation.hpp"

#include <gtest/gtest.h>
#include <hidapi.h>

#include <array>
#include <cstddef>

using test_support::FailingAllocation;

bool test_support::isSpared() {
    return false;
}

namespace {

/// Makes the first allocation of @p call fail, then the second, and so on, until it meets no such
/// allocation any more; returns how many it met. A call that met one must have failed.
template <typename Call>
size_t failEachAllocationOf(Call call) {
    for (size_t position = 1;; ++position) {
        bool succeeded = false;
        bool happened = false;
        bool threw = false;
        {
            const FailingAllocation failing(position);
            try {
                succeeded = call();
            } catch (...) {
                threw = true;
            }
            happened = failing.happened();
        }
        EXPECT_FALSE(threw) << "allocation " << position;
        EXPECT_NE(succeeded, happened) << "allocation " << position;
        if (!happened) {
            return position - 1;
        }
    }
}

/// In a process of its own: the functions have one device to a process.
class HidapiTest : public testing::Test {
protected:
    static bool write() {
        const std::array<unsigned char, 8> report{0x00, 0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x01};
        return hid_write(device, report.data(), report.size()) == static_cast<int>(report.size());
    }

    static bool read() {
        std::array<unsigned char, 64> report{};
        return hid_read_timeout(device, report.data(), report.size(), 0) >= 0;
    }

    static bool list() {
        hid_device_info* const first = hid_enumerate(0, 0);
        const bool listed = first != nullptr;
        hid_free_enumeration(first);
        return listed;
    }

    static hid_device* device;
};

hid_device* HidapiTest::device = nullptr;

TEST_F(HidapiTest, WithoutMemoryEveryFunctionFailsAndThrowsNothing) {
    EXPECT_GT(failEachAllocationOf([] { return hid_init() == 0; }), 0U)
        << "the adapter is made when it is first asked for";
    EXPECT_GT(failEachAllocationOf(list), 0U);
    failEachAllocationOf([] {
        device = hid_open_path("1-1:1.0");
        return device != nullptr;
    });
    ASSERT_NE(device, nullptr);
    EXPECT_GT(failEachAllocationOf(write), 0U);
    for (int i = 0; i < 100; ++i) {
        failEachAllocationOf(write);
        failEachAllocationOf(read);
    }
    failEachAllocationOf([] {
        hid_close(device);
        return true;
    });
    failEachAllocationOf([] { return hid_exit() == 0; });
}

} // namespace
