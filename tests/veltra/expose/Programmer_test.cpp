// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/serprog/Programmer.hpp"

#include "expose/RecordingBus.hpp"

#include <gtest/gtest.h>

#include <numeric>

using namespace serprog;

namespace {

class ProgrammerTest : public testing::Test {
protected:
    Bytes say(const Bytes& words) {
        programmer.receive(words.data(), words.size());
        while (programmer.step()) {
        }
        return std::exchange(programmer.output(), {});
    }

    Bytes sayEachByteAlone(const Bytes& words) {
        Bytes answers;
        for (const uint8_t word : words) {
            const Bytes answer = say({word});
            answers.insert(answers.end(), answer.begin(), answer.end());
        }
        return answers;
    }

    RecordingBus bus;
    Programmer programmer{bus};
};

Bytes spiOperation(size_t length, size_t count, const Bytes& data) {
    Bytes command{0x13};
    for (const size_t number : {length, count}) {
        command.push_back(static_cast<uint8_t>(number));
        command.push_back(static_cast<uint8_t>(number >> 8U));
        command.push_back(static_cast<uint8_t>(number >> 16U));
    }
    command.insert(command.end(), data.begin(), data.end());
    return command;
}

} // namespace

TEST_F(ProgrammerTest, ASessionBeginsOnTheBusAsItWasSetUp) {
    EXPECT_EQ(bus.log, "begin\n");
}

