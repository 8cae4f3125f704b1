// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/usbip.hpp"

#include "usbip/Connection.hpp"
#include "usbip/Messages.hpp"
#include "usbip/Protocol.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

using namespace std::chrono_literals;
using namespace usbip;
using virtual_adapter::AdapterSettings;
using virtual_adapter::exportedAdapter;
using virtual_adapter::FaultKind;
using virtual_adapter::usbIdentities;

namespace {

const Time start{};

const Bytes askForString3{0x17, 0x00, 0x05, 0x00, 0x07, 0x04, 0x03};
const Bytes enterBootMode{0x13, 0x00, 0x05, 0x00, 0x02, 0x04};

/// A host that has the adapter and has configured it.
class Host {
public:
    explicit Host(ExportedDevice& adapter) : connection(adapter) {
        EXPECT_EQ(say(importRequest()).size(), 320U);
        EXPECT_EQ(say(submit(1, towardsDevice, 0, 0, selectConfiguration)),
                  returnSubmit(1, {1, Status::Completed, 0, {}}));
    }

    /// Sends bytes and returns what came back.
    Bytes say(const Bytes& bytes) {
        connection.receive(bytes.data(), bytes.size(), start);
        return std::exchange(connection.output(), {});
    }

    Connection connection;
};

TEST(UsbIpWay, TheAdapterIsDescribedByItsIdentity) {
    AdapterSettings settings;
    settings.identity = usbIdentities[1];
    const Description description = exportedAdapter(settings).description;
    EXPECT_EQ(description.speed, Speed::High);
    EXPECT_EQ(description.vendorId, usbIdentities[1].vendorId);
    EXPECT_EQ(description.productId, usbIdentities[1].productId);
    EXPECT_EQ(description.deviceRelease, 0x0100);
    EXPECT_EQ(description.configuration, 1);
    EXPECT_EQ(description.configurationCount, 1);
    ASSERT_EQ(description.interfaces.size(), 1U);
    EXPECT_EQ(description.interfaces[0].code, 3) << "HID";
    EXPECT_EQ(exportedAdapter({}).description.speed, Speed::Full);
}

TEST(UsbIpWay, AResponseEndsTheReadThatWaitsForIt) {
    ExportedDevice adapter = exportedAdapter({});
    Host host(adapter);
    EXPECT_TRUE(host.say(submitRead(2)).empty()) << "nothing to read yet";
    Bytes response{0x3B, 0x00, 0x05, 0x00, 0x07, 0x04, 0x00, 0x00,
                   0x08, 'V',  'A',  '-',  '0',  '0',  '0',  '1'};
    response.resize(64);
    EXPECT_EQ(host.say(submitWrite(3, askForString3)),
              returnSubmit(3, {3, Status::Completed, askForString3.size(), {}}) +
                  returnSubmit(2, {2, Status::Completed, 64, response}));
}

TEST(UsbIpWay, TheSetupPacketReachesTheControlEndpoint) {
    ExportedDevice adapter = exportedAdapter({});
    Host host(adapter);
    const Bytes reply = host.say(submit(2, towardsHost, 0, 18, getDeviceDescriptor));
    ASSERT_EQ(reply.size(), 48U + 18U);
    EXPECT_EQ(Bytes(reply.begin() + 48, reply.begin() + 52), (Bytes{18, 1, 0x00, 0x02}));
}

TEST(UsbIpWay, ATransferTowardsTheDeviceIsNeverAnsweredWithData) {
    ExportedDevice adapter = exportedAdapter({});
    Host host(adapter);
    EXPECT_EQ(host.say(submit(2, towardsDevice, 0, 0, getDeviceDescriptor)).size(), 48U);
}

TEST(UsbIpWay, WhatTheAdapterRefusesIsAStall) {
    ExportedDevice adapter = exportedAdapter({});
    Host host(adapter);
    EXPECT_EQ(host.say(submit(2, towardsHost, 2, 64)),
              returnSubmit(2, {2, Status::Stalled, 0, {}}));
}

TEST(UsbIpWay, AReadThatIsTooShortForAReportOverflows) {
    ExportedDevice adapter = exportedAdapter({});
    Host host(adapter);
    host.say(submitWrite(2, askForString3));
    EXPECT_EQ(host.say(submit(3, towardsHost, 1, 63)),
              returnSubmit(3, {3, Status::Overflowed, 0, {}}));
}

TEST(UsbIpWay, APendingReadIsTakenBack) {
    ExportedDevice adapter = exportedAdapter({});
    Host host(adapter);
    host.say(submitRead(2));
    EXPECT_EQ(host.say(unlink(3, 2)), returnUnlink(3, true));
    EXPECT_EQ(host.say(unlink(4, 2)), returnUnlink(4, false));
}

TEST(UsbIpWay, BootModeEndsTheConnection) {
    ExportedDevice adapter = exportedAdapter({});
    Host host(adapter);
    host.say(submitRead(2));
    const Bytes replies = host.say(submitWrite(3, enterBootMode));
    ASSERT_EQ(replies.size(), 96U);
    EXPECT_EQ(Bytes(replies.begin() + 48, replies.end()),
              returnSubmit(2, {2, Status::Unplugged, 0, {}}));
    EXPECT_TRUE(host.connection.isOver());
}

TEST(UsbIpWay, BootModeThatHadToWaitEndsTheConnectionToo) {
    AdapterSettings settings;
    settings.faults = {{FaultKind::LateResponse, {}}};
    settings.faultDelay = 40ms;
    ExportedDevice adapter = exportedAdapter(settings);
    Host host(adapter);
    for (uint8_t sequence : {uint8_t{2}, uint8_t{3}}) {
        host.say(submitWrite(sequence, askForString3));
        host.say(submitRead(4));
    }
    // The late response holds the others back until the adapter takes no more.
    while (!host.say(submitWrite(5, askForString3)).empty()) {
    }
    EXPECT_TRUE(host.say(submitWrite(6, enterBootMode)).empty());
    EXPECT_TRUE(host.say(submitRead(7)).empty());
    EXPECT_TRUE(host.say(submitRead(8)).empty());
    EXPECT_FALSE(host.connection.isOver());
    EXPECT_EQ(host.connection.nextDue(), start + 40ms);
    host.connection.serve(start + 40ms);
    // One more makes room for the last request; it takes its time now.
    ASSERT_TRUE(host.connection.nextDue().has_value());
    host.connection.serve(*host.connection.nextDue());
    EXPECT_TRUE(host.connection.isOver());
}

TEST(UsbIpWay, TheNextHostGetsAFreshAdapter) {
    ExportedDevice adapter = exportedAdapter({});
    {
        Host host(adapter);
        host.say(submitWrite(2, enterBootMode));
        EXPECT_TRUE(host.connection.isOver());
    }
    const Host host(adapter);
    EXPECT_FALSE(host.connection.isOver());
}

TEST(UsbIpWay, TheDeviceInUseIsTold) {
    const auto inUse = std::make_shared<virtual_adapter::UsbDevice*>(nullptr);
    EXPECT_EQ(virtual_adapter::tellDevice(*inUse, "reset", {}), "the adapter is not plugged in");
    ExportedDevice adapter = exportedAdapter(AdapterSettings(), inUse);
    {
        const Host host(adapter);
        ASSERT_NE(*inUse, nullptr);
        EXPECT_EQ(virtual_adapter::tellDevice(*inUse, "plug", {}),
                  "the kernel plugs in: start attach again");
        EXPECT_EQ(virtual_adapter::tellDevice(*inUse, "gpio drive 4 1", {}), "");
        EXPECT_EQ(virtual_adapter::tellDevice(*inUse, "gpio drive 9 1", {}),
                  "'9' is no pin: expected 0 to 7");
        EXPECT_EQ(virtual_adapter::tellDevice(*inUse, "reset", {}), "");
        EXPECT_TRUE((*inUse)->isOnBus());
        EXPECT_EQ(virtual_adapter::tellDevice(*inUse, "unplug", {}), "");
        EXPECT_FALSE((*inUse)->isOnBus());
    }
    EXPECT_EQ(*inUse, nullptr);
}

} // namespace
