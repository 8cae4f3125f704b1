// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/tiny_usb/Device.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <deque>
#include <memory>
#include <string>

using namespace tiny_usb;

namespace {

std::string hex(const Bytes& bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        char digits[3];
        (void)std::snprintf(digits, sizeof digits, "%02x", unsigned{byte});
        text += digits;
    }
    return text;
}

/// Writes down what is asked of it.
class RecordingBus : public I2cBus {
public:
    Outcome write(uint8_t address, const Bytes& data, bool hold) override {
        log += "write " + hex({address}) + ": " + hex(data) + (hold ? ", held\n" : "\n");
        return outcome();
    }
    Outcome read(uint8_t address, const Bytes& registerBytes, Bytes& data, bool hold) override {
        log += "read " + hex({address}) + ": " + hex(registerBytes) + ", " +
               std::to_string(data.size()) + (hold ? ", held\n" : "\n");
        const Outcome result = outcome();
        for (size_t i = 0; result == Outcome::Done && i < data.size(); ++i) {
            data[i] = static_cast<uint8_t>(0xA0 + i);
        }
        return result;
    }
    void release() override { log += "release\n"; }

    std::string log;
    std::deque<Outcome> outcomes;

private:
    Outcome outcome() {
        if (outcomes.empty()) {
            return Outcome::Done;
        }
        const Outcome next = outcomes.front();
        outcomes.pop_front();
        return next;
    }
};

class TinyUsbTest : public testing::Test {
protected:
    usbip::Result transfer(const std::array<uint8_t, 8>& setup, const Bytes& data = {}) {
        usbip::Transfer asked;
        asked.id = 7;
        asked.endpointAddress = (setup[0] & 0x80U) != 0 ? 0x80 : 0x00;
        asked.setup = setup;
        asked.length = static_cast<size_t>(setup[6] | setup[7] << 8U);
        asked.data = data;
        device->submit(asked, {});
        EXPECT_EQ(results.size(), 1U);
        usbip::Result result = results.front();
        results.pop_front();
        EXPECT_EQ(result.id, 7U);
        return result;
    }

    /// What a host reads; nothing is a refusal.
    std::string in(uint8_t request, uint16_t value, uint16_t index, uint8_t length,
                   uint8_t type = 0xC1) {
        const usbip::Result result =
            transfer({type, request, static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8U),
                      static_cast<uint8_t>(index), static_cast<uint8_t>(index >> 8U), length, 0});
        return result.status == usbip::Status::Completed ? hex(result.data) : "stalled";
    }

    /// Whether the device takes it.
    bool out(uint8_t request, uint16_t value, uint16_t index, const Bytes& data = {},
             uint8_t type = 0x41) {
        const usbip::Result result =
            transfer({type, request, static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8U),
                      static_cast<uint8_t>(index), static_cast<uint8_t>(index >> 8U),
                      static_cast<uint8_t>(data.size()), 0},
                     data);
        EXPECT_EQ(result.actualLength,
                  result.status == usbip::Status::Completed ? data.size() : 0U);
        return result.status == usbip::Status::Completed;
    }

    std::string status() { return in(3, 0, 0, 1); }

    RecordingBus bus;
    std::deque<usbip::Result> results;
    std::unique_ptr<Device> device = std::make_unique<Device>(
        bus, "I2C bus 0", [this](usbip::Result result) { results.push_back(std::move(result)); });
};

} // namespace

TEST_F(TinyUsbTest, ItDescribesItselfAsADeviceOfAVendorsClass) {
    EXPECT_EQ(in(6, 0x0100, 0, 18, 0x80), "12010002ff000040091203000001010203"
                                          "01");
    EXPECT_EQ(in(6, 0x0100, 0, 8, 0x80), "12010002ff000040");
    EXPECT_EQ(in(6, 0x0200, 0, 255, 0x80), "0902120001010080320904000000ff000000");
    EXPECT_EQ(in(6, 0x0300, 0, 255, 0x80), "04030904");
    EXPECT_EQ(in(6, 0x0301, 0x0409, 255, 0x80), "0e03760065006c00740072006100");
    EXPECT_EQ(in(6, 0x0302, 0x0409, 6, 0x80), "140349003200");
    EXPECT_EQ(in(6, 0x0304, 0x0409, 255, 0x80), "stalled");
    EXPECT_EQ(in(6, 0x0600, 0, 10, 0x80), "stalled");
}

TEST_F(TinyUsbTest, ItTakesWhatEveryHostAsks) {
    EXPECT_TRUE(out(9, 1, 0, {}, 0x00));
    EXPECT_TRUE(out(11, 0, 0, {}, 0x01));
    EXPECT_TRUE(out(1, 0, 0x80, {}, 0x02));
    EXPECT_EQ(in(0, 0, 0, 2, 0x80), "0000");
    EXPECT_EQ(in(8, 0, 0, 1, 0x80), "01");
    EXPECT_EQ(in(10, 0, 0, 1, 0x81), "00");
    EXPECT_FALSE(out(7, 0x0100, 0, {1, 2}, 0x00));
    EXPECT_EQ(in(1, 0, 0, 1, 0xA1), "stalled");
}

TEST_F(TinyUsbTest, ItSaysWhatTheBusCanDo) {
    EXPECT_EQ(in(1, 0, 0, 4), "0100ff0e");
    EXPECT_EQ(in(0, 0x1234, 0, 2), "3412");
    EXPECT_TRUE(out(2, 10, 0));
    EXPECT_EQ(status(), "00");
    EXPECT_EQ(in(8, 0, 0, 1), "stalled");
}

