// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/Variant.hpp"

namespace {

using test_support::Bytes;
using test_support::counting;
using test_support::fullSpeed;
using test_support::highSpeed;

TEST(ModelTest, AShortMessageIsOneReportPaddedWithZeros) {
    Bytes report{0x0F, 0x00, 0xAA, 0xBB, 0xCC};
    report.resize(64);
    EXPECT_EQ(fullSpeed.inputs({0xAA, 0xBB, 0xCC}), std::vector<Bytes>{report});
}

TEST(ModelTest, AnOutputReportBeginsWithReportIdentifierZero) {
    Bytes report{0x00, 0x0F, 0x00, 0xAA, 0xBB, 0xCC};
    report.resize(1025);
    EXPECT_EQ(highSpeed.outputs({0xAA, 0xBB, 0xCC}), std::vector<Bytes>{report});
}

TEST(ModelTest, ALongMessageIsSplitAtTheReportsPayload) {
    const Bytes message = counting(62 + 62 + 1);
    Bytes first{0xF9, 0x00};
    first.insert(first.end(), message.begin(), message.begin() + 62);
    Bytes middle{0xF8, 0x00};
    middle.insert(middle.end(), message.begin() + 62, message.begin() + 124);
    Bytes last{0x06, 0x00, 124};
    last.resize(64);
    EXPECT_EQ(fullSpeed.inputs(message), (std::vector<Bytes>{first, middle, last}));
}

TEST(ModelTest, ALongMessageOfTheLargeModelIsSplitAtItsPayload) {
    const Bytes message = counting(1022 + 2);
    Bytes first{0xF9, 0x0F};
    first.insert(first.end(), message.begin(), message.begin() + 1022);
    Bytes last{0x0A, 0x00, message[1022], message[1023]};
    last.resize(1024);
    EXPECT_EQ(highSpeed.inputs(message), (std::vector<Bytes>{first, last}));
}

TEST(ModelTest, AMessageThatFillsItsReportsHasNoEmptyLastOne) {
    EXPECT_EQ(fullSpeed.inputs(counting(62)).size(), 1U);
    EXPECT_EQ(fullSpeed.inputs(counting(124)).size(), 2U);
}

} // namespace
