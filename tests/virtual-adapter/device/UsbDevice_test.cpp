// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/UsbDevice.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace virtual_adapter;

namespace {

const UsbDevice::Time start{};
const UsbIdentity fullSpeed{fullSpeedVariant, 0x1209,   0x0001,
                            0x0100,           "Veltra", std::chrono::milliseconds(1)};
const Bytes askForString3{0x17, 0x00, 0x05, 0x00, 0x07, 0x04, 0x03};
const Bytes enterBootMode{0x13, 0x00, 0x05, 0x00, 0x02, 0x04};

Bytes string3Report() {
    Bytes report{0x33, 0x00, 0x05, 0x00, 0x07, 0x04, 0x00, 0x00, 0x06, 'V', 'A', '-', '0', '1'};
    report.resize(64);
    return report;
}

AdapterSettings settingsWith(const std::vector<Fault>& faults) {
    AdapterSettings settings;
    settings.identity = fullSpeed;
    settings.serialNumber = "VA-01";
    settings.faults = faults;
    return settings;
}

class UsbDeviceTest : public testing::Test {
protected:
    explicit UsbDeviceTest(const std::vector<Fault>& faults = {})
        : device(settingsWith(faults),
                 [this](UsbResult result) { results.push_back(std::move(result)); }) {
        control(0, {0x00, 0x09, 1, 0, 0, 0, 0, 0});
        results.clear();
    }

    void control(uint64_t id, const std::array<uint8_t, 8>& setup, size_t length = 0) {
        device.submit({id,
                       setup[0] >= 0x80 ? uint8_t{0x80} : uint8_t{0x00},
                       SetupPacket::fromBytes(setup),
                       length,
                       {}},
                      start);
    }

    void read(uint64_t id, size_t length = 64) { device.submit({id, 0x81, {}, length, {}}, start); }

    void write(uint64_t id, const Bytes& report) {
        device.submit({id, 0x01, {}, 0, report}, start);
    }

    /// Identifiers and outcomes, in order.
    [[nodiscard]] std::vector<std::pair<uint64_t, UsbStatus>> outcomes() const {
        std::vector<std::pair<uint64_t, UsbStatus>> pairs;
        for (const UsbResult& result : results) {
            pairs.emplace_back(result.id, result.status);
        }
        return pairs;
    }

    using Outcomes = std::vector<std::pair<uint64_t, UsbStatus>>;

    UsbDevice device;
    std::vector<UsbResult> results;
};

TEST_F(UsbDeviceTest, ARequestIsAnsweredToTheReadThatWaitsForIt) {
    read(1);
    EXPECT_TRUE(results.empty());
    write(2, askForString3);
    ASSERT_EQ(outcomes(), (Outcomes{{2, UsbStatus::Completed}, {1, UsbStatus::Completed}}));
    EXPECT_EQ(results[0].actualLength, askForString3.size());
    EXPECT_EQ(results[1].actualLength, 64U);
    EXPECT_EQ(results[1].data, string3Report());
}

TEST_F(UsbDeviceTest, AReadEndsAtOnceWhenAReportIsWaiting) {
    write(1, askForString3);
    read(2);
    ASSERT_EQ(outcomes(), (Outcomes{{1, UsbStatus::Completed}, {2, UsbStatus::Completed}}));
    EXPECT_EQ(results[1].data, string3Report());
}

TEST_F(UsbDeviceTest, ReadsAreServedInTheOrderInWhichTheyCame) {
    read(1);
    read(2);
    write(3, askForString3);
    write(4, askForString3);
    EXPECT_EQ(outcomes(), (Outcomes{{3, UsbStatus::Completed},
                                    {1, UsbStatus::Completed},
                                    {4, UsbStatus::Completed},
                                    {2, UsbStatus::Completed}}));
}

TEST_F(UsbDeviceTest, AReadThatTakesLessThanAReportOverflows) {
    read(1, 63);
    write(2, askForString3);
    EXPECT_EQ(outcomes(), (Outcomes{{2, UsbStatus::Completed}, {1, UsbStatus::Overflowed}}));
}

TEST_F(UsbDeviceTest, ACancelledTransferHasNoResult) {
    read(1);
    EXPECT_TRUE(device.cancel(1));
    EXPECT_FALSE(device.cancel(1));
    write(2, askForString3);
    EXPECT_EQ(outcomes(), (Outcomes{{2, UsbStatus::Completed}}));
}

TEST_F(UsbDeviceTest, AControlTransferEndsAtOnce) {
    control(1, {0x80, 0x06, 0x03, 0x03, 0x09, 0x04, 0xFF, 0}, 255);
    ASSERT_EQ(outcomes(), (Outcomes{{1, UsbStatus::Completed}}));
    EXPECT_EQ(results[0].data, textDescriptor("VA-01"));
    EXPECT_EQ(results[0].actualLength, 12U);
}

TEST_F(UsbDeviceTest, AControlTransferNeverExceedsTheHostsBuffer) {
    control(1, {0x80, 0x06, 0x03, 0x03, 0x09, 0x04, 0xFF, 0}, 4);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].data.size(), 4U);
}

