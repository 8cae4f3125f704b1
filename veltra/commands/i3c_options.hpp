// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "buses/I3c.hpp"
#include "commands/i2c_options.hpp"

namespace veltra {

/// The options that set the bus's rates.
inline void addI3cSettings(Command command, I3cSettings& settings) {
    const auto add = [&](const char* name, std::string& value, const std::string& what) {
        command.addOption(name, value, what + "; " + value + " unless given").typeName("RATE");
    };
    add("--push-pull", settings.pushPull, "12.5M, 10M, 8M, 6M, 4M, 2M or 1M");
    add("--open-drain", settings.openDrain, "4M, 2.5M, 1M or 400k");
    add("--i2c", settings.i2c, "Of legacy transfers: 1M, 400k or 100k");
    command.addOption("--drive", settings.drive, "2mA, 4mA, 8mA or 12mA; 8mA unless given")
        .typeName("STRENGTH");
}

/// A transfer as it was typed.
struct I3cWords {
    static constexpr size_t maxBytes = 0xFFFF;

    std::string target;
    RegisterWord registerWord;
    std::string count;
    std::string code;
    std::vector<std::string> words;
    bool no7e = false;
    bool noStop = false;

    [[nodiscard]] I3cTransferFlags flags() const {
        return (no7e ? I3cTransferFlags_SkipBroadcastAddress : I3cTransferFlags_None) |
               (noStop ? I3cTransferFlags_NoStop : I3cTransferFlags_None);
    }
    [[nodiscard]] uint16_t parsedCount() const {
        return static_cast<uint16_t>(parseNumber("count", count, 0, maxBytes));
    }
    [[nodiscard]] uint8_t parsedCode() const {
        return static_cast<uint8_t>(parseNumber("code", code, 0, 0x7F));
    }
};

} // namespace veltra
