// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/AdapterLink.hpp"

#include "virtual-adapter/requests.hpp"
#include "virtual-adapter/settings.hpp"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using virtual_adapter::AdapterLink;
using virtual_adapter::AdapterSettings;
using virtual_adapter::answerOf;
using virtual_adapter::Bytes;
using virtual_adapter::Frame;
using virtual_adapter::i2cData;
using virtual_adapter::i2cRead;
using virtual_adapter::i2cWrite;

namespace {

using Frames = std::vector<Frame>;
const AdapterLink::Time start{};

const Frame voltage{0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01};
const Frame initI2c{0x01, 0x00, 0x01, 0x09, 0x00, 0xA0, 0x86, 0x01, 0x00, 0x00};
const Frame pullUpI2c{0x01, 0x00, 0x02, 0x08, 0x00, 0x02};
const Frame readTemperature = i2cRead(0, 0x48, {0x00}, 2);

class StimulatedLink : public testing::Test {
protected:
    explicit StimulatedLink(const AdapterSettings& settings = {})
        : link(settings), protocol(settings.identity.variant.reportSize) {}

    /// What comes of a request: whole frames.
    Frames say(const Frame& request) {
        std::vector<Bytes> packets;
        protocol.createUsbOutTransferPackets(packets, request);
        for (const Bytes& packet : packets) {
            EXPECT_TRUE(link.writeReport(packet, start));
        }
        return heard();
    }

    Frames heard() {
        Frames frames;
        Frame frame;
        while (const auto report = link.takeInputReport(start)) {
            if (protocol.receiveUsbInTransferPackets(frame, *report)) {
                frames.push_back(frame);
            }
        }
        return frames;
    }

    std::string tell(const std::string& line) { return link.tell(line, start); }

    void startI2c() {
        say(voltage);
        say(initI2c);
        say(pullUpI2c);
    }
    /// Pin 4 as an input that tells every edge.
    void startPin() {
        say(voltage);
        say({0x01, 0x00, 0x01, 0x14, 4, 0});
        say({0x01, 0x00, 0x04, 0x14, 4, 2});
    }
    void startI3c() {
        say({0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C});
        say({0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0});
        say({0x01, 0x00, 0x04, 0x19, 0x00});
    }

