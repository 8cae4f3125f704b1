// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Two adapters in one process, through the real hidapi and libusb.
#include "support/ScriptedHid.hpp"
#include "usb/UsbTestBed.hpp"

#include <veltrasdk/VeltraSDK.hpp>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

using namespace test_support;

namespace {

constexpr int patientMs = generousLimitMs;

/// The bed comes first, since it must outlive everything that uses hidapi.
class SeveralAdaptersTest : public testing::Test {
protected:
    SeveralAdaptersTest() {
        EXPECT_TRUE(VeltraSDK::shareHidapi());
        virtual_adapter::AdapterSettings settings;
        settings.serialNumber = "VA-A";
        bed.plugIn(settings);
        settings.serialNumber = "VA-B";
        settings.identity = *virtual_adapter::findUsbIdentity("high-speed");
        bed.plugIn(settings);
    }

    static std::string serialNumberRead(VeltraSDK& sdk) {
        std::vector<uint8_t> text;
        EXPECT_EQ(sdk.getUsbString(text, 3), 0);
        return {text.begin(), text.end()};
    }

    UsbTestBed bed;
};

TEST_F(SeveralAdaptersTest, BothAreListedAlsoWhileOneIsConnected) {
    for (const std::string serialNumber : {"", "VA-A"}) {
        VeltraSDK sdk(patientMs);
        ASSERT_TRUE(serialNumber.empty() || sdk.connectWithSerialNumber(serialNumber));
        const std::vector<VeltraSDK_AdapterInfo> adapters = VeltraSDK::adapters();
        ASSERT_EQ(adapters.size(), 2U);
        for (const VeltraSDK_AdapterInfo& adapter : adapters) {
            EXPECT_TRUE(adapter.accessible);
            const bool first = adapter.serialNumber == std::string("VA-A");
            EXPECT_STREQ(adapter.serialNumber, first ? "VA-A" : "VA-B");
            EXPECT_STREQ(adapter.path, first ? "1-1:1.0" : "1-2:1.0");
            EXPECT_EQ(adapter.reportSize, first ? 64 : 1024);
        }
        EXPECT_STRNE(adapters[0].path, adapters[1].path);
    }
}

TEST_F(SeveralAdaptersTest, OneAnswersWhenTheOthersObjectIsDestroyed) {
    VeltraSDK staying(patientMs);
    ASSERT_TRUE(staying.connectWithSerialNumber("VA-A"));
    {
        VeltraSDK passing(patientMs);
        ASSERT_TRUE(passing.connectWithSerialNumber("VA-B"));
        EXPECT_EQ(serialNumberRead(passing), "VA-B");
    }
    EXPECT_EQ(serialNumberRead(staying), "VA-A");
}

TEST_F(SeveralAdaptersTest, BothAreUsedFromTwoThreadsThatCreateAndDestroyTheirObjects) {
    constexpr int rounds = 50;
    const auto use = [](const std::string& serialNumber) {
        for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
            VeltraSDK sdk(patientMs);
            ASSERT_TRUE(sdk.connectWithSerialNumber(serialNumber));
            ASSERT_EQ(serialNumberRead(sdk), serialNumber);
            ASSERT_EQ(sdk.gpioSetVoltage(3300, true), 0);
            ASSERT_EQ(serialNumberRead(sdk), serialNumber);
        }
    };
    std::thread other(use, "VA-B");
    use("VA-A");
    other.join();
}

} // namespace
