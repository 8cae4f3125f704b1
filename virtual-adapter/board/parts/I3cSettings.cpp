// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/I3cSettings.hpp"

#include "bytes/words.hpp"

#include <algorithm>

namespace virtual_adapter {

namespace {

// The Bus Characteristics Register (MIPI I3C Basic v1.1.1, section 5.1.1.2.1).
constexpr unsigned bcrLimitedDataSpeed = 0x01;
constexpr unsigned bcrInterrupts = 0x02;
constexpr unsigned bcrIbiPayload = 0x04;
constexpr unsigned bcrAdvancedCapabilities = 0x20;

constexpr uint8_t hdrModeDdr = 0x01;

// The least limits that a target may have.
constexpr uint64_t minWriteLimit = 8;
constexpr uint64_t minReadLimit = 16;

/// From the fastest down, as the enumerators count.
const std::vector<std::string>& rates() {
    static const std::vector<std::string> words{"12.5M", "10M", "8M", "6M", "4M", "2M", "1M"};
    return words;
}

std::string decimal(uint64_t number) {
    return std::to_string(number);
}

uint8_t byteIn(const SettingValues& values, const char* name) {
    return static_cast<uint8_t>(values.get<uint64_t>(name));
}

} // namespace

std::vector<Setting> i3cSettings(const I3cCharacteristics& kind) {
    return {
        Setting::hex("static_address", 0, 0x7D, hexNumber(kind.staticAddress),
                     "the address that SETDASA and SETAASA find it at; 0 for none"),
        Setting::pid("pid", hexOf(Bytes(kind.pid.begin(), kind.pid.end())),
                     "its provisioned identifier, unlike that of any other target"),
        Setting::hex("bcr", 0, 0xFF, hexNumber(kind.bcr), "its bus characteristics"),
        Setting::hex("dcr", 0, 0xFF, hexNumber(kind.dcr), "its device characteristics"),
        Setting::number("max_write", minWriteLimit, 0xFFFF, decimal(kind.maxWriteLength),
                        "the longest write that it takes, in bytes: its MWL at first"),
        Setting::number("max_read", minReadLimit, 0xFFFF, decimal(kind.maxReadLength),
                        "the longest read that it gives, in bytes: its MRL at first"),
        Setting::number("max_ibi_payload", 0, 0xFF, decimal(kind.maxIbiPayloadSize),
                        "the longest payload of its interrupts, in bytes; 0 for no limit"),
        Setting::flag("hdr_ddr", (kind.hdrModes & hdrModeDdr) != 0 ? "true" : "false",
                      "whether it acknowledges HDR-DDR"),
        Setting::choice("fastest_rate", rates(), rates().at(kind.fastestRate),
                        "the fastest push-pull rate at which it answers to private transfers"),
    };
}

std::vector<Setting> i3cSettings() {
    constexpr uint8_t interruptsWithPayload =
        bcrAdvancedCapabilities | bcrIbiPayload | bcrInterrupts;
    std::vector<Setting> settings =
        i3cSettings({0, {}, interruptsWithPayload, 0, 64, 64, 8, 0, I3cPushPullRate_12_5_MHz});
    for (Setting& setting : settings) {
        if (setting.kind == SettingKind::Pid) {
            setting = setting.required();
            setting.byDefault.clear();
        }
    }
    return settings;
}

std::string complaintAboutI3c(const SettingValues& values) {
    const unsigned bcr = byteIn(values, "bcr");
    if ((bcr & bcrIbiPayload) != 0 && (bcr & bcrInterrupts) == 0) {
        return "bcr: bit 2 promises a payload of interrupts, bit 1 says that there are none";
    }
    if ((bcr & bcrIbiPayload) == 0 && byteIn(values, "max_ibi_payload") != 0) {
        return "max_ibi_payload: bcr bit 2 says that interrupts carry no payload; allowed is 0";
    }
    if ((bcr & bcrAdvancedCapabilities) == 0 && values.get<bool>("hdr_ddr")) {
        return "hdr_ddr: bcr bit 5 says that there are no advanced capabilities; allowed is false";
    }
    if ((bcr & bcrLimitedDataSpeed) == 0 &&
        values.get<std::string>("fastest_rate") != rates().front()) {
        return "fastest_rate: bcr bit 0 says that the data speed has no limit; allowed is \"" +
               rates().front() + "\"";
    }
    return {};
}

I3cCharacteristics i3cCharacteristics(const SettingValues& values) {
    I3cCharacteristics kind{};
    kind.staticAddress = byteIn(values, "static_address");
    const Bytes pid = bytesOfHex(values.get<std::string>("pid")).value_or(Bytes{});
    std::copy_n(pid.begin(), std::min(pid.size(), kind.pid.size()), kind.pid.begin());
    kind.bcr = byteIn(values, "bcr");
    kind.dcr = byteIn(values, "dcr");
    kind.maxWriteLength = static_cast<uint16_t>(values.get<uint64_t>("max_write"));
    kind.maxReadLength = static_cast<uint16_t>(values.get<uint64_t>("max_read"));
    kind.maxIbiPayloadSize = byteIn(values, "max_ibi_payload");
    kind.hdrModes = values.get<bool>("hdr_ddr") ? hdrModeDdr : 0;
    const auto& rate = values.get<std::string>("fastest_rate");
    kind.fastestRate = static_cast<I3cPushPullRate>(
        std::find(rates().begin(), rates().end(), rate) - rates().begin());
    return kind;
}

} // namespace virtual_adapter
