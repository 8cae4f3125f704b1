// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/Setting.hpp"

#include "bytes/words.hpp"

#include <algorithm>
#include <sstream>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr size_t pidDigits = 12;
constexpr size_t maxNameLength = 32;

Setting limited(SettingKind kind, std::string name, double least, double greatest,
                std::string byDefault, std::string text) {
    Setting setting = Setting::plain(std::move(name), kind, std::move(text));
    setting.least = least;
    setting.greatest = greatest;
    setting.byDefault = std::move(byDefault);
    return setting;
}

std::string whole(double number) {
    return std::to_string(static_cast<int64_t>(number));
}

std::string inHex(double number) {
    return hexNumber(static_cast<uint64_t>(number));
}

std::string quotedList(const std::vector<std::string>& words) {
    std::string list;
    for (const std::string& word : words) {
        list += (list.empty() ? "\"" : ", \"") + word + "\"";
    }
    return list;
}

std::string lengthOf(const Setting& setting) {
    if (setting.least == setting.greatest) {
        return whole(setting.least) + " bytes";
    }
    return (setting.least > 0 ? "from " + whole(setting.least) + " to " : "at most ") +
           whole(setting.greatest) + " bytes";
}

/// A name can stand in a file and on a command line as it is.
bool isName(const std::string& word) {
    constexpr const char* allowed =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_";
    return !word.empty() && word.size() <= maxNameLength &&
           word.find_first_not_of(allowed) == std::string::npos;
}

bool isPid(const std::string& word) {
    const std::optional<Bytes> bytes = bytesOfHex(word);
    return bytes.has_value() && word.size() == pidDigits &&
           std::any_of(bytes->begin(), bytes->end(), [](uint8_t byte) { return byte != 0; });
}

std::optional<Numbers> numbersOf(const std::string& word) {
    Numbers numbers;
    std::istringstream words(word);
    for (std::string each; std::getline(words, each, ',');) {
        const std::optional<uint64_t> number = numberOf(each);
        if (!number) {
            return std::nullopt;
        }
        numbers.push_back(*number);
    }
    return numbers;
}

template <typename Value>
std::optional<SettingValue> asSetting(const std::optional<Value>& value) {
    return value ? std::optional<SettingValue>(*value) : std::nullopt;
}

/// What the word says, whatever the limits are.
std::optional<SettingValue> readWord(SettingKind kind, const std::string& word) {
    switch (kind) {
    case SettingKind::Flag:
        return asSetting(flagOf(word));
    case SettingKind::Number:
    case SettingKind::HexNumber:
        return asSetting(numberOf(word));
    case SettingKind::Decimal:
        return asSetting(decimalOf(word));
    case SettingKind::ByteString:
        return asSetting(bytesOf(word));
    case SettingKind::NumberList:
        return asSetting(numbersOf(word));
    case SettingKind::Choice:
    case SettingKind::Name:
    case SettingKind::Pid:
        return word;
    default:
        return std::nullopt;
    }
}

} // namespace

Setting Setting::plain(std::string name, SettingKind kind, std::string text) {
    Setting setting{};
    setting.name = std::move(name);
    setting.kind = kind;
    setting.text = std::move(text);
    return setting;
}

Setting Setting::flag(std::string name, std::string byDefault, std::string text) {
    return limited(SettingKind::Flag, std::move(name), 0, 0, std::move(byDefault), std::move(text));
}

Setting Setting::number(std::string name, uint64_t least, uint64_t greatest, std::string byDefault,
                        std::string text) {
    return limited(SettingKind::Number, std::move(name), static_cast<double>(least),
                   static_cast<double>(greatest), std::move(byDefault), std::move(text));
}

Setting Setting::hex(std::string name, uint64_t least, uint64_t greatest, std::string byDefault,
                     std::string text) {
    Setting setting =
        number(std::move(name), least, greatest, std::move(byDefault), std::move(text));
    setting.kind = SettingKind::HexNumber;
    return setting;
}

Setting Setting::decimal(std::string name, double least, double greatest, std::string unit,
                         std::string byDefault, std::string text) {
    Setting setting = limited(SettingKind::Decimal, std::move(name), least, greatest,
                              std::move(byDefault), std::move(text));
    setting.unit = std::move(unit);
    return setting;
}

Setting Setting::bytes(std::string name, uint64_t least, uint64_t most, std::string byDefault,
                       std::string text) {
    Setting setting = number(std::move(name), least, most, std::move(byDefault), std::move(text));
    setting.kind = SettingKind::ByteString;
    return setting;
}