TEST_F(UsbDeviceTest, ARefusedRequestStalls) {
    control(1, {0xC0, 0x01, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(outcomes(), (Outcomes{{1, UsbStatus::Stalled}}));
}

TEST_F(UsbDeviceTest, AnEndpointThatDoesNotExistStalls) {
    device.submit({1, 0x82, {}, 64, {}}, start);
    device.submit({2, 0x02, {}, 0, {1}}, start);
    EXPECT_EQ(outcomes(), (Outcomes{{1, UsbStatus::Stalled}, {2, UsbStatus::Stalled}}));
}

TEST_F(UsbDeviceTest, AnUnconfiguredDeviceHasNoInterruptEndpoints) {
    control(1, {0x00, 0x09, 0, 0, 0, 0, 0, 0});
    read(2);
    write(3, askForString3);
    EXPECT_EQ(
        outcomes(),
        (Outcomes{{1, UsbStatus::Completed}, {2, UsbStatus::Stalled}, {3, UsbStatus::Stalled}}));
}

TEST_F(UsbDeviceTest, AHaltedEndpointStalls) {
    control(1, {0x02, 0x03, 0, 0, 0x01, 0, 0, 0});
    write(2, askForString3);
    control(3, {0x02, 0x01, 0, 0, 0x01, 0, 0, 0});
    write(4, askForString3);
    EXPECT_EQ(outcomes(), (Outcomes{{1, UsbStatus::Completed},
                                    {2, UsbStatus::Stalled},
                                    {3, UsbStatus::Completed},
                                    {4, UsbStatus::Completed}}));
}

TEST_F(UsbDeviceTest, HaltingAnEndpointEndsWhatIsPendingThere) {
    device.acceptOutput(false, start);
    read(1);
    write(2, askForString3);
    control(3, {0x02, 0x03, 0, 0, 0x81, 0, 0, 0});
    EXPECT_EQ(outcomes(), (Outcomes{{3, UsbStatus::Completed}, {1, UsbStatus::Stalled}}));
    results.clear();
    control(4, {0x02, 0x03, 0, 0, 0x01, 0, 0, 0});
    EXPECT_EQ(outcomes(), (Outcomes{{4, UsbStatus::Completed}, {2, UsbStatus::Stalled}}));
}

TEST_F(UsbDeviceTest, LeavingTheConfigurationEndsWhatIsPending) {
    device.acceptOutput(false, start);
    read(1);
    write(2, askForString3);
    control(3, {0x00, 0x09, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(
        outcomes(),
        (Outcomes{{3, UsbStatus::Completed}, {1, UsbStatus::Stalled}, {2, UsbStatus::Stalled}}));
    device.acceptOutput(true, start);
    EXPECT_EQ(results.size(), 3U);
}

TEST_F(UsbDeviceTest, SelectingTheConfigurationAgainLeavesPendingTransfersAlone) {
    read(1);
    control(2, {0x00, 0x09, 1, 0, 0, 0, 0, 0});
    write(3, askForString3);
    EXPECT_EQ(outcomes(), (Outcomes{{2, UsbStatus::Completed},
                                    {3, UsbStatus::Completed},
                                    {1, UsbStatus::Completed}}));
}

TEST_F(UsbDeviceTest, OutputWaitsWhileItIsNotAccepted) {
    device.acceptOutput(false, start);
    write(1, askForString3);
    write(2, askForString3);
    EXPECT_TRUE(results.empty());
    EXPECT_TRUE(device.cancel(2));
    device.acceptOutput(true, start);
    EXPECT_EQ(outcomes(), (Outcomes{{1, UsbStatus::Completed}}));
}

TEST_F(UsbDeviceTest, OutputWaitsWhileTheHostReadsNoAnswers) {
    // A host that only writes must not fill the adapter's memory.
    constexpr uint64_t writes = 5000;
    for (uint64_t id = 1; id <= writes; ++id) {
        write(id, askForString3);
    }
    const size_t taken = results.size();
    EXPECT_LT(taken, writes);
    read(writes + 1);
    EXPECT_EQ(results.size(), taken + 2) << "the answer and the next write";
}

TEST_F(UsbDeviceTest, AReportSetByControlTransferStallsWhileTheHostReadsNoAnswers) {
    const SetupPacket setReport = SetupPacket::fromBytes({0x21, 0x09, 0, 2, 0, 0, 7, 0});
    constexpr uint64_t writes = 5000;
    for (uint64_t id = 1; id <= writes; ++id) {
        device.submit({id, 0x00, setReport, 0, askForString3}, start);
    }
    EXPECT_EQ(outcomes().front(), (Outcomes::value_type{1, UsbStatus::Completed}));
    EXPECT_EQ(outcomes().back(), (Outcomes::value_type{writes, UsbStatus::Stalled}));
    read(writes + 1);
    device.submit({writes + 2, 0x00, setReport, 0, askForString3}, start);
    EXPECT_EQ(outcomes().back(), (Outcomes::value_type{writes + 2, UsbStatus::Completed}));
}

TEST_F(UsbDeviceTest, UnpluggingEndsEveryTransfer) {
    device.acceptOutput(false, start);
    read(1);
    write(2, askForString3);
    device.unplug();
    control(3, {0x80, 0x06, 0x00, 0x01, 0, 0, 18, 0}, 18);
    EXPECT_EQ(outcomes(), (Outcomes{{1, UsbStatus::Unplugged},
                                    {2, UsbStatus::Unplugged},
                                    {3, UsbStatus::Unplugged}}));
    EXPECT_FALSE(device.isOnBus());
}

TEST_F(UsbDeviceTest, EnteringBootModeLeavesTheBus) {
    read(1);
    write(2, enterBootMode);
    EXPECT_EQ(outcomes(), (Outcomes{{2, UsbStatus::Completed}, {1, UsbStatus::Unplugged}}));
    EXPECT_FALSE(device.isOnBus());
}

class FaultyUsbDeviceTest : public UsbDeviceTest {
protected:
    explicit FaultyUsbDeviceTest(FaultKind kind) : UsbDeviceTest({{kind, {}}}) {
        write(1, askForString3);
        write(2, askForString3);
        read(3);
        read(4);
        results.clear();
    }
};

class LateUsbDeviceTest : public FaultyUsbDeviceTest {
protected:
    LateUsbDeviceTest() : FaultyUsbDeviceTest(FaultKind::LateResponse) {}
};

TEST_F(LateUsbDeviceTest, ALateReportIsServedWhenItsTimeHasCome) {
    EXPECT_EQ(device.nextDue(), std::nullopt);
    read(5);
    write(6, askForString3);
    EXPECT_EQ(device.nextDue(), start + 1500ms);
    device.serve(start + 1499ms);
    EXPECT_EQ(outcomes(), (Outcomes{{6, UsbStatus::Completed}}));
    device.serve(start + 1500ms);
    EXPECT_EQ(outcomes(), (Outcomes{{6, UsbStatus::Completed}, {5, UsbStatus::Completed}}));
    EXPECT_EQ(device.nextDue(), std::nullopt);
}

class StallingUsbDeviceTest : public FaultyUsbDeviceTest {
protected:
    StallingUsbDeviceTest() : FaultyUsbDeviceTest(FaultKind::Stall) {}
};

TEST_F(StallingUsbDeviceTest, ARefusedReportStalls) {
    write(5, askForString3);
    EXPECT_EQ(outcomes(), (Outcomes{{5, UsbStatus::Stalled}}));
    EXPECT_TRUE(device.isOnBus());
}

class DisappearingUsbDeviceTest : public FaultyUsbDeviceTest {
protected:
    DisappearingUsbDeviceTest() : FaultyUsbDeviceTest(FaultKind::Unplug) {}
};

TEST_F(DisappearingUsbDeviceTest, TheReportThatPullsItOutIsNotTaken) {
    read(5);
    write(6, askForString3);
    EXPECT_EQ(outcomes(), (Outcomes{{6, UsbStatus::Unplugged}, {5, UsbStatus::Unplugged}}));
    EXPECT_FALSE(device.isOnBus());
}

} // namespace