TEST_F(ProgrammerTest, EachQueryHasItsAnswer) {
    EXPECT_EQ(say({0x00}), (Bytes{0x06}));
    EXPECT_EQ(say({0x01}), (Bytes{0x06, 0x01, 0x00}));
    Bytes map{0x06, 0xBF, 0x01, 0x7F};
    map.resize(33);
    EXPECT_EQ(say({0x02}), map);
    EXPECT_EQ(say({0x03}),
              (Bytes{0x06, 'v', 'e', 'l', 't', 'r', 'a', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(say({0x04}), (Bytes{0x06, 0xFF, 0xFF}));
    EXPECT_EQ(say({0x05}), (Bytes{0x06, 0x08}));
    EXPECT_EQ(say({0x07}), (Bytes{0x06, 0xFF, 0xFF}));
    EXPECT_EQ(say({0x08}), (Bytes{0x06, 0x00, 0x80, 0x00}));
    EXPECT_EQ(say({0x11}), (Bytes{0x06, 0x00, 0x80, 0x00}));
}

TEST_F(ProgrammerTest, SynchronisingIsRefusedAndAcknowledged) {
    EXPECT_FALSE(programmer.isSynchronised());
    EXPECT_EQ(say({0x10}), (Bytes{0x15, 0x06}));
    EXPECT_TRUE(programmer.isSynchronised());
}

TEST_F(ProgrammerTest, OnlyTheSpiBusCanBeChosen) {
    EXPECT_EQ(say({0x12, 0x08}), (Bytes{0x06}));
    EXPECT_EQ(say({0x12, 0x0F}), (Bytes{0x06}));
    EXPECT_EQ(say({0x12, 0x01}), (Bytes{0x15}));
}

TEST_F(ProgrammerTest, ATransferSendsThenReads) {
    bus.answers = {Bytes{0x56, 0x41, 0x12}};
    EXPECT_EQ(say(spiOperation(1, 3, {0x9F})), (Bytes{0x06, 0x56, 0x41, 0x12}));
    EXPECT_EQ(bus.log, "begin\ntransfer 9f, 3\n");
}

TEST_F(ProgrammerTest, ATransferThatReadsNothingIsAcknowledged) {
    bus.answers = {Bytes{}};
    EXPECT_EQ(say(spiOperation(1, 0, {0x06})), (Bytes{0x06}));
    EXPECT_EQ(bus.log, "begin\ntransfer 06, 0\n");
}

TEST_F(ProgrammerTest, ATransferOfNothingDoesNotReachTheBus) {
    EXPECT_EQ(say(spiOperation(0, 0, {})), (Bytes{0x06}));
    EXPECT_EQ(bus.log, "begin\n");
}

TEST_F(ProgrammerTest, ARefusedTransferConsumesItsBytes) {
    bus.answers = {std::nullopt, Bytes{0xAA}};
    Bytes words = spiOperation(4, 2, {0x00, 0x01, 0x10, 0x13});
    const Bytes next = spiOperation(1, 1, {0x05});
    words.insert(words.end(), next.begin(), next.end());
    EXPECT_EQ(say(words), (Bytes{0x15, 0x06, 0xAA}));
    EXPECT_EQ(bus.log, "begin\ntransfer 00011013, 2\ntransfer 05, 1\n");
}

TEST_F(ProgrammerTest, AnAnswerOfAnotherLengthIsARefusal) {
    bus.answers = {Bytes{0x01}};
    EXPECT_EQ(say(spiOperation(1, 2, {0x05})), (Bytes{0x15}));
}

TEST_F(ProgrammerTest, AWriteTakesItsOpcodeAndAddressBesidesTheData) {
    bus.answers = {Bytes{}};
    EXPECT_EQ(say(spiOperation(0x8005, 0, Bytes(0x8005, 0x5A))), (Bytes{0x06}));
}

TEST_F(ProgrammerTest, ATransferThatIsTooLongConsumesItsBytesAndIsRefused) {
    for (const size_t length : {size_t{0x8006}, size_t{0x12345}}) {
        EXPECT_EQ(say(spiOperation(length, 0, Bytes(length - 1, 0x10))), (Bytes{}));
        EXPECT_EQ(say({0x10, 0x00}), (Bytes{0x15, 0x06}));
    }
    EXPECT_EQ(say(spiOperation(1, 0xFFFF, {0x03})), (Bytes{0x15}));
    EXPECT_EQ(say(spiOperation(0, 0x10000, {})), (Bytes{0x15}));
    EXPECT_EQ(bus.log, "begin\n");
}

TEST_F(ProgrammerTest, WhatIsNotOfferedConsumesItsParametersAndIsRefused) {
    const std::vector<Bytes> commands{
        {0x06},
        {0x09, 0x10, 0x10, 0x10},
        {0x0A, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10},
        {0x0B},
        {0x0C, 0x10, 0x10, 0x10, 0x10},
        {0x0D, 0x02, 0x00, 0x00, 0x10, 0x10, 0x10, 0x10, 0x10},
        {0x0D, 0x00, 0x00, 0x00, 0x10, 0x10, 0x10},
        {0x0E, 0x10, 0x10, 0x10, 0x10},
        {0x0F},
        {0x17, 0x10},
        {0x18, 0x10},
        {0x19},
        {0xFF},
    };
    for (Bytes command : commands) {
        command.push_back(0x00);
        EXPECT_EQ(say(command), (Bytes{0x15, 0x06})) << "opcode " << int{command[0]};
    }
}

TEST_F(ProgrammerTest, TheClockReallySetIsToldToTheClient) {
    bus.clock = 4'000'000;
    EXPECT_EQ(say({0x14, 0x00, 0x12, 0x7A, 0x00}), (Bytes{0x06, 0x00, 0x09, 0x3D, 0x00}));
    EXPECT_EQ(bus.log, "begin\nclock 8000000\n");
    bus.clock.reset();
    EXPECT_EQ(say({0x14, 0x01, 0x00, 0x00, 0x00}), (Bytes{0x15}));
}

TEST_F(ProgrammerTest, AClockOfNothingIsRefused) {
    EXPECT_EQ(say({0x14, 0x00, 0x00, 0x00, 0x00}), (Bytes{0x15}));
    EXPECT_EQ(bus.log, "begin\n");
}

TEST_F(ProgrammerTest, ThePinsAreAcknowledgedAndTheChipSelectIsChosen) {
    EXPECT_EQ(say({0x15, 0x01}), (Bytes{0x06}));
    EXPECT_EQ(say({0x16, 0x02}), (Bytes{0x06}));
    EXPECT_EQ(say({0x16, 0x04}), (Bytes{0x15}));
    EXPECT_EQ(say({0x15, 0x00}), (Bytes{0x06}));
    EXPECT_EQ(bus.log, "begin\nselect 2\nselect 4\n");
}

TEST_F(ProgrammerTest, BytesOneByOneSayTheSameAsAllAtOnce) {
    bus.answers = {Bytes{0x01, 0x02}};
    Bytes words{0x10, 0x14, 0x40, 0x42, 0x0F, 0x00};
    const Bytes operation = spiOperation(3, 2, {0x03, 0x00, 0x10});
    words.insert(words.end(), operation.begin(), operation.end());
    EXPECT_EQ(sayEachByteAlone(words),
              (Bytes{0x15, 0x06, 0x06, 0x40, 0x42, 0x0F, 0x00, 0x06, 0x01, 0x02}));
}

TEST_F(ProgrammerTest, ItTakesNoMoreThanItCanCarryOut) {
    const Bytes many(1U << 16U, 0x00);
    programmer.receive(many.data(), many.size());
    EXPECT_FALSE(programmer.wantsInput());
    EXPECT_TRUE(programmer.step());
    EXPECT_TRUE(programmer.wantsInput());
}
