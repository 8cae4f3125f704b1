// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// hidapi shared between the objects of a process, which holds until the process ends.
#include "support/SdkTest.hpp"
#include "support/Variant.hpp"

#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace test_support;

namespace {

std::string serialNumber(size_t number) {
    return "VA-000" + std::to_string(number);
}

class SharingTest : public testing::Test {
protected:
    static constexpr size_t adapters = 4;

    SharingTest() {
        hid.bearAsLittleAsLibusb(true);
        for (size_t number = 1; number <= adapters; ++number) {
            const std::string serial = serialNumber(number);
            hid.attach({"1-" + std::to_string(number) + ":1.0", vendorId, fullSpeed.productId,
                        std::wstring(serial.begin(), serial.end())});
        }
        // Whatever string is asked for is empty.
        hid.respond([](const Bytes& report) {
            return std::vector<Bytes>{
                fullSpeed.input({0x1F, 0x00, report[3], report[4], 0x07, 0x04, 0x00, 0x00, 0x01})};
        });
        EXPECT_TRUE(VeltraSDK::shareHidapi());
    }

    static std::unique_ptr<VeltraSDK> connected(size_t number) {
        auto sdk = std::make_unique<VeltraSDK>(patientMs);
        EXPECT_TRUE(sdk->connectWithSerialNumber(serialNumber(number)));
        return sdk;
    }

    static void expectAnswer(VeltraSDK& sdk) {
        std::vector<uint8_t> text{0xEE};
        EXPECT_EQ(sdk.getUsbString(text, 3), 0);
        EXPECT_TRUE(text.empty());
    }

    ScriptedHid hid;
};

TEST_F(SharingTest, SharingAgainIsTrueAlsoWhileObjectsExist) {
    EXPECT_TRUE(VeltraSDK_ShareHidapi());
    const VeltraSDK sdk(0);
    EXPECT_TRUE(VeltraSDK_ShareHidapi());
    EXPECT_TRUE(VeltraSDK::shareHidapi());
}

TEST_F(SharingTest, TheFirstObjectInitialisesAndTheLastOneShutsDown) {
    EXPECT_EQ(hid.initCalls(), 0U);
    auto first = std::make_unique<VeltraSDK>(0);
    auto second = std::make_unique<VeltraSDK>(0);
    EXPECT_EQ(hid.initCalls(), 1U);
    first.reset();
    EXPECT_EQ(hid.exitCalls(), 0U);
    first = std::make_unique<VeltraSDK>(0);
    second.reset();
    EXPECT_EQ(hid.exitCalls(), 0U);
    first.reset();
    EXPECT_EQ(hid.initCalls(), 1U);
    EXPECT_EQ(hid.exitCalls(), 1U);
    const VeltraSDK next(0);
    EXPECT_EQ(hid.initCalls(), 2U);
}

TEST_F(SharingTest, AListingAloneInitialisesAndShutsDown) {
    EXPECT_EQ(VeltraSDK::adapters().size(), adapters);
    EXPECT_EQ(hid.initCalls(), 1U);
    EXPECT_EQ(hid.exitCalls(), 1U);
}

TEST_F(SharingTest, AListingBesideAConnectedObjectDoesNotShutDown) {
    const auto sdk = connected(2);
    EXPECT_EQ(VeltraSDK_Enumerate(nullptr, 0), adapters);
    EXPECT_EQ(hid.initCalls(), 1U);
    EXPECT_EQ(hid.exitCalls(), 0U);
    expectAnswer(*sdk);
}

TEST_F(SharingTest, AnAdapterAnswersWhileAnotherOnesObjectComesAndGoes) {
    const auto staying = connected(1);
    for (size_t round = 0; round < 10; ++round) {
        const auto passing = connected(2);
        expectAnswer(*passing);
        expectAnswer(*staying);
    }
    expectAnswer(*staying);
}

TEST_F(SharingTest, AnObjectThatCannotConnectLeavesTheOthersAlone) {
    const auto staying = connected(1);
    EXPECT_FALSE(VeltraSDK(0).connectWithSerialNumber("VA-9999"));
    hid.failNth(HidCall::OpenPath, 1);
    EXPECT_FALSE(VeltraSDK(0).connect(""));
    EXPECT_TRUE(VeltraSDK(0).connectWithSerialNumber(serialNumber(2)));
    expectAnswer(*staying);
}

TEST_F(SharingTest, AHandlerMayConnectAnotherObject) {
    VeltraSDK other(patientMs);
    bool otherConnected = false;
    VeltraSDK sdk(patientMs);
    sdk.onNotification([&](const Notification&) {
        otherConnected = other.connectWithSerialNumber(serialNumber(2));
    });
    ASSERT_TRUE(sdk.connectWithSerialNumber(serialNumber(1)));
    hid.deliver(fullSpeed.input({0x1F, 0x00, 0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x01}));
    ASSERT_TRUE(hid.waitUntilDrained());
    // Waits for the handler, with no lock that it could want.
    sdk.disconnect();
    EXPECT_TRUE(otherConnected);
    expectAnswer(other);
}

TEST_F(SharingTest, ObjectsComeAndGoInSeveralThreads) {
    constexpr size_t rounds = 50;
    std::vector<std::thread> threads;
    for (size_t number = 1; number <= adapters; ++number) {
        threads.emplace_back([number] {
            for (size_t round = 0; round < rounds; ++round) {
                const auto sdk = connected(number);
                expectAnswer(*sdk);
                EXPECT_EQ(VeltraSDK::adapters().size(), adapters);
                sdk->disconnect();
                EXPECT_TRUE(sdk->connectWithSerialNumber(serialNumber(number)));
                expectAnswer(*sdk);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(hid.initCalls(), hid.exitCalls());
    EXPECT_EQ(hid.writes().size(), 2 * rounds * adapters);
}

} // namespace
