// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/Readable.hpp"
#include "support/ScriptedHid.hpp"
#include "usb/UsbTestBed.hpp"

#include <veltrasdk/NotificationQueue.hpp>
#include <veltrasdk/VeltraSDK.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <numeric>
#include <thread>

using namespace test_support;
using virtual_adapter::AdapterSettings;
using virtual_adapter::FaultKind;

namespace {

constexpr int patientMs = generousLimitMs;
constexpr int briefMs = 100;
constexpr uint16_t millivolts = 3300;

AdapterSettings withSerial(const std::string& serialNumber) {
    AdapterSettings settings;
    settings.serialNumber = serialNumber;
    return settings;
}

AdapterSettings withFault(FaultKind kind) {
    AdapterSettings settings;
    settings.faults = {{kind, {}}};
    return settings;
}

/// Asks again until the condition holds; false when it does not within a generous limit.
template <typename Condition>
bool eventually(Condition condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(patientMs);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

std::string serialNumberRead(VeltraSDK& sdk) {
    std::vector<uint8_t> text;
    EXPECT_EQ(sdk.getUsbString(text, 3), 0);
    return {text.begin(), text.end()};
}

void startSpiLoopback(VeltraSDK& sdk) {
    ASSERT_EQ(sdk.spiSetBusVoltage(millivolts, true), 0);
    ASSERT_EQ(sdk.spiControllerInit(SpiBitOrder_MsbFirst, SpiMode_0, SpiDataWidth_8Bits,
                                    SpiChipSelect_1, SpiChipSelectPolarity_ActiveLow, 1000000),
              0);
}

std::vector<uint8_t> longMessage() {
    std::vector<uint8_t> bytes(0xFFFF);
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    return bytes;
}

/// The bed comes first, since it must outlive everything that uses hidapi.
class UsbTest : public testing::Test {
protected:
    UsbTestBed bed;
};

class UsbModelTest : public UsbTest, public testing::WithParamInterface<const char*> {
protected:
    static AdapterSettings settings() {
        return {*virtual_adapter::findUsbIdentity(GetParam()), "VA-0001", {}};
    }
};

INSTANTIATE_TEST_SUITE_P(BothVariants, UsbModelTest, testing::Values("full-speed", "high-speed"),
                         [](const auto& variant) {
                             return variant.param == std::string("full-speed") ? "FullSpeed"
                                                                               : "HighSpeed";
                         });

TEST_P(UsbModelTest, TheFirstAdapterIsFoundAndIdentifiesItself) {
    bed.plugIn(settings());
    VeltraSDK sdk(patientMs);
    ASSERT_TRUE(sdk.connect(""));
    VeltraSDK::DeviceInfo info;
    ASSERT_EQ(sdk.getDeviceInfo(info), 0);
    EXPECT_EQ(info.usbString1, "Veltra");
    EXPECT_EQ(info.usbString2, GetParam());
    EXPECT_EQ(info.usbString3, "VA-0001");
}

TEST_P(UsbModelTest, EveryFamilyWorksOnce) {
    bed.plugIn(settings());
    VeltraSDK sdk(patientMs);
    std::atomic<bool> uartReceived{false};
    sdk.onNotification([&](const Notification& notification) {
        uartReceived = uartReceived || notification.uartRx() != nullptr;
    });
    ASSERT_TRUE(sdk.connect(""));

    ASSERT_EQ(sdk.gpioSetVoltage(millivolts, true), 0);
    EXPECT_EQ(
        sdk.gpioConfigurePin(GpioPinNumber_0, GpioFunctionality_InputPullUp, GpioLogicLevel_Low),
        0);
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(sdk.gpioDigitalRead(GpioPinNumber_0, level), 0);
    EXPECT_EQ(level, GpioLogicLevel_High);

    EXPECT_EQ(sdk.i2cControllerInit(0, 400000, 0), 0);
    EXPECT_EQ(sdk.i2cSetPullUpResistors(0, 1), 0);
    std::vector<uint8_t> addresses;
    uint8_t sevenBitCount = 0;
    uint8_t tenBitCount = 0;
    EXPECT_EQ(sdk.i2cScanBus(addresses, &sevenBitCount, &tenBitCount, 0, false), 0);
    EXPECT_GT(sevenBitCount, 0);

    startSpiLoopback(sdk);
    std::vector<uint8_t> sent{1, 2, 3};
    std::vector<uint8_t> received;
    EXPECT_EQ(sdk.spiTransfer(sent, received, 3), 0);
    EXPECT_EQ(received, sent);

    EXPECT_EQ(sdk.uartInit(UartBaudRate_115200, UartHwHandshake_None, UartParity_None,
                           UartDataSize_8Bits, UartStopBit_1),
              0);
    EXPECT_EQ(sdk.uartSendMessage({'h', 'i'}), 0);
    EXPECT_TRUE(eventually([&] { return uartReceived.load(); }));

    EXPECT_EQ(sdk.i3cSetBusVoltage(millivolts), 0);
    EXPECT_EQ(sdk.i3cControllerInit(I3cPushPullRate_12_5_MHz, I3cOpenDrainTransferRate_4_MHz,
                                    I2cTransferRate_1_MHz, I3cDriveStrength_2_mA),
              0);
    EXPECT_EQ(sdk.i3cInitBus({}), 0);
    std::vector<I3cTargetInfo> table;
    EXPECT_EQ(sdk.i3cGetDeviceTable(table), 0);
    EXPECT_FALSE(table.empty());
}

TEST_P(UsbModelTest, ALongMessageCrossesEachWay) {
    bed.plugIn(settings());
    VeltraSDK sdk(patientMs);
    ASSERT_TRUE(sdk.connect(""));
    startSpiLoopback(sdk);
    std::vector<uint8_t> sent = longMessage();
    std::vector<uint8_t> received;
    EXPECT_EQ(sdk.spiTransfer(sent, received, 0xFFFF), 0);
    EXPECT_EQ(received, sent);
}

TEST_P(UsbModelTest, TheKernelsDriverIsDetachedAndGivenBack) {
    UsbNode& node = bed.plugIn(settings());
    VeltraSDK sdk(patientMs);
    ASSERT_TRUE(sdk.connect(""));
    EXPECT_TRUE(node.waitFor([](const auto& activity) {
        return activity.claims == 1 && activity.driverDetached == 1 && activity.driverAttached == 0;
    }));
    sdk.disconnect();
    EXPECT_TRUE(node.waitFor([](const auto& activity) {
        return activity.releases == 1 && activity.driverAttached == 1;
    }));
}

TEST_F(UsbTest, WithoutAnAdapterNothingConnects) {
    VeltraSDK sdk(briefMs);
    EXPECT_FALSE(sdk.connect(""));
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(sdk.gpioDigitalRead(GpioPinNumber_0, level), 0x4000);
}

TEST_F(UsbTest, ASerialNumberMayHoldAnyCharacter) {
    const std::string serialNumber = "\xC3\x89-\xCE\xA9-\xF0\x9F\x98\x80"; // with a surrogate pair
    bed.plugIn(withSerial(serialNumber));
    VeltraSDK sdk(patientMs);
    EXPECT_FALSE(sdk.connectWithSerialNumber("\xC3\xA9-\xCE\xA9-\xF0\x9F\x98\x80")) << "lower case";
    ASSERT_TRUE(sdk.connectWithSerialNumber(serialNumber));
    EXPECT_EQ(serialNumberRead(sdk), serialNumber);
}

TEST_F(UsbTest, TwoAdaptersAreToldApartBySerialNumberAndByPath) {
    bed.plugIn(withSerial("VA-A"));
    const UsbNode& second = bed.plugIn(withSerial("VA-B"));
    VeltraSDK sdk(patientMs);
    for (const std::string serialNumber : {"VA-A", "VA-B", "VA-A"}) {
        ASSERT_TRUE(sdk.connectWithSerialNumber(serialNumber));
        EXPECT_EQ(serialNumberRead(sdk), serialNumber);
        sdk.disconnect();
    }
    ASSERT_TRUE(sdk.connect(second.path()));
    EXPECT_EQ(serialNumberRead(sdk), "VA-B");
    sdk.disconnect();
    EXPECT_FALSE(sdk.connect("1-3:1.0"));
}

TEST_F(UsbTest, AnAdapterPluggedInAfterCreationIsFound) {
    VeltraSDK sdk(patientMs);
    EXPECT_FALSE(sdk.connect(""));
    bed.plugIn();
    EXPECT_TRUE(eventually([&] { return sdk.connect(""); }));
    EXPECT_EQ(serialNumberRead(sdk), "VA-0001");
}

TEST_F(UsbTest, AfterAnUnplugDuringAnOperationTheSameObjectConnectsAgain) {
    UsbNode& node = bed.plugIn(withFault(FaultKind::Unplug));
    VeltraSDK sdk(briefMs);
    ASSERT_TRUE(sdk.connect(""));
    ASSERT_TRUE(eventually([&] {
        std::vector<uint8_t> text;
        return sdk.getUsbString(text, 3) == 0x2000;
    }));
    sdk.disconnect();
    bed.replug(node, withSerial("VA-2"));
    ASSERT_TRUE(eventually([&] { return sdk.connectWithSerialNumber("VA-2"); }));
    EXPECT_TRUE(eventually([&] {
        std::vector<uint8_t> text;
        return sdk.getUsbString(text, 3) == 0;
    }));
}

TEST_F(UsbTest, AnUnplugWhileIdleIsNoticedByTheNextOperation) {
    UsbNode& node = bed.plugIn();
    VeltraSDK sdk(briefMs);
    ASSERT_TRUE(sdk.connect(""));
    node.unplug();
    GpioLogicLevel level = GpioLogicLevel_Low;
    EXPECT_EQ(sdk.gpioDigitalRead(GpioPinNumber_0, level), 0x2000);
    sdk.disconnect();
    EXPECT_TRUE(eventually([&] {
        const bool stillThere = sdk.connect("");
        sdk.disconnect();
        return !stillThere;
    }));
}

TEST_F(UsbTest, AnUnplugWhileIdleIsTheEndOfTheNotificationQueue) {
    UsbNode& node = bed.plugIn();
    VeltraSDK sdk(briefMs);
    NotificationQueue queue(sdk, 1000);
    ASSERT_TRUE(sdk.connect(""));
    node.unplug();
    NotificationQueue::Entry entry;
    ASSERT_TRUE(isReadable(queue.descriptor(), generousLimitMs));
    ASSERT_TRUE(queue.take(entry));
    EXPECT_TRUE(entry.isEndOfLink());
    sdk.disconnect();
    EXPECT_FALSE(queue.take(entry));
}

TEST_F(UsbTest, AnUnplugDuringALongWriteEndsTheOperation) {
    UsbNode& node = bed.plugIn();
    {
        VeltraSDK sdk(patientMs);
        ASSERT_TRUE(sdk.connect(""));
        startSpiLoopback(sdk);
    }

    VeltraSDK impatient(briefMs);
    ASSERT_TRUE(impatient.connect(""));
    node.unplugAfter(100);
    std::vector<uint8_t> sent = longMessage();
    std::vector<uint8_t> received;
    EXPECT_EQ(impatient.spiTransfer(sent, received, 0xFFFF), 0x2000);
    EXPECT_TRUE(received.empty());
}

TEST_F(UsbTest, NothingIsDeliveredAfterDisconnectingWhileReportsStreamIn) {
    bed.plugIn(withFault(FaultKind::NotificationStorm));
    std::atomic<size_t> notifications{0};
    size_t delivered = 0;
    {
        VeltraSDK sdk(patientMs);
        sdk.onNotification([&](const Notification&) { ++notifications; });
        ASSERT_TRUE(sdk.connect(""));
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(serialNumberRead(sdk), "VA-0001");
        }
        // The third response came amid two thousand notifications.
        sdk.disconnect();
        delivered = notifications;
        EXPECT_GE(delivered, 1000U);
    }
    EXPECT_EQ(notifications, delivered);
}

TEST_F(UsbTest, AnEndpointThatNeverAcceptsLeavesTheLinkUsable) {
    UsbNode& node = bed.plugIn();
    VeltraSDK sdk(briefMs);
    ASSERT_TRUE(sdk.connect(""));
    node.acceptOutput(false);
    std::vector<uint8_t> text;
    EXPECT_EQ(sdk.getUsbString(text, 3), 0x2000);
    node.acceptOutput(true);
    EXPECT_TRUE(eventually([&] { return sdk.getUsbString(text, 3) == 0; }));
}

TEST_F(UsbTest, AStalledEndpointLeavesTheTimeOutToTell) {
    bed.plugIn(withFault(FaultKind::Stall));
    {
        VeltraSDK sdk(patientMs);
        ASSERT_TRUE(sdk.connect(""));
        EXPECT_EQ(serialNumberRead(sdk), "VA-0001");
        EXPECT_EQ(serialNumberRead(sdk), "VA-0001");
    }
    VeltraSDK impatient(briefMs);
    ASSERT_TRUE(impatient.connect(""));
    std::vector<uint8_t> text;
    EXPECT_EQ(impatient.getUsbString(text, 3), 0x2000);
}

TEST_F(UsbTest, AfterAnUnplugThePollingThreadHardlyRuns) {
    UsbNode& node = bed.plugIn();
    VeltraSDK sdk(briefMs);
    ASSERT_TRUE(sdk.connect(""));
    node.unplug();
    ASSERT_TRUE(eventually([&] { return bed.failedReads() > 0; }));
    const auto start = std::chrono::steady_clock::now();
    const size_t before = bed.failedReads();
    ASSERT_TRUE(eventually([&] { return bed.failedReads() >= before + 20; }));
    // The pauses of 1, 2, 4 ... 100 ms between twenty reads, less the scheduler's early wake-ups.
    EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

} // namespace
