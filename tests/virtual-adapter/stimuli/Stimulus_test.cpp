// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "stimuli/Stimulus.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <stdexcept>

using virtual_adapter::Bytes;
using virtual_adapter::FaultKind;
using virtual_adapter::FaultRequest;
using virtual_adapter::GpioDrive;
using virtual_adapter::I2cNack;
using virtual_adapter::I2cSet;
using virtual_adapter::I3cInterrupt;
using virtual_adapter::I3cPresence;
using virtual_adapter::parseStimulus;
using virtual_adapter::UartReceive;

namespace {

template <typename Kind>
Kind read(const std::string& line) {
    return std::get<Kind>(parseStimulus(line));
}

std::string refusalOf(const std::string& line) {
    try {
        parseStimulus(line);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "accepted";
}

TEST(Stimulus, APinIsDrivenOrReleased) {
    EXPECT_EQ(read<GpioDrive>("gpio drive 4 1").pin, GpioPinNumber_4);
    EXPECT_EQ(read<GpioDrive>("gpio drive 4 1").level, GpioLogicLevel_High);
    EXPECT_EQ(read<GpioDrive>("  gpio  drive 0x7  0 ").level, GpioLogicLevel_Low);
    EXPECT_EQ(read<GpioDrive>("gpio drive 0 release").level, std::nullopt);
}

TEST(Stimulus, ASettingsValueIsTheRestOfTheLine) {
    const auto set = read<I2cSet>("i2c 1 0x48 set temperature 85.5");
    EXPECT_EQ(set.bus, 1U);
    EXPECT_EQ(set.address, 0x48);
    EXPECT_EQ(set.name, "temperature");
    EXPECT_EQ(set.value, "85.5");
    EXPECT_EQ(read<I2cSet>("i2c 0 80 set contents str:two words").value, "str:two words");
}

TEST(Stimulus, AnAcknowledgeIsKeptBackOnceOrSeveralTimes) {
    EXPECT_EQ(read<I2cNack>("i2c 0 0x50 nack address").byte, std::nullopt);
    EXPECT_EQ(read<I2cNack>("i2c 0 0x50 nack address").times, 1U);
    EXPECT_EQ(read<I2cNack>("i2c 0 0x50 nack data:3 7").byte, 3U);
    EXPECT_EQ(read<I2cNack>("i2c 0 0x50 nack data:3 7").times, 7U);
}

TEST(Stimulus, ATargetIsNamedByItsPidOrAnAddress) {
    const auto interrupt = read<I3cInterrupt>("i3c fffe00301000 interrupt 0a1B");
    EXPECT_EQ(interrupt.target.pid, (std::array<uint8_t, 6>{0xFF, 0xFE, 0x00, 0x30, 0x10, 0x00}));
    EXPECT_EQ(interrupt.payload, (Bytes{0x0A, 0x1B}));
    EXPECT_EQ(read<I3cInterrupt>("i3c 0x09 interrupt").target.address, 0x09);
    EXPECT_EQ(read<I3cInterrupt>("i3c 0x09 interrupt").payload, Bytes{});
    EXPECT_TRUE(read<I3cPresence>("i3c 72 join").joins);
    EXPECT_FALSE(read<I3cPresence>("i3c 72 leave").joins);
}

TEST(Stimulus, BytesArriveAsNumbersDigitsAndText) {
    EXPECT_EQ(read<UartReceive>("uart receive 1 0x02 hex:0304 str:a b").bytes,
              (Bytes{1, 2, 3, 4, 'a', ' ', 'b'}));
}

TEST(Stimulus, AFaultIsOneOfTheCommandLine) {
    EXPECT_EQ(read<FaultRequest>("fault stall@i2c-read").fault->kind, FaultKind::Stall);
    EXPECT_EQ(read<FaultRequest>("fault none").fault, std::nullopt);
}

TEST(Stimulus, WhatIsWrongIsToldWithWhatIsAllowed) {
    const std::vector<std::pair<std::string, std::string>> refused{
        {"", "'' is no stimulus: expected gpio, i2c, i3c, uart, fault, reset, unplug or plug"},
        {"spi 0",
         "'spi' is no stimulus: expected gpio, i2c, i3c, uart, fault, reset, unplug or plug"},
        {"gpio 4 1", "expected gpio drive PIN 0|1|release"},
        {"gpio drive 8 1", "'8' is no pin: expected 0 to 7"},
        {"gpio drive 04 1", "'04' is no pin: expected 0 to 7"},
        {"gpio drive 4 high", "'high' is no level: expected 0, 1 or release"},
        {"gpio drive 4", "'' is no level: expected 0, 1 or release"},
        {"gpio drive 4 1 1", "too many words: expected gpio drive PIN 0|1|release"},
        {"i2c 2 0x48 set a b", "'2' is no I2C bus: expected 0 to 1"},
        {"i2c 0 0x80 set a b", "'0x80' is no I2C address: expected 0 to 127"},
        {"i2c 0 0x48 set temperature",
         "expected i2c BUS ADDR set NAME VALUE, or i2c BUS ADDR nack address|data:N [TIMES]"},
        {"i2c 0 0x48 get x",
         "expected i2c BUS ADDR set NAME VALUE, or i2c BUS ADDR nack address|data:N [TIMES]"},
        {"i2c 0 0x48 nack data", "'data' is nothing to acknowledge: expected address or data:N"},
        {"i2c 0 0x48 nack data:0", "'0' is no byte: expected 1 to 65535"},
        {"i2c 0 0x48 nack address 0", "'0' is no number of times: expected 1 to 1000000"},
        {"i2c 0 0x48 nack address 1 2",
         "too many words: expected i2c BUS ADDR nack address|data:N [TIMES]"},
        {"i3c fffe003010 join",
         "'fffe003010' is no target: expected a PID of 12 hexadecimal digits, or an address from 1 "
         "to 127"},
        {"i3c 0 join", "'0' is no target: expected a PID of 12 hexadecimal digits, or an address "
                       "from 1 to 127"},
        {"i3c 9 wake", "expected i3c PID|ADDR interrupt [HEX], or i3c PID|ADDR join|leave"},
        {"i3c 9 interrupt 0", "'0' is no payload: expected up to 255 bytes as hexadecimal digits"},
        {"i3c 9 leave now", "too many words: expected i3c PID|ADDR join|leave"},
        {"uart receive", "expected uart receive BYTES"},
        {"uart send 1", "expected uart receive BYTES"},
        {"uart receive 256", "'256' is no byte: expected 0 to 255, hex:DIGITS or str:TEXT"},
        {"fault no-permission@1", "no-permission lasts from the start and has no place"},
        {"reset now", "too many words: expected reset"},
    };
    for (const auto& [line, complaint] : refused) {
        EXPECT_EQ(refusalOf(line), complaint) << line;
    }
}

TEST(Stimulus, EveryFormHasARowInTheDocuments) {
    std::ifstream page(std::string(DOCUMENTS) + "/virtual-adapter/stimuli.md");
    ASSERT_TRUE(page.is_open());
    std::vector<std::string> forms;
    std::string line;
    std::smatch groups;
    while (std::getline(page, line)) {
        if (std::regex_match(line, groups, std::regex(R"(\| `([^`]+)` \| .* \|)"))) {
            forms.push_back(std::regex_replace(groups[1].str(), std::regex(R"(\\\|)"), "|"));
        }
    }
    EXPECT_EQ(forms, virtual_adapter::stimulusForms());
}

} // namespace
