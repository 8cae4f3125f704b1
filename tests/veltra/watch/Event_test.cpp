// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "watch/Event.hpp"

#include <gtest/gtest.h>

namespace veltra {
namespace {

/// A notification of 12.034511 s after the start of the machine.
Inbox::Entry entry(NotificationKind kind, const Bytes& frame) {
    Inbox::Entry made;
    made.timeNanoseconds = 12'034'511'999;
    made.kind = kind;
    made.frame = frame;
    return made;
}

void expectEvent(const Inbox::Entry& seen, const std::string& text, const std::string& json) {
    const Event event = describeEvent(seen);
    EXPECT_EQ(event.text, text);
    EXPECT_EQ(event.object.text(), json);
}

TEST(Event, AnInterruptHasItsPayload) {
    expectEvent(entry(NotificationKind_I3cIbi, {0, 0, 0, 0, 0x81, 0x19, 0x09, 3, 0x42, 0x19, 0x80}),
                "12.034511 ibi 0x09 42 19 80",
                R"({"event":"ibi","time":12.034511,"address":9,"payload":"421980"})");
}

TEST(Event, AnnouncedBytesThatDidNotComeAreNotShown) {
    expectEvent(entry(NotificationKind_I3cIbi, {0, 0, 0, 0, 0x81, 0x19, 0x09, 255, 0x42}),
                "12.034511 ibi 0x09 42",
                R"({"event":"ibi","time":12.034511,"address":9,"payload":"42"})");
    expectEvent(entry(NotificationKind_UartRx, {0, 0, 0, 0, 0x81, 0x10, 0xFF, 0xFF, 'h', 'i'}),
                "12.034511 uart 68 69", R"({"event":"uart","time":12.034511,"data":"6869"})");
}

TEST(Event, APinIsNamed) {
    expectEvent(entry(NotificationKind_Gpio, {0, 0, 0, 0, 0x81, 0x14, 4}), "12.034511 gpio 4",
                R"({"event":"gpio","time":12.034511,"pin":4})");
}

TEST(Event, AJoiningTargetIsDescribed) {
    expectEvent(
        entry(NotificationKind_I3cHotJoin,
              {0, 0, 0, 0, 0x82, 0x19, 0xFF, 0xFE, 0x00, 0x40, 0x10, 0x00, 0x01, 0x41, 0x0B}),
        "12.034511 hotjoin 0x0b fffe00401000 accelerometer",
        R"({"event":"hotjoin","time":12.034511,"address":11,"pid":"fffe00401000","bcr":1,"dcr":65})");
}

TEST(Event, WhatNobodyKnowsIsShownWhole) {
    expectEvent(entry(NotificationKind_Unknown, {0, 0, 0, 0, 0x77, 0x77}),
                "12.034511 unknown 00 00 00 00 77 77",
                R"({"event":"unknown","time":12.034511,"frame":"000000007777"})");
    expectEvent(entry(NotificationKind_I3cIbi, {0, 0, 0, 0, 0x81, 0x19}),
                "12.034511 unknown 00 00 00 00 81 19",
                R"({"event":"unknown","time":12.034511,"frame":"000000008119"})");
}

} // namespace
} // namespace veltra