TEST_F(TinyUsbTest, AWriteAloneIsATransfer) {
    EXPECT_TRUE(out(7, 0, 0x50, {0x10, 0x01, 0x02}));
    EXPECT_EQ(status(), "01");
    EXPECT_TRUE(out(7, 0, 0x48));
    EXPECT_EQ(bus.log, "write 50: 100102\nwrite 48: \n");
}

TEST_F(TinyUsbTest, AShortWriteAndItsReadAreOneTransfer) {
    EXPECT_TRUE(out(5, 0, 0x50, {0x10}));
    EXPECT_EQ(status(), "01");
    EXPECT_EQ(bus.log, "");
    EXPECT_EQ(in(6, 1, 0x50, 3), "a0a1a2");
    EXPECT_EQ(status(), "01");
    EXPECT_EQ(bus.log, "read 50: 10, 3\n");
}

TEST_F(TinyUsbTest, ALongWriteHoldsTheBusForItsRead) {
    EXPECT_TRUE(out(5, 0, 0x50, {1, 2, 3, 4, 5}));
    EXPECT_EQ(in(6, 1, 0x50, 1), "a0");
    EXPECT_EQ(bus.log, "write 50: 0102030405, held\nread 50: , 1\n");
}

TEST_F(TinyUsbTest, AReadFromAnotherAddressComesBehindTheWrite) {
    EXPECT_TRUE(out(5, 0, 0x50, {0x10}));
    EXPECT_EQ(in(6, 1, 0x51, 1), "a0");
    EXPECT_EQ(bus.log, "write 50: 10, held\nread 51: , 1\n");
}

TEST_F(TinyUsbTest, MessagesInTheMiddleHoldTheBus) {
    EXPECT_TRUE(out(5, 0, 0x50, {0x10}));
    EXPECT_TRUE(out(4, 0, 0x50, {0x11}));
    EXPECT_EQ(in(4, 1, 0x50, 1), "a0");
    EXPECT_TRUE(out(6, 0, 0x50, {0x12}));
    EXPECT_EQ(bus.log,
              "write 50: 10, held\nwrite 50: 11, held\nread 50: , 1, held\nwrite 50: 12\n");
}

TEST_F(TinyUsbTest, AMissingTargetIsToldInTheStatus) {
    bus.outcomes = {Outcome::NotAcknowledged, Outcome::NotAcknowledged};
    EXPECT_EQ(in(7, 1, 0x20, 2), "ffff") << "a refusal would be taken for a broken device";
    EXPECT_EQ(status(), "02");
    EXPECT_TRUE(out(7, 0, 0x20));
    EXPECT_EQ(status(), "02");
}

TEST_F(TinyUsbTest, WhatElseFailsIsARefusal) {
    bus.outcomes = {Outcome::Failed, Outcome::Failed};
    EXPECT_FALSE(out(7, 0, 0x50, {1}));
    EXPECT_EQ(in(7, 1, 0x50, 1), "stalled");
    EXPECT_TRUE(out(7, 0, 0x50, {1}));
    EXPECT_EQ(status(), "01");
}

TEST_F(TinyUsbTest, AFailureInTheMiddleReleasesTheBus) {
    bus.outcomes = {Outcome::Done, Outcome::Failed};
    EXPECT_TRUE(out(5, 0, 0x50, {1, 2, 3, 4, 5}));
    EXPECT_EQ(in(6, 1, 0x50, 1), "stalled");
    EXPECT_EQ(bus.log, "write 50: 0102030405, held\nread 50: , 1\nrelease\n");
}

TEST_F(TinyUsbTest, AFailureOfAWriteThatWasHeldBackReleasesTheBus) {
    bus.outcomes = {Outcome::Done, Outcome::Failed};
    EXPECT_TRUE(out(5, 0, 0x50, {1, 2, 3, 4, 5}));
    EXPECT_TRUE(out(5, 0, 0x50, {0x10}));
    EXPECT_EQ(in(6, 1, 0x51, 1), "stalled");
    EXPECT_EQ(bus.log, "write 50: 0102030405, held\nwrite 50: 10, held\nrelease\n");
}

TEST_F(TinyUsbTest, PulledOutInTheMiddleItReleasesTheBus) {
    EXPECT_TRUE(out(5, 0, 0x50, {1, 2, 3, 4, 5}));
    device.reset();
    EXPECT_EQ(bus.log, "write 50: 0102030405, held\nrelease\n");
}

TEST_F(TinyUsbTest, AWriteWhoseReadNeverComesDoesNotReachTheBus) {
    EXPECT_TRUE(out(5, 0, 0x50, {0x10}));
    EXPECT_TRUE(out(7, 0, 0x48, {0x01}));
    EXPECT_EQ(bus.log, "write 48: 01\n");
}

TEST_F(TinyUsbTest, WhatTheBusCannotDoIsARefusal) {
    EXPECT_FALSE(out(7, 0x0010, 0x50, {1})) << "ten bits";
    EXPECT_EQ(in(7, 0x0401, 0x50, 1), "stalled") << "a length that the target tells";
    EXPECT_FALSE(out(7, 0, 0x80, {1})) << "no address";
    EXPECT_EQ(in(7, 1, 0x50, 0), "stalled") << "a read of nothing";
    EXPECT_EQ(in(7, 0, 0x50, 1), "stalled") << "a write that reads";
    EXPECT_FALSE(out(7, 1, 0x50, {1})) << "a read that writes";
    EXPECT_EQ(bus.log, "");
}

TEST_F(TinyUsbTest, ItHasNoOtherEndpoint) {
    usbip::Transfer asked;
    asked.endpointAddress = 0x81;
    asked.length = 8;
    device->submit(asked, {});
    EXPECT_EQ(results.front().status, usbip::Status::Stalled);
}
