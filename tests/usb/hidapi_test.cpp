// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What hidapi's libusb back end does to whoever uses it, each trap reproduced once.
#include "support/ScriptedHid.hpp"
#include "usb/UsbTestBed.hpp"

#include <hidapi/hidapi.h>

#include <veltrasdk/VeltraSDK.hpp>

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <memory>

using namespace test_support;

namespace {

using Report = std::array<uint8_t, 65>;

/// Asks for string 3, behind report identifier 0.
Report askForString3(uint8_t transactionId) {
    return {0x00, 0x17, 0x00, transactionId, 0x00, 0x07, 0x04, 0x03};
}

class HidapiTest : public testing::Test {
protected:
    HidapiTest() : node(bed.plugIn()) { hid_init(); }
    ~HidapiTest() override {
        hid_close(device);
        hid_exit();
    }

    void open() {
        device = hid_open_path(node.path().c_str());
        ASSERT_NE(device, nullptr);
    }

    UsbTestBed bed;
    UsbNode& node;
    hid_device* device = nullptr;
};

TEST_F(HidapiTest, OfManyUnreadReportsTheOldestAreLost) {
    node.sendWithoutPacing();
    open();
    constexpr uint8_t requests = 40;
    for (uint8_t id = 1; id <= requests; ++id) {
        const Report report = askForString3(id);
        ASSERT_EQ(hid_write(device, report.data(), report.size()), 65);
    }
    ASSERT_TRUE(node.waitFor(
        [](const auto& activity) { return activity.inputReports == size_t{requests}; }));

    std::vector<uint8_t> received;
    while (received.empty() || received.back() != requests) {
        Report report{};
        ASSERT_GT(hid_read_timeout(device, report.data(), report.size(), generousLimitMs), 0);
        received.push_back(report[2]);
    }
    EXPECT_GE(received.size(), 32U);
    EXPECT_LT(received.size(), size_t{requests});
    EXPECT_EQ(received.front(), requests - received.size() + 1) << "the rest is in order";
}

TEST_F(HidapiTest, AWriteThatTheDeviceNeverTakesFailsByItself) {
    open();
    node.acceptOutput(false);
    const Report report = askForString3(1);
    EXPECT_EQ(hid_write(device, report.data(), report.size()), -1);
}

TEST_F(HidapiTest, AfterAnUnplugEveryReadFailsAtOnce) {
    open();
    node.unplug();
    Report report{};
    // Each would wait for hours if it waited.
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(hid_read_timeout(device, report.data(), report.size(), 10'000'000), -1);
    }
}

TEST_F(HidapiTest, AListedDeviceIsOpenedToReadItsStrings) {
    std::unique_ptr<hid_device_info, decltype(&hid_free_enumeration)> devices(hid_enumerate(0, 0),
                                                                              hid_free_enumeration);
    ASSERT_NE(devices, nullptr);
    EXPECT_STREQ(devices->serial_number, L"VA-0001");
    EXPECT_STREQ(devices->manufacturer_string, L"Veltra");
    EXPECT_STREQ(devices->product_string, L"full-speed");
    EXPECT_EQ(devices->path, node.path());
    EXPECT_EQ(devices->release_number, 0x0100);
    EXPECT_EQ(devices->next, nullptr);
}

TEST(HidapiDeathTest, ShuttingDownUnderAnOpenDeviceAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            UsbTestBed bed;
            const std::string first = bed.plugIn().path();
            const std::string second = bed.plugIn().path();
            VeltraSDK survivor(1000);
            survivor.connect(first);
            VeltraSDK(1000).connect(second);
        },
        testing::KilledBySignal(SIGABRT), "");
}

} // namespace
