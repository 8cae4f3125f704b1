// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/Fault.hpp"

#include "faults/CommandNames.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

using virtual_adapter::Fault;
using virtual_adapter::FaultKind;
using virtual_adapter::parseFault;
using virtual_adapter::textOf;

namespace {

std::string refusalOf(const std::string& text) {
    try {
        parseFault(text);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "accepted";
}

TEST(Fault, WithoutAPlaceItStrikesTheThirdRequest) {
    const Fault fault = parseFault("lost-response");
    EXPECT_EQ(fault.kind, FaultKind::LostResponse);
    EXPECT_FALSE(fault.place.command.has_value());
    EXPECT_EQ(fault.place.request, 3U);
}

TEST(Fault, ItsPlaceIsARequestOrOneOfACommand) {
    EXPECT_EQ(parseFault("stall@17").place.request, 17U);
    EXPECT_FALSE(parseFault("stall@17").place.command.has_value());
    EXPECT_EQ(parseFault("stall@i2c-read").place.command, CommandCode::I2cRead);
    EXPECT_EQ(parseFault("stall@i2c-read").place.request, 1U);
    EXPECT_EQ(parseFault("stall@i3c-ccc-transfer:12").place.command, CommandCode::I3cCccTransfer);
    EXPECT_EQ(parseFault("stall@i3c-ccc-transfer:12").place.request, 12U);
}

TEST(Fault, WhatIsWrittenReadsAsItself) {
    for (const char* const text : {"stall@1", "unplug@i2c-read:2", "no-permission"}) {
        EXPECT_EQ(textOf(parseFault(text)), text);
    }
    EXPECT_EQ(textOf(parseFault("stall")), "stall@3");
}

TEST(Fault, AnUnknownNameIsRefusedWithTheKnownOnes) {
    const std::string known =
        "is no fault: expected one of late-response, lost-response, wrong-identifier, short-frame, "
        "unplug, stall, over-long-count, notification-storm, lost-notification, address-nack, "
        "data-nack, flipped-bit, stuck-bus, write-protected, no-permission, lost-reports";
    EXPECT_EQ(refusalOf("fire@3"), "'fire' " + known);
    EXPECT_EQ(refusalOf(""), "'' " + known);
    EXPECT_EQ(refusalOf("Stall"), "'Stall' " + known);
}

TEST(Fault, AnUnknownPlaceIsRefusedWithTheKnownOnes) {
    for (const std::string place :
         {"", "0", "-1", "+1", "1.5", "3x", "1000000001", "99999999999999999999999", "i2c-reads",
          "i2c-read:", "i2c-read:0", "i2c-read:x", "i2c-read:1:1", ":1", "I2C-READ", "i2c-read "}) {
        const std::string refusal = refusalOf("stall@" + place);
        EXPECT_EQ(refusal.rfind("'@" + place +
                                    "' is no place: expected @N, @COMMAND or @COMMAND:N, N from 1 "
                                    "to 1000000000, COMMAND one of enter-boot-mode, ",
                                0),
                  0U)
            << refusal;
    }
}

TEST(Fault, OneOfTheHostHasNoPlace) {
    EXPECT_EQ(refusalOf("no-permission@3"), "no-permission lasts from the start and has no place");
    EXPECT_EQ(refusalOf("lost-reports@i2c-read"),
              "lost-reports lasts from the start and has no place");
}

TEST(CommandNames, EveryNameFindsItsCode) {
    EXPECT_EQ(virtual_adapter::commandNames().size(), 30U);
    for (const std::string& name : virtual_adapter::commandNames()) {
        const auto code = virtual_adapter::findCommand(name);
        ASSERT_TRUE(code.has_value());
        EXPECT_EQ(virtual_adapter::commandName(*code), name);
    }
    EXPECT_FALSE(virtual_adapter::findCommand("uart-rx-notification").has_value());
}

} // namespace
