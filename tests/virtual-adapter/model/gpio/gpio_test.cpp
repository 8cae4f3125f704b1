// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "virtual-adapter/AdapterFixture.hpp"

using virtual_adapter::AdapterFixture;
using virtual_adapter::Frame;

namespace {

using GpioModelSetUp = AdapterFixture;

constexpr uint8_t input = 0;
constexpr uint8_t output = 1;
constexpr uint8_t inputPullUp = 2;
constexpr uint8_t inputPullDown = 3;
constexpr uint8_t openDrain = 4;

constexpr uint8_t rising = 0;
constexpr uint8_t falling = 1;
constexpr uint8_t bothEdges = 2;
constexpr uint8_t lowLevel = 3;
constexpr uint8_t highLevel = 4;

constexpr uint8_t low = 0;
constexpr uint8_t high = 1;

class GpioModel : public AdapterFixture {
protected:
    GpioModel() { powerOn(); }

    void configure(uint8_t pin, uint8_t functionality) {
        EXPECT_EQ(status({0x01, 0x00, 0x01, 0x14, pin, functionality}), 0x0000U);
    }

    void configureOutput(uint8_t pin, uint8_t level) {
        EXPECT_EQ(status({0x01, 0x00, 0x01, 0x14, pin, output, level}), 0x0000U);
    }

    /// Writes a level and returns the pins whose interrupts fired.
    std::vector<unsigned> write(uint8_t pin, uint8_t level) {
        return firedPins({0x01, 0x00, 0x02, 0x14, pin, level});
    }

    std::vector<unsigned> arm(uint8_t pin, uint8_t trigger) {
        return firedPins({0x01, 0x00, 0x04, 0x14, pin, trigger});
    }

    /// Drives pin 0 to @p level and arms pin 1, which is wired to it; returns the pins that fired.
    std::vector<unsigned> watch(uint8_t level, uint8_t trigger) {
        configure(1, input);
        configureOutput(0, level);
        return arm(1, trigger);
    }