Setting Setting::choice(std::string name, std::vector<std::string> words, std::string byDefault,
                        std::string text) {
    Setting setting = plain(std::move(name), SettingKind::Choice, std::move(text));
    setting.words = std::move(words);
    setting.byDefault = std::move(byDefault);
    return setting;
}

Setting Setting::pid(std::string name, std::string byDefault, std::string text) {
    Setting setting = plain(std::move(name), SettingKind::Pid, std::move(text));
    setting.byDefault = std::move(byDefault);
    return setting;
}

Setting Setting::numbers(std::string name, uint64_t least, uint64_t greatest, std::string byDefault,
                         std::string text) {
    Setting setting =
        number(std::move(name), least, greatest, std::move(byDefault), std::move(text));
    setting.kind = SettingKind::NumberList;
    return setting;
}

Setting Setting::required() const {
    Setting setting = *this;
    setting.isRequired = true;
    return setting;
}

Setting Setting::changing() const {
    Setting setting = *this;
    setting.changes = true;
    return setting;
}

std::string Setting::allowed() const {
    const std::string withUnit = unit.empty() ? "" : " " + unit;
    switch (kind) {
    case SettingKind::Flag:
        return "true or false";
    case SettingKind::Number:
        return "a number from " + whole(least) + " to " + whole(greatest) + withUnit;
    case SettingKind::HexNumber:
        return "a number from " + inHex(least) + " to " + inHex(greatest);
    case SettingKind::Decimal:
        return "a decimal number from " + whole(least) + " to " + whole(greatest) + withUnit;
    case SettingKind::ByteString:
        return "\"hex:0011ff\", \"str:text\" or \"@file\" of " + lengthOf(*this);
    case SettingKind::Choice:
        return (words.size() > 1 ? "one of " : "") + quotedList(words);
    case SettingKind::Name:
        return "a name of letters, digits, - and _, at most " + std::to_string(maxNameLength);
    case SettingKind::Pid:
        return "12 hexadecimal digits, not all 0, such as \"0461000000aa\"";
    case SettingKind::NumberList:
        return "a list of numbers from " + whole(least) + " to " + whole(greatest);
    case SettingKind::RegisterContents:
        return "a table of registers and their bytes, such as { 0xD0 = \"hex:60\" }";
    case SettingKind::RegisterList:
        return "a list of registers, such as [\"0xD0\", \"0x88-0xA1\"]";
    case SettingKind::CommandLine:
        return "a list of the program and its arguments, such as [\"python3\", \"part.py\"]";
    }
    return {};
}

bool Setting::admits(const SettingValue& value) const {
    const auto within = [this](double number) { return number >= least && number <= greatest; };
    switch (kind) {
    case SettingKind::Number:
    case SettingKind::HexNumber:
        return within(static_cast<double>(std::get<uint64_t>(value)));
    case SettingKind::Decimal:
        return within(std::get<double>(value));
    case SettingKind::ByteString:
        return within(static_cast<double>(std::get<Bytes>(value).size()));
    case SettingKind::Choice:
        return std::find(words.begin(), words.end(), std::get<std::string>(value)) != words.end();
    case SettingKind::Name:
        return isName(std::get<std::string>(value));
    case SettingKind::Pid:
        return isPid(std::get<std::string>(value));
    case SettingKind::NumberList: {
        const Numbers& numbers = std::get<Numbers>(value);
        return !numbers.empty() &&
               std::all_of(numbers.begin(), numbers.end(),
                           [&](uint64_t number) { return within(static_cast<double>(number)); });
    }
    case SettingKind::CommandLine: {
        const Command& command = std::get<Command>(value);
        return !command.empty() && !command.front().empty();
    }
    default:
        return true;
    }
}

std::optional<SettingValue> Setting::valueOf(const std::string& word) const {
    std::optional<SettingValue> value = readWord(kind, word);
    if (value && !admits(*value)) {
        value.reset();
    }
    return value;
}

std::string Setting::complaintAbout(const std::string& word) const {
    return name + ": '" + word + "' is not allowed; allowed is " + allowed();
}

std::string changeSetting(const std::vector<Setting>& settings, const std::string& name,
                          const std::string& word,
                          const std::function<void(const Setting&, const SettingValue&)>& apply) {
    std::string names;
    for (const Setting& setting : settings) {
        if (!setting.changes) {
            continue;
        }
        if (setting.name == name) {
            const std::optional<SettingValue> value = setting.valueOf(word);
            if (!value) {
                return setting.complaintAbout(word);
            }
            apply(setting, *value);
            return {};
        }
        names += (names.empty() ? "" : ", ") + setting.name;
    }
    return "there is no setting '" + name + "' that changes; there is: " + names;
}

} // namespace virtual_adapter
