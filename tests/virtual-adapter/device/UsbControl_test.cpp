// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/UsbControl.hpp"

#include <gtest/gtest.h>

using namespace virtual_adapter;

namespace {

using Reply = std::optional<Bytes>;
using SetupBytes = std::array<uint8_t, 8>;

const UsbIdentity fullSpeed{fullSpeedVariant, 0x1209,   0x0001,
                            0x0100,           "Veltra", std::chrono::milliseconds(1)};
const UsbIdentity highSpeed{highSpeedVariant, 0x1209,   0x0002,
                            0x0100,           "Veltra", std::chrono::microseconds(125)};
const Reply stall;
const Reply accepted = Bytes{};

class UsbControlTest : public testing::Test {
protected:
    Reply handle(const SetupBytes& setup, const Bytes& hostData = {}) {
        return ask(control, setup, hostData);
    }

    Reply ask(UsbControl& endpoint, const SetupBytes& setup, const Bytes& hostData = {}) {
        return endpoint.handle(SetupPacket::fromBytes(setup), hostData, [&](const Bytes& report) {
            reports.push_back(report);
            return takesReports;
        });
    }

    void configure() { EXPECT_EQ(handle({0x00, 0x09, 1, 0, 0, 0, 0, 0}), accepted); }

    UsbControl control{fullSpeed, "VA-1"};
    std::vector<Bytes> reports;
    bool takesReports = true;
};

TEST_F(UsbControlTest, ASetupPacketIsLittleEndian) {
    const SetupPacket setup =
        SetupPacket::fromBytes({0x81, 0x06, 0x01, 0x22, 0x03, 0x04, 0x05, 0x06});
    EXPECT_EQ(setup.requestType, 0x81);
    EXPECT_EQ(setup.request, 0x06);
    EXPECT_EQ(setup.value, 0x2201);
    EXPECT_EQ(setup.index, 0x0403);
    EXPECT_EQ(setup.length, 0x0605);
    EXPECT_TRUE(setup.isDeviceToHost());
}

TEST_F(UsbControlTest, ADescriptorIsCutToTheLengthThatTheHostAsksFor) {
    EXPECT_EQ(handle({0x80, 0x06, 0x00, 0x01, 0, 0, 8, 0}),
              Reply(Bytes{18, 1, 0x00, 0x02, 0, 0, 0, 64}));
    EXPECT_EQ(handle({0x80, 0x06, 0x00, 0x01, 0, 0, 0xFF, 0x0F}), deviceDescriptor(fullSpeed));
    EXPECT_EQ(handle({0x80, 0x06, 0x00, 0x02, 0, 0, 9, 0})->size(), 9U);
}

TEST_F(UsbControlTest, EveryDescriptorThatExistsIsHandedOut) {
    EXPECT_EQ(handle({0x80, 0x06, 0x00, 0x02, 0, 0, 0xFF, 0}), configurationDescriptor(fullSpeed));
    EXPECT_EQ(handle({0x80, 0x06, 0x03, 0x03, 0x09, 0x04, 0xFF, 0}), textDescriptor("VA-1"));
    EXPECT_EQ(handle({0x81, 0x06, 0x00, 0x21, 0, 0, 0xFF, 0}), hidDescriptor(fullSpeed));
    EXPECT_EQ(handle({0x81, 0x06, 0x00, 0x22, 0, 0, 0xFF, 0}), reportDescriptor(fullSpeed));

    UsbControl fast{highSpeed, "VA-1"};
    EXPECT_EQ(ask(fast, {0x80, 0x06, 0x00, 0x06, 0, 0, 10, 0}),
              deviceQualifierDescriptor(highSpeed));
    EXPECT_EQ(ask(fast, {0x80, 0x06, 0x00, 0x07, 0, 0, 0xFF, 0}),
              otherSpeedConfigurationDescriptor(highSpeed));
}

TEST_F(UsbControlTest, ADescriptorThatDoesNotExistStalls) {
    EXPECT_EQ(handle({0x80, 0x06, 0x01, 0x02, 0, 0, 0xFF, 0}), stall) << "second configuration";
    EXPECT_EQ(handle({0x80, 0x06, 0x04, 0x03, 0, 0, 0xFF, 0}), stall) << "fourth string";
    EXPECT_EQ(handle({0x80, 0x06, 0x00, 0x06, 0, 0, 10, 0}), stall) << "qualifier at full speed";
    EXPECT_EQ(handle({0x80, 0x06, 0x00, 0x07, 0, 0, 0xFF, 0}), stall) << "other speed";
    EXPECT_EQ(handle({0x80, 0x06, 0x00, 0x0F, 0, 0, 0xFF, 0}), stall) << "binary object store";
    EXPECT_EQ(handle({0x81, 0x06, 0x00, 0x22, 1, 0, 0xFF, 0}), stall) << "second interface";
    EXPECT_EQ(handle({0x81, 0x06, 0x00, 0x23, 0, 0, 0xFF, 0}), stall) << "physical descriptor";
}

TEST_F(UsbControlTest, OnlyTheOneConfigurationCanBeSelected) {
    EXPECT_FALSE(control.isConfigured());
    EXPECT_EQ(handle({0x80, 0x08, 0, 0, 0, 0, 1, 0}), Reply(Bytes{0}));
    EXPECT_EQ(handle({0x00, 0x09, 2, 0, 0, 0, 0, 0}), stall);
    EXPECT_FALSE(control.isConfigured());
    EXPECT_EQ(handle({0x00, 0x09, 1, 0, 0, 0, 0, 0}), accepted);
    EXPECT_TRUE(control.isConfigured());
    EXPECT_EQ(handle({0x80, 0x08, 0, 0, 0, 0, 1, 0}), Reply(Bytes{1}));
    EXPECT_EQ(handle({0x00, 0x09, 0, 0, 0, 0, 0, 0}), accepted);
    EXPECT_FALSE(control.isConfigured());
}

TEST_F(UsbControlTest, TheInterfaceHasOneSettingOnceItIsConfigured) {
    EXPECT_EQ(handle({0x81, 0x0A, 0, 0, 0, 0, 1, 0}), stall);
    EXPECT_EQ(handle({0x01, 0x0B, 0, 0, 0, 0, 0, 0}), stall);
    configure();
    EXPECT_EQ(handle({0x81, 0x0A, 0, 0, 0, 0, 1, 0}), Reply(Bytes{0}));
    EXPECT_EQ(handle({0x01, 0x0B, 0, 0, 0, 0, 0, 0}), accepted);
    EXPECT_EQ(handle({0x01, 0x0B, 1, 0, 0, 0, 0, 0}), stall) << "another setting";
    EXPECT_EQ(handle({0x01, 0x0B, 0, 0, 1, 0, 0, 0}), stall) << "another interface";
}

TEST_F(UsbControlTest, AnEndpointIsHaltedUntilTheHaltIsCleared) {
    configure();
    EXPECT_EQ(handle({0x02, 0x03, 0, 0, 0x81, 0, 0, 0}), accepted);
    EXPECT_TRUE(control.isHalted(0x81));
    EXPECT_FALSE(control.isHalted(0x01));
    EXPECT_EQ(handle({0x82, 0x00, 0, 0, 0x81, 0, 2, 0}), Reply(Bytes{1, 0}));
    EXPECT_EQ(handle({0x82, 0x00, 0, 0, 0x01, 0, 2, 0}), Reply(Bytes{0, 0}));
    EXPECT_EQ(handle({0x02, 0x01, 0, 0, 0x81, 0, 0, 0}), accepted);
    EXPECT_FALSE(control.isHalted(0x81));
}

TEST_F(UsbControlTest, SelectingTheConfigurationClearsEveryHalt) {
    configure();
    handle({0x02, 0x03, 0, 0, 0x01, 0, 0, 0});
    EXPECT_TRUE(control.isHalted(0x01));
    configure();
    EXPECT_FALSE(control.isHalted(0x01));
}

TEST_F(UsbControlTest, AnEndpointOrFeatureThatDoesNotExistStalls) {
    configure();
    EXPECT_EQ(handle({0x02, 0x03, 0, 0, 0x82, 0, 0, 0}), stall);
    EXPECT_EQ(handle({0x02, 0x03, 0, 0, 0x81, 0x01, 0, 0}), stall);
    EXPECT_EQ(handle({0x02, 0x03, 1, 0, 0x81, 0, 0, 0}), stall);
    EXPECT_EQ(handle({0x82, 0x00, 0, 0, 0x02, 0, 2, 0}), stall);
    EXPECT_EQ(handle({0x82, 0x00, 0, 0, 0x00, 0, 2, 0}), Reply(Bytes{0, 0})) << "control endpoint";
}

TEST_F(UsbControlTest, BeforeTheConfigurationThereIsOnlyTheControlEndpoint) {
    EXPECT_EQ(handle({0x82, 0x00, 0, 0, 0x81, 0, 2, 0}), stall);
    EXPECT_EQ(handle({0x02, 0x03, 0, 0, 0x81, 0, 0, 0}), stall);
    EXPECT_EQ(handle({0x02, 0x01, 0, 0, 0x81, 0, 0, 0}), stall);
    EXPECT_FALSE(control.isHalted(0x81));
    EXPECT_EQ(handle({0x82, 0x00, 0, 0, 0x00, 0, 2, 0}), Reply(Bytes{0, 0}));
}

/// Every request to the interface but those for its descriptors, with interface @p number.
std::vector<SetupBytes> requestsToInterface(uint8_t number) {
    return {
        {0x81, 0x00, 0, 0, number, 0, 2, 0},    // GET_STATUS
        {0x81, 0x0A, 0, 0, number, 0, 1, 0},    // GET_INTERFACE
        {0x01, 0x0B, 0, 0, number, 0, 0, 0},    // SET_INTERFACE
        {0xA1, 0x01, 0, 1, number, 0, 0x40, 0}, // GET_REPORT
        {0xA1, 0x02, 0, 0, number, 0, 1, 0},    // GET_IDLE
        {0x21, 0x09, 0, 2, number, 0, 0, 0},    // SET_REPORT
        {0x21, 0x0A, 0, 4, number, 0, 0, 0},    // SET_IDLE
    };
}

TEST_F(UsbControlTest, TheInterfaceTakesRequestsOnceItIsConfigured) {
    for (const SetupBytes& request : requestsToInterface(0)) {
        EXPECT_EQ(handle(request), stall) << testing::PrintToString(request);
    }
    EXPECT_TRUE(reports.empty());
    configure();
    EXPECT_EQ(handle({0xA1, 0x02, 0, 0, 0, 0, 1, 0}), Reply(Bytes{0})) << "the idle rate is kept";
    for (const SetupBytes& request : requestsToInterface(0)) {
        EXPECT_NE(handle(request), stall) << testing::PrintToString(request);
    }
}

TEST_F(UsbControlTest, AnInterfaceThatDoesNotExistStalls) {
    configure();
    for (const SetupBytes& request : requestsToInterface(1)) {
        EXPECT_EQ(handle(request), stall) << testing::PrintToString(request);
    }
    EXPECT_TRUE(reports.empty());
    EXPECT_EQ(handle({0xA1, 0x02, 0, 0, 0, 0, 1, 0}), Reply(Bytes{0})) << "the idle rate is kept";
}

TEST_F(UsbControlTest, ThereIsNothingToReportOfDeviceAndInterface) {
    configure();
    EXPECT_EQ(handle({0x80, 0x00, 0, 0, 0, 0, 2, 0}), Reply(Bytes{0, 0}));
    EXPECT_EQ(handle({0x81, 0x00, 0, 0, 0, 0, 2, 0}), Reply(Bytes{0, 0}));
    EXPECT_EQ(handle({0x00, 0x05, 7, 0, 0, 0, 0, 0}), accepted) << "SET_ADDRESS";
}

TEST_F(UsbControlTest, TheIdleRateIsKept) {
    configure();
    EXPECT_EQ(handle({0x21, 0x0A, 0, 0x7D, 0, 0, 0, 0}), accepted);
    EXPECT_EQ(handle({0xA1, 0x02, 0, 0, 0, 0, 1, 0}), Reply(Bytes{0x7D}));
}

TEST_F(UsbControlTest, AnOutputReportMayComeOverTheControlEndpoint) {
    configure();
    EXPECT_EQ(handle({0x21, 0x09, 0, 2, 0, 0, 3, 0}, {1, 2, 3}), accepted);
    EXPECT_EQ(reports, (std::vector<Bytes>{{1, 2, 3}}));
    takesReports = false;
    EXPECT_EQ(handle({0x21, 0x09, 0, 2, 0, 0, 1, 0}, {4}), stall);
    EXPECT_EQ(handle({0x21, 0x09, 0, 3, 0, 0, 1, 0}, {5}), stall) << "feature report";
    EXPECT_EQ(reports.size(), 2U);
}

TEST_F(UsbControlTest, AskedForAnInputReportTheDeviceSendsAnEmptyPacket) {
    configure();
    EXPECT_EQ(handle({0xA1, 0x01, 0, 1, 0, 0, 0x40, 0}), Reply(Bytes(64)));
    EXPECT_EQ(handle({0xA1, 0x01, 0, 3, 0, 0, 0x40, 0}), stall) << "feature report";
}

TEST_F(UsbControlTest, AnUnknownRequestStalls) {
    configure();
    EXPECT_EQ(handle({0xC0, 0x01, 0, 0, 0, 0, 0, 0}), stall) << "vendor request";
    EXPECT_EQ(handle({0x21, 0x0B, 0, 0, 0, 0, 0, 0}), stall) << "SET_PROTOCOL without a boot "
                                                                "interface";
    EXPECT_EQ(handle({0x00, 0x03, 1, 0, 0, 0, 0, 0}), stall) << "remote wake-up";
}

} // namespace
