// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/SettingReader.hpp"

#include "board/file/readFile.hpp"
#include "bytes/words.hpp"

#include <algorithm>
#include <stdexcept>

namespace virtual_adapter {

namespace {

/// Of one setting: the largest register map, or flash.
constexpr size_t maxFileSize = size_t{16} * 1024 * 1024;
constexpr size_t maxCommandWords = 64;

std::optional<uint64_t> wholeNumber(const toml::node& node) {
    const auto number = node.value_exact<int64_t>();
    return number && *number >= 0 ? std::optional<uint64_t>(*number) : std::nullopt;
}

/// A number, or a string that holds one.
std::optional<uint64_t> registerNumber(const toml::node& node) {
    const auto word = node.value_exact<std::string>();
    return word ? numberOf(*word) : wholeNumber(node);
}

std::optional<SettingValue> decimal(const toml::node& node) {
    if (const auto number = node.value_exact<double>()) {
        return *number;
    }
    if (const auto number = node.value_exact<int64_t>()) {
        return static_cast<double>(*number);
    }
    return std::nullopt;
}

template <typename Type>
std::optional<SettingValue> exactly(const toml::node& node) {
    if (const auto value = node.value_exact<Type>()) {
        return SettingValue(*value);
    }
    return std::nullopt;
}

std::optional<SettingValue> numberList(const toml::node& node) {
    Numbers numbers;
    const toml::array* const array = node.as_array();
    if (array == nullptr) {
        return std::nullopt;
    }
    for (const toml::node& each : *array) {
        const auto number = wholeNumber(each);
        if (!number) {
            return std::nullopt;
        }
        numbers.push_back(*number);
    }
    return numbers;
}

std::optional<RegisterRange> registerRange(const toml::node& node) {
    const std::string word = node.value_exact<std::string>().value_or("");
    const size_t dash = word.find('-');
    if (dash == std::string::npos) {
        const auto number = registerNumber(node);
        return number ? std::optional<RegisterRange>({*number, *number}) : std::nullopt;
    }
    const auto first = numberOf(word.substr(0, dash));
    const auto last = numberOf(word.substr(dash + 1));
    if (!first || !last || *first > *last) {
        return std::nullopt;
    }
    return RegisterRange{*first, *last};
}

std::optional<SettingValue> registerList(const toml::node& node) {
    RegisterRanges ranges;
    const toml::array* const array = node.as_array();
    if (array == nullptr) {
        return std::nullopt;
    }
    for (const toml::node& each : *array) {
        const auto range = registerRange(each);
        if (!range) {
            return std::nullopt;
        }
        ranges.push_back(*range);
    }
    return ranges;
}

std::optional<SettingValue> commandLine(const toml::node& node) {
    Command command;
    const toml::array* const array = node.as_array();
    if (array == nullptr || array->size() > maxCommandWords) {
        return std::nullopt;
    }
    for (const toml::node& each : *array) {
        const auto word = each.value_exact<std::string>();
        if (!word || word->find('\0') != std::string::npos) {
            return std::nullopt;
        }
        command.push_back(*word);
    }
    return command;
}

} // namespace

std::optional<SettingValue> SettingReader::read(const Setting& setting) {
    known.push_back(setting.name);
    const toml::node* const node = table.get(setting.name);
    if (node == nullptr) {
        if (setting.isRequired) {
            problems.add(lineOf(table), name + ": " + setting.name + " is missing; allowed is " +
                                            setting.allowed());
        }
        return std::nullopt;
    }
    const size_t line = lineOf(*node);
    if (setting.kind == SettingKind::ByteString) {
        return bytesOf(setting, *node);
    }
    if (setting.kind == SettingKind::RegisterContents) {
        return registerContents(setting, *node);
    }
    std::optional<SettingValue> value = valueOf(setting, *node);
    if (!value || !setting.admits(*value)) {
        problems.add(line, setting.name + ": this is not allowed; allowed is " + setting.allowed());
        value.reset();
    }
    return value;
}

SettingValues SettingReader::read(const std::vector<Setting>& settings) {
    SettingValues values;
    for (const Setting& setting : settings) {
        if (const std::optional<SettingValue> value = read(setting)) {
            values.put(setting.name, *value);
        }
    }
    return values;
}

void SettingReader::refuseOthers() {
    std::string names;
    for (const std::string& setting : known) {
        names += (names.empty() ? "" : ", ") + setting;
    }
    for (const auto& [key, node] : table) {
        if (std::find(known.begin(), known.end(), key.str()) == known.end()) {
            problems.add(lineOf(key),
                         "unknown key '" + std::string(key.str()) + "'; " + name + " has " + names);
        }
    }
}

size_t SettingReader::lineOfSetting(const std::string& setting) const {
    const toml::node* const node = table.get(setting);
    return node == nullptr ? lineOf(table) : lineOf(*node);
}

std::optional<SettingValue> SettingReader::valueOf(const Setting& setting, const toml::node& node) {
    switch (setting.kind) {
    case SettingKind::Flag:
        return exactly<bool>(node);
    case SettingKind::Number:
    case SettingKind::HexNumber: {
        const auto number = wholeNumber(node);
        return number ? std::optional<SettingValue>(*number) : std::nullopt;
    }
    case SettingKind::Decimal:
        return decimal(node);
    case SettingKind::Choice:
    case SettingKind::Name:
    case SettingKind::Pid:
        return exactly<std::string>(node);
    case SettingKind::NumberList:
        return numberList(node);
    case SettingKind::RegisterList:
        return registerList(node);
    case SettingKind::CommandLine:
        return commandLine(node);
    default:
        return std::nullopt;
    }
}

std::optional<SettingValue> SettingReader::bytesOf(const Setting& setting, const toml::node& node) {
    const std::string word = node.value_exact<std::string>().value_or("");
    std::optional<Bytes> bytes;
    if (word.rfind('@', 0) == 0) {
        bytes = bytesOfFile(setting, word.substr(1));
        if (!bytes) {
            return std::nullopt;
        }
    } else if (const auto number = wholeNumber(node)) {
        bytes = virtual_adapter::bytesOf(std::to_string(*number));
    } else {
        bytes = virtual_adapter::bytesOf(word);
    }
    if (!bytes || !setting.admits(*bytes)) {
        problems.add(lineOf(node),
                     setting.name + ": " +
                         (bytes ? std::to_string(bytes->size()) + " bytes are" : "this is") +
                         " not allowed; allowed is " + setting.allowed());
        return std::nullopt;
    }
    return *bytes;
}

std::optional<SettingValue> SettingReader::registerContents(const Setting& setting,
                                                            const toml::node& node) {
    const toml::table* const registers = node.as_table();
    if (registers == nullptr) {
        problems.add(lineOf(node),
                     setting.name + ": this is not allowed; allowed is " + setting.allowed());
        return std::nullopt;
    }
    RegisterBytes contents;
    for (const auto& [key, value] : *registers) {
        const std::string where = setting.name + ", register " + std::string(key.str());
        const auto index = numberOf(key.str());
        const auto bytes = bytesOf(Setting::bytes(where, 1, maxFileSize, "", ""), value);
        if (!index) {
            problems.add(lineOf(key), setting.name + ": '" + std::string(key.str()) +
                                          "' is no register; allowed is a number such as 0xD0");
        } else if (bytes && !contents.emplace(*index, std::get<Bytes>(*bytes)).second) {
            problems.add(lineOf(key), where + " is there already");
        }
    }
    return contents;
}

std::optional<Bytes> SettingReader::bytesOfFile(const Setting& setting, const std::string& file) {
    const std::filesystem::path path = directory / file;
    try {
        const std::string contents = readFile(path, maxFileSize);
        filesRead[setting.name] = path.string();
        return Bytes(contents.begin(), contents.end());
    } catch (const std::exception& error) {
        problems.add(lineOfSetting(setting.name), setting.name + ": " + error.what());
        return std::nullopt;
    }
}

} // namespace virtual_adapter