    unsigned level(uint8_t pin) {
        const Frame answer = response({0x01, 0x00, 0x03, 0x14, pin});
        EXPECT_EQ(Frame(answer.begin(), answer.end() - 1),
                  (Frame{0x01, 0x00, 0x03, 0x14, 0x00, 0x00}));
        return answer.back();
    }

private:
    std::vector<unsigned> firedPins(const Frame& request) {
        const std::vector<Frame> answered = frames(request);
        EXPECT_EQ(answered.at(0), (Frame{0x01, 0x00, request[2], 0x14, 0x00, 0x00}));
        std::vector<unsigned> pins;
        for (size_t i = 1; i < answered.size(); ++i) {
            EXPECT_EQ(Frame(answered[i].begin(), answered[i].end() - 1),
                      (Frame{0x00, 0x00, 0x81, 0x14, 0x00, 0x00}));
            pins.push_back(answered[i].back());
        }
        return pins;
    }
};

using Pins = std::vector<unsigned>;

// --- Refusals -----------------------------------------------------------------------------------

TEST_F(GpioModelSetUp, EveryCommandIsRefusedWithoutTheIoVoltage) {
    EXPECT_EQ(status({0x01, 0x00, 0x01, 0x14, 0, 0}), 0x0004U);
    EXPECT_EQ(status({0x01, 0x00, 0x02, 0x14, 0, 0}), 0x0004U);
    EXPECT_EQ(status({0x01, 0x00, 0x03, 0x14, 0}), 0x0004U);
    EXPECT_EQ(status({0x01, 0x00, 0x04, 0x14, 0, 0}), 0x0004U);
    EXPECT_EQ(status({0x01, 0x00, 0x05, 0x14, 0}), 0x0004U);
}

TEST_F(GpioModel, APinThatIsNotConfiguredRefusesEverythingElse) {
    EXPECT_EQ(response({0x01, 0x00, 0x02, 0x14, 4, 1}),
              (Frame{0x01, 0x00, 0x02, 0x14, 0x05, 0x00}));
    EXPECT_EQ(response({0x01, 0x00, 0x03, 0x14, 4}), (Frame{0x01, 0x00, 0x03, 0x14, 0x05, 0x00}));
    EXPECT_EQ(response({0x01, 0x00, 0x04, 0x14, 4, 0}),
              (Frame{0x01, 0x00, 0x04, 0x14, 0x05, 0x00}));
    EXPECT_EQ(response({0x01, 0x00, 0x05, 0x14, 4}), (Frame{0x01, 0x00, 0x05, 0x14, 0x05, 0x00}));
}

TEST_F(GpioModel, UnknownValuesAreRefused) {
    configureOutput(4, low);
    for (const Frame& request : {
             Frame{0x01, 0x00, 0x01, 0x14, 8, 0},
             Frame{0x01, 0x00, 0x01, 0x14, 4, 5},
             Frame{0x01, 0x00, 0x01, 0x14, 4, 1, 2},
             Frame{0x01, 0x00, 0x02, 0x14, 8, 0},
             Frame{0x01, 0x00, 0x02, 0x14, 4, 2},
             Frame{0x01, 0x00, 0x03, 0x14, 8},
             Frame{0x01, 0x00, 0x04, 0x14, 8, 0},
             Frame{0x01, 0x00, 0x04, 0x14, 4, 5},
             Frame{0x01, 0x00, 0x05, 0x14, 8},
         }) {
        EXPECT_EQ(status(request), 0x0003U) << testing::PrintToString(request);
    }
}

TEST_F(GpioModel, RequestsOfAnotherLengthAreMalformed) {
    configureOutput(4, low);
    for (const Frame& request : {
             Frame{0x01, 0x00, 0x01, 0x14, 4},
             Frame{0x01, 0x00, 0x01, 0x14, 4, 0, 0},
             Frame{0x01, 0x00, 0x01, 0x14, 4, 1},
             Frame{0x01, 0x00, 0x01, 0x14, 4, 1, 0, 0},
             Frame{0x01, 0x00, 0x02, 0x14, 4},
             Frame{0x01, 0x00, 0x02, 0x14, 4, 1, 0},
             Frame{0x01, 0x00, 0x03, 0x14},
             Frame{0x01, 0x00, 0x03, 0x14, 4, 0},
             Frame{0x01, 0x00, 0x04, 0x14, 4},
             Frame{0x01, 0x00, 0x04, 0x14, 4, 0, 0},
             Frame{0x01, 0x00, 0x05, 0x14},
             Frame{0x01, 0x00, 0x05, 0x14, 4, 0},
         }) {
        EXPECT_EQ(status(request), 0x0002U) << testing::PrintToString(request);
    }
}

TEST_F(GpioModel, AnInputRefusesALevel) {
    for (const uint8_t functionality : {input, inputPullUp, inputPullDown}) {
        configure(4, functionality);
        EXPECT_EQ(response({0x01, 0x00, 0x02, 0x14, 4, 1}),
                  (Frame{0x01, 0x00, 0x02, 0x14, 0x03, 0x00}));
    }
}

// --- Levels -------------------------------------------------------------------------------------

TEST_F(GpioModel, AnOutputReadsItsOwnLevel) {
    configureOutput(4, high);
    EXPECT_EQ(response({0x01, 0x00, 0x03, 0x14, 4}),
              (Frame{0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x01}));
    write(4, low);
    EXPECT_EQ(response({0x01, 0x00, 0x03, 0x14, 4}),
              (Frame{0x01, 0x00, 0x03, 0x14, 0x00, 0x00, 0x00}));
}

TEST_F(GpioModel, AnInputReadsItsWiredPartner) {
    for (const auto& [one, other] : {std::pair<uint8_t, uint8_t>{0, 1}, {1, 0}, {2, 3}, {3, 2}}) {
        configure(other, input);
        configureOutput(one, high);
        EXPECT_EQ(level(other), 1U);
        write(one, low);
        EXPECT_EQ(level(other), 0U);
        configure(one, input);
    }
}

TEST_F(GpioModel, TheOtherPinsAreNotWired) {
    for (const uint8_t pin : {uint8_t{2}, uint8_t{4}, uint8_t{5}, uint8_t{6}, uint8_t{7}}) {
        configure(pin, input);
    }
    configureOutput(1, high);
    configureOutput(7, high);
    for (const uint8_t pin : {uint8_t{2}, uint8_t{4}, uint8_t{5}, uint8_t{6}}) {
        EXPECT_EQ(level(pin), 0U);
    }
}

TEST_F(GpioModel, AnUndrivenLineFollowsItsResistorsAndIsLowWithoutAny) {
    configure(4, input);
    EXPECT_EQ(level(4), 0U);
    configure(4, inputPullUp);
    EXPECT_EQ(level(4), 1U);
    configure(4, inputPullDown);
    EXPECT_EQ(level(4), 0U);
    // Of two resistors against each other the one to low is the stronger.
    configure(0, inputPullUp);
    configure(1, inputPullDown);
    EXPECT_EQ(level(0), 0U);
    configure(1, input);
    EXPECT_EQ(level(1), 1U);
}

TEST_F(GpioModel, AnOutputOverrulesAResistor) {
    configureOutput(0, low);
    configure(1, inputPullUp);
    EXPECT_EQ(level(1), 0U);
    configureOutput(0, high);
    configure(1, inputPullDown);
    EXPECT_EQ(level(1), 1U);
}

TEST_F(GpioModel, OfTwoOutputsAgainstEachOtherLowWins) {
    configureOutput(0, high);
    configureOutput(1, low);
    EXPECT_EQ(level(0), 0U);
    EXPECT_EQ(level(1), 0U);
    write(1, high);
    EXPECT_EQ(level(0), 1U);
}

TEST_F(GpioModel, AnOpenDrainOutputStartsReleasedAndDrivesOnlyLow) {
    configure(0, openDrain);
    configure(1, inputPullUp);
    EXPECT_EQ(level(0), 1U);
    write(0, low);
    EXPECT_EQ(level(1), 0U);
    write(0, high);
    EXPECT_EQ(level(1), 1U);
    configure(1, input);
    EXPECT_EQ(level(0), 0U);
}

TEST_F(GpioModel, AnOpenDrainOutputReadsTheLineAndNotWhatItDrives) {
    configure(2, openDrain);
    configureOutput(3, low);
    EXPECT_EQ(level(2), 0U);
    configureOutput(3, high);
    EXPECT_EQ(level(2), 1U);
}

TEST_F(GpioModel, SwitchingTheVoltageOffAndOnKeepsThePinsAsTheyWere) {
    configureOutput(0, high);
    status({0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x00});
    EXPECT_EQ(status({0x01, 0x00, 0x03, 0x14, 0}), 0x0004U);
    powerOn();
    EXPECT_EQ(level(0), 1U);
}

// --- Interrupts ---------------------------------------------------------------------------------

TEST_F(GpioModel, AnInterruptIsANotificationWithThePinInTheEventByte) {
    configure(3, input);
    configureOutput(2, low);
    EXPECT_EQ(response({0x01, 0x00, 0x04, 0x14, 3, 0}),
              (Frame{0x01, 0x00, 0x04, 0x14, 0x00, 0x00}));
    EXPECT_EQ(frames({0x01, 0x00, 0x02, 0x14, 2, 1}),
              (std::vector<Frame>{
                  {0x01, 0x00, 0x02, 0x14, 0x00, 0x00},
                  {0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x03},
              }));
}

TEST_F(GpioModel, ARisingEdgeFiresOnTheWayUpOnly) {
    EXPECT_EQ(watch(high, rising), Pins{});
    EXPECT_EQ(write(0, high), Pins{});
    EXPECT_EQ(write(0, low), Pins{});
    EXPECT_EQ(write(0, high), Pins{1});
}

TEST_F(GpioModel, AFallingEdgeFiresOnTheWayDownOnly) {
    EXPECT_EQ(watch(low, falling), Pins{});
    EXPECT_EQ(write(0, low), Pins{});
    EXPECT_EQ(write(0, high), Pins{});
    EXPECT_EQ(write(0, low), Pins{1});
}

TEST_F(GpioModel, BothEdgesFireOnEveryChange) {
    EXPECT_EQ(watch(low, bothEdges), Pins{});
    EXPECT_EQ(write(0, high), Pins{1});
    EXPECT_EQ(write(0, high), Pins{});
    EXPECT_EQ(write(0, low), Pins{1});
}

TEST_F(GpioModel, ALowLevelFiresOnceWhenArmedAndOnceEachTimeItIsReached) {
    EXPECT_EQ(watch(low, lowLevel), Pins{1});
    EXPECT_EQ(write(0, low), Pins{});
    EXPECT_EQ(write(0, high), Pins{});
    EXPECT_EQ(write(0, low), Pins{1});
    write(0, high);
    EXPECT_EQ(arm(1, lowLevel), Pins{});
}

TEST_F(GpioModel, AHighLevelFiresOnceWhenArmedAndOnceEachTimeItIsReached) {
    EXPECT_EQ(watch(high, highLevel), Pins{1});
    EXPECT_EQ(write(0, high), Pins{});
    EXPECT_EQ(write(0, low), Pins{});
    EXPECT_EQ(write(0, high), Pins{1});
    write(0, low);
    EXPECT_EQ(arm(1, highLevel), Pins{});
}

TEST_F(GpioModel, ANewTriggerReplacesTheOldOne) {
    watch(low, rising);
    arm(1, falling);
    EXPECT_EQ(write(0, high), Pins{});
    EXPECT_EQ(write(0, low), Pins{1});
}

TEST_F(GpioModel, ADisarmedPinStaysSilent) {
    watch(low, bothEdges);
    EXPECT_EQ(response({0x01, 0x00, 0x05, 0x14, 1}), (Frame{0x01, 0x00, 0x05, 0x14, 0x00, 0x00}));
    EXPECT_EQ(write(0, high), Pins{});
    EXPECT_EQ(status({0x01, 0x00, 0x05, 0x14, 1}), 0x0000U);
}

TEST_F(GpioModel, BothPinsOfALineFireInAscendingOrder) {
    configure(3, input);
    configureOutput(2, low);
    arm(3, bothEdges);
    arm(2, bothEdges);
    EXPECT_EQ(write(2, high), (Pins{2, 3}));
}

TEST_F(GpioModel, ConfiguringAPinCanFireAnInterruptAndLeavesThePinArmed) {
    configure(4, input);
    arm(4, rising);
    EXPECT_EQ(frames({0x01, 0x00, 0x01, 0x14, 4, 2}),
              (std::vector<Frame>{
                  {0x01, 0x00, 0x01, 0x14, 0x00, 0x00},
                  {0x00, 0x00, 0x81, 0x14, 0x00, 0x00, 0x04},
              }));
}

} // namespace
