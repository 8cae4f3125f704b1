// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "i3c/Ccc.hpp"
#include "i3c/Target.hpp"
#include "refusal.hpp"

#include <gtest/gtest.h>

namespace veltra {
namespace {

using Words = std::vector<std::string>;

CccRequest ccc(const std::string& name, const Words& words) {
    return parseCcc(name, words, "", "");
}

TEST(Ccc, OneWordMoreThanACodeTakesNamesTheTarget) {
    EXPECT_EQ(ccc("enec", {"1"}).code, 0x00);
    EXPECT_EQ(ccc("enec", {"1"}).target, "");
    EXPECT_EQ(ccc("enec", {"0x09", "1"}).code, 0x80);
    EXPECT_EQ(ccc("enec", {"0x09", "1"}).target, "0x09");
    EXPECT_EQ(ccc("enec", {"0x09", "1"}).data, Bytes({1}));
    EXPECT_EQ(ccc("setmrl", {"64"}).data, Bytes({0, 64}));
    EXPECT_EQ(ccc("setmrl", {"9", "64"}).target, "9");
    EXPECT_EQ(ccc("setmrl", {"9", "64", "8"}).data, Bytes({0, 64, 8}));
    EXPECT_EQ(ccc("setmrl", {"all", "64", "8"}).target, "");
    EXPECT_EQ(ccc("setmrl", {"all", "64", "8"}).code, 0x0A);
    EXPECT_EQ(ccc("entas1", {}).code, 0x03);
    EXPECT_EQ(ccc("entas1", {"9"}).code, 0x83);
}

TEST(Ccc, AddressesTravelShifted) {
    EXPECT_EQ(ccc("setdasa", {"static:0x48", "0x10"}).data, Bytes({0x20}));
    EXPECT_EQ(ccc("setnewda", {"9", "0x7f"}).data, Bytes({0xFE}));
}

TEST(Ccc, ReadsHaveTheLengthOfTheStandard) {
    EXPECT_TRUE(ccc("getpid", {"9"}).isRead);
    EXPECT_EQ(ccc("getpid", {"9"}).count, 6);
    EXPECT_EQ(parseCcc("getcaps", {"9"}, "0x5a", "2").count, 2);
    EXPECT_EQ(parseCcc("getcaps", {"9"}, "0x5a", "2").definingByte, 0x5A);
    EXPECT_TRUE(parseCcc("rstact", {"9"}, "0x81", "1").isRead);
    EXPECT_FALSE(parseCcc("rstact", {}, "1", "").isRead);
}

TEST(Ccc, ANumberSaysItselfWhetherItIsDirect) {
    EXPECT_EQ(ccc("0x1f", {"1", "2"}).target, "");
    EXPECT_EQ(ccc("0x1f", {"1", "2"}).data, Bytes({1, 2}));
    EXPECT_EQ(ccc("0x9f", {"1", "2"}).target, "1");
    EXPECT_EQ(ccc("0x9f", {"1", "2"}).data, Bytes({2}));
}

TEST(Ccc, WhatACodeDoesNotTakeIsRefused) {
    EXPECT_EQ(refusal([] { return ccc("getpid", {}); }),
              "getpid needs a target: 0x09, pid:0123456789ab or static:0x48");
    EXPECT_EQ(refusal([] { return ccc("rstdaa", {"1"}); }), "rstdaa takes no values, not 1");
    EXPECT_EQ(refusal([] { return ccc("enec", {}); }), "enec takes 1 value, not 0");
    EXPECT_EQ(refusal([] {
                  return ccc("setmrl", {"9", "1", "2", "3"});
              }),
              "setmrl takes 1 or 2 values, not 3");
    EXPECT_EQ(refusal([] { return ccc("getpid", {"9", "1"}); }), "getpid takes no values, not 1");
    EXPECT_EQ(refusal([] { return parseCcc("rstdaa", {}, "", "1"); }),
              "rstdaa cannot be read from all targets at once");
    EXPECT_EQ(refusal([] { return ccc("0x100", {}); }), "code '0x100' is out of range: 0 to 255");
    EXPECT_EQ(refusal([] { return ccc("GETPID", {"9"}); }).substr(0, 32),
              "code 'GETPID' is unknown: enec, ");
}

TEST(Target, ARecordIsReadMemberByMember) {
    const I3cTargetInfo target =
        parseTarget("static=0x48,dynamic=9,pid=0461000000aa,mwl=64,mrl=0x100,ibi-max=8,ibi=reject");
    EXPECT_EQ(target.staticAddress, 0x48);
    EXPECT_EQ(target.dynamicAddress, 0x09);
    EXPECT_EQ(pidOf(target), "0461000000aa");
    EXPECT_EQ(target.maxWriteLength, 64);
    EXPECT_EQ(target.maxReadLength, 256);
    EXPECT_EQ(target.maxIbiPayloadSize, 8);
    EXPECT_EQ(target.configuration, I3cTargetConfiguration_RejectIbi);
    EXPECT_TRUE(isLegacy(parseTarget("static=0x50,legacy")));
    EXPECT_FALSE(isLegacy(parseTarget("dynamic=9,ibi=accept")));
}

TEST(Target, AnUnknownMemberIsToldTheKnownOnes) {
    EXPECT_EQ(refusal([] { return parseTarget("colour=red"); }),
              "member 'colour' is unknown: static, dynamic, pid, mwl, mrl, ibi-max, ibi, legacy");
    EXPECT_EQ(refusal([] { return parseTarget("static"); }),
              "'static' is not of the form static=0x48,dynamic=0x09,...");
    EXPECT_EQ(refusal([] { return parseTarget("pid=12"); }),
              "pid '12' has not 12 hexadecimal digits");
}

TEST(Target, RegistersAreToldInWords) {
    EXPECT_EQ(wordsOfBcr(0x26), Words({"ibi", "ibi-payload", "advanced-capabilities"}));
    EXPECT_EQ(wordsOfBcr(0x59),
              Words({"limited-speed", "offline-capable", "virtual-target", "controller-capable"}));
    EXPECT_EQ(wordsOfBcr(0xC0), Words());
    EXPECT_EQ(wordsOfDcr(0x63), "temperature sensor");
    EXPECT_EQ(wordsOfDcr(0x99), "");
    EXPECT_EQ(jsonOf(parseTarget("dynamic=9"))["static"].text(), "null");
}

} // namespace
} // namespace veltra
