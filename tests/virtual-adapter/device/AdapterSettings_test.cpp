// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/AdapterSettings.hpp"

#include <gtest/gtest.h>

using virtual_adapter::AdapterSettings;
using virtual_adapter::SettingText;
using virtual_adapter::settingTexts;

namespace {

const SettingText& setting(const std::string& option) {
    for (const SettingText& candidate : settingTexts()) {
        if (candidate.option == option) {
            return candidate;
        }
    }
    throw std::logic_error("no setting " + option);
}

AdapterSettings with(const std::string& option, const std::string& text) {
    AdapterSettings settings;
    setting(option).read(settings, text);
    return settings;
}

std::string refusalOf(const std::string& option, const std::string& text) {
    try {
        with(option, text);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "accepted";
}

TEST(AdapterSettings, TheDefaultIsASoundFullSpeedAdapter) {
    const AdapterSettings settings;
    EXPECT_EQ(setting("--model").write(settings), "full-speed");
    EXPECT_EQ(setting("--serial").write(settings), "VA-0001");
    EXPECT_EQ(setting("--fault").write(settings), "none");
    EXPECT_EQ(setting("--fault-delay").write(settings), "1500");
    EXPECT_EQ(setting("--latency").write(settings), "0");
}

TEST(AdapterSettings, WhatIsWrittenReadsAsItself) {
    const std::vector<std::pair<std::string, std::string>> values{
        {"--model", "high-speed"},
        {"--serial", "S\xC3\xA9rie \xF0\x9F\x98\x80"},
        {"--fault", "late-response@3"},
        {"--fault", "stall@i2c-read:1"},
        {"--fault", "over-long-count@i3c-set-target-device-configuration:7"},
        {"--fault", "no-permission"},
        {"--fault", "lost-reports"},
        {"--latency", "0"},
        {"--latency", "1000000"},
        {"--fault", "none"},
        {"--fault-delay", "0"},
        {"--fault-delay", "3600000"}};
    for (const auto& [option, text] : values) {
        EXPECT_EQ(setting(option).write(with(option, text)), text);
    }
}

TEST(AdapterSettings, TheHighSpeedModelHas1024ByteReports) {
    EXPECT_EQ(with("--model", "high-speed").identity.variant.reportSize, 1024U);
    EXPECT_EQ(with("--model", "full-speed").identity.variant.reportSize, 64U);
}

TEST(AdapterSettings, AnUnknownModelIsRefusedWithTheKnownOnes) {
    EXPECT_EQ(refusalOf("--model", "Full-Speed"), "expected one of full-speed, high-speed");
}

TEST(AdapterSettings, AnUnknownFaultIsRefusedWithTheKnownOnes) {
    EXPECT_EQ(refusalOf("--fault", "fire"),
              "'fire' is no fault: expected one of " + virtual_adapter::faultNameList());
    EXPECT_NE(refusalOf("--fault", ""), "accepted");
}

TEST(AdapterSettings, FaultsAddUpUntilThereIsToBeNone) {
    AdapterSettings settings;
    setting("--fault").read(settings, "stall@9");
    setting("--fault").read(settings, "unplug@i2c-write");
    EXPECT_EQ(setting("--fault").write(settings), "stall@9 unplug@i2c-write:1");
    EXPECT_TRUE(settings.hasFault(virtual_adapter::FaultKind::Unplug));
    EXPECT_FALSE(settings.hasFault(virtual_adapter::FaultKind::NoPermission));
    setting("--fault").read(settings, "none");
    EXPECT_TRUE(settings.faults.empty());
}

TEST(AdapterSettings, ALatencyIsAWholeNumberOfMicrosecondsUpToASecond) {
    for (const char* const text : {"", "x", "1.5", "-1", "1000001"}) {
        EXPECT_EQ(refusalOf("--latency", text), "expected microseconds from 0 to 1000000") << text;
    }
}

TEST(AdapterSettings, ADelayIsAWholeNumberOfMillisecondsUpToAnHour) {
    for (const char* const text :
         {"", "x", "1.5", "10ms", "-1", "+1", " 1", "3600001", "99999999999999999999"}) {
        EXPECT_EQ(refusalOf("--fault-delay", text), "expected milliseconds from 0 to 3600000")
            << text;
    }
}

TEST(AdapterSettings, ASerialNumberFitsAUsbString) {
    EXPECT_EQ(refusalOf("--serial", std::string(126, 'x')), "accepted");
    const std::string refusal =
        "expected UTF-8 text of 1 to 126 UTF-16 units and at most 254 bytes";
    EXPECT_EQ(refusalOf("--serial", ""), refusal);
    EXPECT_EQ(refusalOf("--serial", std::string(127, 'x')), refusal);
    // 64 characters of two units each.
    std::string pairs;
    for (int i = 0; i < 63; ++i) {
        pairs += "\xF0\x9F\x98\x80";
    }
    EXPECT_EQ(refusalOf("--serial", pairs), "accepted");
    EXPECT_EQ(refusalOf("--serial", pairs + "x"), refusal);
    // 85 characters of three bytes each.
    std::string triples;
    for (int i = 0; i < 85; ++i) {
        triples += "\xE2\x82\xAC";
    }
    EXPECT_EQ(refusalOf("--serial", triples), refusal);
}

TEST(AdapterSettings, ASerialNumberMayHoldEveryCharacter) {
    for (const char* const text : {"\x01", "\xEF\xBF\xBD", "\xEF\xBF\xBF", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(refusalOf("--serial", text), "accepted") << text;
    }
}

TEST(AdapterSettings, ASerialNumberIsUtf8) {
    for (const char* const text :
         {"\xFF", "x\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_NE(refusalOf("--serial", text), "accepted");
    }
}

} // namespace