    AdapterLink link;
    UsbTransferProtocol protocol;
};

// --- Pins ---------------------------------------------------------------------------------------

const Frame pinFourFired{0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 4};
const Frame readPinFour{0x01, 0x00, 0x03, 0x14, 4};
Frame levelOf(uint8_t level) {
    return {0x01, 0x00, 0x03, 0x14, 0x00, 0x00, level};
}

TEST_F(StimulatedLink, APinThatIsPressedInterruptsAndIsRead) {
    startPin();
    EXPECT_EQ(tell("gpio drive 4 1"), "");
    EXPECT_EQ(heard(), Frames{pinFourFired});
    EXPECT_EQ(say(readPinFour), Frames{levelOf(1)});
    EXPECT_EQ(tell("gpio drive 4 1"), "");
    EXPECT_EQ(heard(), Frames{});
    EXPECT_EQ(tell("gpio drive 4 release"), "");
    EXPECT_EQ(heard(), Frames{pinFourFired});
    EXPECT_EQ(say(readPinFour), Frames{levelOf(0)});
}

TEST_F(StimulatedLink, APinIsPressedBeforeAnybodyLooks) {
    EXPECT_EQ(tell("gpio drive 4 1"), "");
    startPin();
    EXPECT_EQ(say(readPinFour), Frames{levelOf(1)});
}

TEST_F(StimulatedLink, LowWinsOverAnOutputAndReachesTheWiredPin) {
    say(voltage);
    say({0x01, 0x00, 0x01, 0x14, 0, 1, 1}); // pin 0 drives high; pin 1 is wired to it
    say({0x01, 0x00, 0x01, 0x14, 1, 0});
    EXPECT_EQ(tell("gpio drive 1 0"), "");
    EXPECT_EQ(say({0x01, 0x00, 0x03, 0x14, 0}), (Frames{{0x01, 0x00, 0x03, 0x14, 0, 0, 0}}));
    EXPECT_EQ(tell("gpio drive 0 release"), "");
    EXPECT_EQ(say({0x01, 0x00, 0x03, 0x14, 1}), (Frames{{0x01, 0x00, 0x03, 0x14, 0, 0, 1}}));
}

// --- I2C ----------------------------------------------------------------------------------------

TEST_F(StimulatedLink, ATemperatureRises) {
    startI2c();
    EXPECT_EQ(say(readTemperature), Frames{i2cData(0, {0x19, 0x00})});
    EXPECT_EQ(tell("i2c 0 0x48 set temperature 85.5"), "");
    EXPECT_EQ(say(readTemperature), Frames{i2cData(0, {0x55, 0x80})});
}

TEST_F(StimulatedLink, ASettingThatIsNotThereIsRefusedByThePart) {
    EXPECT_NE(tell("i2c 0 0x48 set colour red"), "");
    EXPECT_EQ(tell("i2c 1 0x22 set temperature 1"), "nothing stands at 0x22 on I2C bus 1");
    EXPECT_EQ(tell("i2c 1 0x22 nack address"), "nothing stands at 0x22 on I2C bus 1");
}

TEST_F(StimulatedLink, AnAddressIsNotAcknowledgedSoManyTimes) {
    startI2c();
    EXPECT_EQ(tell("i2c 0 0x50 nack address 2"), "");
    EXPECT_EQ(say(readTemperature), Frames{i2cData(0, {0x19, 0x00})}) << "another address";
    const Frame read = i2cRead(0, 0x50, {}, 1);
    EXPECT_EQ(say(read), Frames{answerOf(CommandCode::I2cRead, 6)});
    EXPECT_EQ(say(read), Frames{answerOf(CommandCode::I2cRead, 6)});
    EXPECT_EQ(say(read), Frames{i2cData(0, {'H'})});
}

TEST_F(StimulatedLink, AByteIsNotAcknowledgedAndThoseBeforeItAreTaken) {
    startI2c();
    EXPECT_EQ(tell("i2c 0 0x50 nack data:3"), "");
    EXPECT_EQ(say(i2cWrite(0, 0x50, {0x00}, {'J'})), Frames{answerOf(CommandCode::I2cWrite, 0)})
        << "has no third byte";
    for (int i = 0; i < 3; ++i) {
        say(i2cRead(0, 0x50, {}, 1));
    }
    EXPECT_EQ(say(i2cWrite(0, 0x50, {0x01}, {'X', 'Y'})),
              Frames{answerOf(CommandCode::I2cWrite, 7)});
    for (int i = 0; i < 3; ++i) {
        say(i2cRead(0, 0x50, {}, 1));
    }
    EXPECT_EQ(say(i2cRead(0, 0x50, {0x00}, 3)), Frames{i2cData(0, {'J', 'X', 'l'})});
}

// --- I3C ----------------------------------------------------------------------------------------

TEST_F(StimulatedLink, ATargetInterrupts) {
    startI3c();
    say({0x01, 0x00, 0x09, 0x19, 0x7E, 0x10, 0x01, 0x00, 0x01}); // ENEC
    EXPECT_EQ(tell("i3c fffe00301000 interrupt 0a1b"), "");
    EXPECT_EQ(heard(), (Frames{{0, 0, 0x81, 0x19, 0, 0, 0x0A, 2, 0x0A, 0x1B}}));
    EXPECT_EQ(tell("i3c 0x08 interrupt"), "");
    EXPECT_EQ(heard(), (Frames{{0, 0, 0x81, 0x19, 0, 0, 0x08, 0}}));
}

TEST_F(StimulatedLink, AnInterruptWaitsUntilItIsEnabled) {
    startI3c();
    EXPECT_EQ(tell("i3c 0x48 interrupt 42"), "");
    EXPECT_EQ(heard(), Frames{});
    EXPECT_EQ(say({0x01, 0x00, 0x09, 0x19, 0x7E, 0x10, 0x01, 0x00, 0x01}).size(), 2U);
}

TEST_F(StimulatedLink, AnInterruptThatCannotBeIsRefused) {
    EXPECT_EQ(tell("i3c 0x48 interrupt 42"), "the target 0x48 has no power");
    startI3c();
    EXPECT_EQ(tell("i3c 0x22 interrupt 42"), "no target of the I3C bus is 0x22");
    EXPECT_EQ(tell("i3c 0x48 interrupt"),
              "an interrupt of the target 0x48 has a payload: give its bytes");
    EXPECT_EQ(tell("i3c 0x08 interrupt 42"),
              "an interrupt of the target 0x08 has no payload: give no bytes");
    EXPECT_EQ(tell("i3c 0x09 interrupt"), "the target 0x09 never interrupts: its BCR says so");
    EXPECT_EQ(tell("i3c fffe00401000 interrupt"), "the target fffe00401000 has no power");
}

TEST_F(StimulatedLink, ATargetLeavesAndJoinsTheRunningBus) {
    startI3c();
    say({0x01, 0x00, 0x09, 0x19, 0x7E, 0x10, 0x01, 0x00, 0x08}); // ENEC, hot-join
    EXPECT_EQ(tell("i3c 0x0A join"), "the target 0x0A is on the bus already");
    EXPECT_EQ(tell("i3c fffe00301000 leave"), "");
    EXPECT_EQ(tell("i3c fffe00301000 leave"), "the target fffe00301000 is not on the bus");
    EXPECT_EQ(say({0x01, 0x00, 0x09, 0x19, 0x0A, 0x01, 0x01, 0x8F, 0x00}),
              (Frames{{0x01, 0x00, 0x09, 0x19, 0x06, 0x00, 0x0A, 0x8F, 0x00, 0x00}}));
    EXPECT_EQ(tell("i3c fffe00301000 join"), "");
    EXPECT_EQ(heard(), (Frames{{0, 0, 0x82, 0x19, 0, 0, 0xFF, 0xFE, 0x00, 0x30, 0x10, 0x00, 0x26,
                                0x63, 0x0A}}));
}

// --- UART ---------------------------------------------------------------------------------------

TEST_F(StimulatedLink, BytesArriveAtTheUartThatListens) {
    EXPECT_EQ(tell("uart receive str:hi"),
              "the UART is not initialised or has no voltage: nobody listens");
    say(voltage);
    say({0x01, 0x00, 0x02, 0x10, 7, 0, 0, 7, 1}); // 7 data bits
    EXPECT_EQ(tell("uart receive str:hi 0"), "");
    EXPECT_EQ(heard(), (Frames{{0, 0, 0x81, 0x10, 0, 0, 4, 0, 'h', 'i', ' ', '0'}}));
    EXPECT_EQ(tell("uart receive 0xFF"), "");
    EXPECT_EQ(heard(), (Frames{{0, 0, 0x81, 0x10, 0, 0, 1, 0, 0x7F}}));
}

// --- Faults, reset and the plug -----------------------------------------------------------------

TEST_F(StimulatedLink, AFaultStrikesAndEnds) {
    EXPECT_EQ(tell("fault lost-response@i2c-read"), "");
    EXPECT_EQ(say(voltage).size(), 1U);
    EXPECT_EQ(say(readTemperature), Frames{});
    EXPECT_EQ(say(readTemperature).size(), 1U);
    EXPECT_EQ(tell("fault lost-response"),
              "request 3 has passed: the next is 4; say where, as @4 or @i2c-read");
    EXPECT_EQ(tell("fault stall@4"), "");
    EXPECT_FALSE(link.writeReport({0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x01}, start));
    EXPECT_EQ(tell("fault none"), "");
    EXPECT_EQ(say(readTemperature).size(), 1U);
}

TEST_F(StimulatedLink, ALostNotificationMayBeThatOfAStimulus) {
    startPin();
    EXPECT_EQ(tell("fault lost-notification@gpio-digital-read"), "");
    EXPECT_EQ(say(readPinFour), Frames{levelOf(0)});
    EXPECT_EQ(tell("gpio drive 4 1"), "");
    EXPECT_EQ(heard(), Frames{});
    EXPECT_EQ(tell("gpio drive 4 0"), "");
    EXPECT_EQ(heard(), Frames{pinFourFired});
}

TEST_F(StimulatedLink, AResetMakesEverythingAsAfterSwitchingOn) {
    startI2c();
    tell("i2c 0 0x48 set temperature 85.5");
    tell("gpio drive 4 1");
    tell("i2c 0 0x50 nack address 9");
    tell("fault stall@9");
    say(i2cWrite(0, 0x51, {0, 0}, {1}));
    EXPECT_EQ(tell("reset"), "");
    EXPECT_EQ(say(readTemperature), Frames{answerOf(CommandCode::I2cRead, 4)}) << "no voltage";
    startI2c();
    EXPECT_EQ(say(readTemperature), Frames{i2cData(0, {0x19, 0x00})});
    EXPECT_EQ(say(i2cRead(0, 0x50, {}, 1)), Frames{i2cData(0, {'H'})});
    EXPECT_EQ(say(i2cRead(0, 0x51, {0, 0}, 1)), Frames{i2cData(0, {0xFF})});
    say({0x01, 0x00, 0x01, 0x14, 4, 0});
    EXPECT_EQ(say(readPinFour), Frames{levelOf(0)});
    EXPECT_EQ(say(readPinFour).size(), 1U) << "the ninth request";
}

TEST_F(StimulatedLink, AnAdapterIsPulledOutAndPluggedIn) {
    startI2c();
    EXPECT_EQ(tell("plug"), "");
    EXPECT_EQ(say(readTemperature), Frames{i2cData(0, {0x19, 0x00})}) << "it is plugged in";
    EXPECT_EQ(tell("unplug"), "");
    EXPECT_FALSE(link.isOnBus());
    EXPECT_EQ(tell("gpio drive 4 1"), "");
    EXPECT_EQ(heard(), Frames{});
    EXPECT_EQ(tell("plug"), "");
    EXPECT_TRUE(link.isOnBus());
    EXPECT_EQ(say(readTemperature), Frames{answerOf(CommandCode::I2cRead, 4)});
}

TEST_F(StimulatedLink, ALineThatIsWrongChangesNothingAndSaysSo) {
    EXPECT_EQ(tell("gpio drive 9 1"), "'9' is no pin: expected 0 to 7");
}

// --- The schedule -------------------------------------------------------------------------------

class ScheduledLink : public StimulatedLink {
protected:
    ScheduledLink() : StimulatedLink(settings()) {}

private:
    static AdapterSettings settings() {
        AdapterSettings settings;
        for (const auto& [request, line] :
             std::vector<std::pair<size_t, std::string>>{{4, "i2c 0 0x48 set temperature 30"},
                                                         {5, "i2c 0 0x48 nack address"},
                                                         {5, "i2c 0 0x48 set temperature 31"},
                                                         {7, "reset"}}) {
            settings.schedule.push_back({request, virtual_adapter::parseStimulus(line)});
        }
        return settings;
    }
};

TEST_F(ScheduledLink, EachLineIsCarriedOutBeforeItsRequestAndAgainAfterAReset) {
    for (const char* const round : {"first", "second"}) {
        startI2c();
        EXPECT_EQ(say(readTemperature), Frames{i2cData(0, {0x1E, 0x00})}) << round;
        EXPECT_EQ(say(readTemperature), Frames{answerOf(CommandCode::I2cRead, 6)}) << round;
        EXPECT_EQ(say(readTemperature), Frames{i2cData(0, {0x1F, 0x00})}) << round;
        if (round == std::string("first")) {
            tell("reset");
        }
    }
    EXPECT_EQ(say(readTemperature), Frames{answerOf(CommandCode::I2cRead, 4)}) << "the reset";
}

TEST(ScheduledStimuli, OneThatCannotBeIsComplainedOfOnce) {
    AdapterSettings settings;
    std::vector<std::string> complaints;
    settings.schedule = {{2, virtual_adapter::parseStimulus("uart receive 1")}};
    settings.complain = [&](const std::string& complaint) { complaints.push_back(complaint); };
    AdapterLink link(settings);
    const Bytes getString{0x17, 0x00, 0x01, 0x00, 0x07, 0x04, 0x01};
    for (int i = 0; i < 4; ++i) {
        // The second of these is begun, and then begun anew.
        link.writeReport(i == 1 ? Bytes{0x09, 0x00, 0x01, 0x00} : getString, start);
    }
    EXPECT_EQ(complaints,
              (std::vector<std::string>{"before request 2: the UART is not initialised or has no "
                                        "voltage: nobody listens"}));
}

} // namespace
