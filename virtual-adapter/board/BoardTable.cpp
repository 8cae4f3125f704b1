// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/BoardTable.hpp"

#include "bytes/words.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr size_t shownBytes = 16;

std::string ofBytes(const Bytes& bytes) {
    if (bytes.size() > shownBytes) {
        return std::to_string(bytes.size()) + " bytes";
    }
    return "hex:" + hexOf(bytes);
}

std::string ofDecimal(double number) {
    std::array<char, 32> text{};
    (void)std::snprintf(text.data(), text.size(), "%g", number);
    return text.data();
}

template <typename Range, typename Word>
std::string joined(const Range& range, Word word, const char* between = ",") {
    std::string text;
    for (const auto& each : range) {
        text += (text.empty() ? "" : between) + word(each);
    }
    return text;
}

std::string ofRange(const RegisterRange& range) {
    return hexNumber(range.first) + (range.first == range.last ? "" : "-" + hexNumber(range.last));
}

std::string wordOf(const Setting& setting, const SettingValue& value) {
    switch (setting.kind) {
    case SettingKind::Flag:
        return std::get<bool>(value) ? "true" : "false";
    case SettingKind::Number:
        return std::to_string(std::get<uint64_t>(value));
    case SettingKind::HexNumber:
        return hexNumber(std::get<uint64_t>(value));
    case SettingKind::Decimal:
        return ofDecimal(std::get<double>(value));
    case SettingKind::ByteString:
        return ofBytes(std::get<Bytes>(value));
    case SettingKind::Choice:
    case SettingKind::Name:
    case SettingKind::Pid:
        return std::get<std::string>(value);
    case SettingKind::NumberList:
        return joined(std::get<Numbers>(value), [](uint64_t each) { return std::to_string(each); });
    case SettingKind::RegisterContents:
        return joined(std::get<RegisterBytes>(value), [](const auto& each) {
            return hexNumber(each.first) + ":" + hexOf(each.second);
        });
    case SettingKind::RegisterList:
        return joined(std::get<RegisterRanges>(value), ofRange);
    case SettingKind::CommandLine:
        return joined(
            std::get<Command>(value), [](const std::string& each) { return each; }, " ");
    }
    return {};
}

/// What stands in the line of a part behind its name.
std::string details(const Placement& part) {
    std::string text;
    const auto add = [&](const Setting& setting, const SettingValues& values) {
        const auto value = values.find(setting.name);
        if (value != nullptr && setting.valueByDefault() != *value) {
            text += "  " + setting.name + " " + wordOf(setting, *value);
        }
    };
    for (const Setting& setting : part.kind->settings) {
        add(setting, part.settings);
    }
    for (const Setting& setting : placeSettings(part.place)) {
        if (!setting.isRequired) {
            add(setting, part.where);
        }
    }
    return text;
}

/// The heading under which a part stands, and what says where it stands there.
std::pair<std::string, std::string> placeOf(const Placement& part) {
    switch (part.place) {
    case Place::I2c:
    case Place::I2cTenBit:
        return {"i2c " + std::to_string(part.number("bus")), hexNumber(part.number("address"))};
    case Place::Spi:
        return {"spi", std::to_string(part.number("chip_select"))};
    case Place::Uart:
        return {"uart", ""};
    case Place::I3cLegacy:
        return {"i3c", hexNumber(part.number("address"))};
    case Place::I3c:
        break;
    }
    return {"i3c", part.settings.get<std::string>("pid")};
}

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

} // namespace

std::string boardTable(const BoardDescription& board) {
    constexpr size_t placeWidth = 14;
    constexpr size_t nameWidth = 10;
    std::string table;
    for (const char* const heading : {"i2c 0", "i2c 1", "spi", "uart", "i3c"}) {
        std::vector<std::string> lines;
        for (const Placement& part : board.parts) {
            const auto [bus, where] = placeOf(part);
            if (bus == heading) {
                std::string line = "  " + padded(where, placeWidth) +
                                   padded(part.kind->name, nameWidth) + details(part);
                line.erase(line.find_last_not_of(' ') + 1);
                lines.push_back(line + "\n");
            }
        }
        // Places of one bus are written alike: their order is that of the words.
        std::sort(lines.begin(), lines.end());
        if (!lines.empty()) {
            table += heading + std::string("\n") +
                     joined(
                         lines, [](const std::string& line) { return line; }, "");
        }
    }
    if (!board.wires.empty()) {
        table += "gpio\n";
        for (const Numbers& wire : board.wires) {
            table += "  " +
                     joined(
                         wire, [](uint64_t pin) { return std::to_string(pin); }, "-") +
                     "\n";
        }
    }
    if (!board.stimuli.empty()) {
        table += "at\n";
        for (const TimedStimulus& stimulus : board.stimuli) {
            table +=
                "  " + padded(std::to_string(stimulus.request), placeWidth) + stimulus.text + "\n";
        }
    }
    return table;
}

} // namespace virtual_adapter
