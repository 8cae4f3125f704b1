// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace virtual_adapter {

/// What a setting takes. The words for each stand in Setting::allowed.
enum class SettingKind {
    Flag,
    Number,
    /// A number that people read in hexadecimal, such as an address.
    HexNumber,
    Decimal,
    /// Its limits are those of its length.
    ByteString,
    /// One of a few words.
    Choice,
    /// Text without a meaning of its own, such as the name of a supply.
    Name,
    /// The provisioned identifier of an I3C target.
    Pid,
    /// Several numbers.
    NumberList,
    /// Bytes by the number of the register that the first of them lies in.
    RegisterContents,
    /// Registers, alone or from one to another.
    RegisterList,
    /// A program and its arguments.
    CommandLine,
};

struct RegisterRange {
    uint64_t first;
    uint64_t last;

    bool operator==(const RegisterRange& other) const {
        return first == other.first && last == other.last;
    }
};
using RegisterBytes = std::map<uint64_t, Bytes>;
using RegisterRanges = std::vector<RegisterRange>;
using Numbers = std::vector<uint64_t>;
using Command = std::vector<std::string>;

/// A flag is a bool; numbers are uint64_t, decimals double; words, names and PIDs are text.
using SettingValue = std::variant<bool, uint64_t, double, std::string, Bytes, Numbers,
                                  RegisterBytes, RegisterRanges, Command>;

/// One setting of a part: a row of the catalogue.
struct Setting {
    static Setting flag(std::string name, std::string byDefault, std::string text);
    static Setting number(std::string name, uint64_t least, uint64_t greatest,
                          std::string byDefault, std::string text);
    static Setting hex(std::string name, uint64_t least, uint64_t greatest, std::string byDefault,
                       std::string text);
    static Setting decimal(std::string name, double least, double greatest, std::string unit,
                           std::string byDefault, std::string text);
    static Setting bytes(std::string name, uint64_t least, uint64_t most, std::string byDefault,
                         std::string text);
    static Setting choice(std::string name, std::vector<std::string> words, std::string byDefault,
                          std::string text);
    static Setting pid(std::string name, std::string byDefault, std::string text);
    static Setting numbers(std::string name, uint64_t least, uint64_t greatest,
                           std::string byDefault, std::string text);
    /// A setting of a kind that has no limits and no default: it is empty or absent unless given.
    static Setting plain(std::string name, SettingKind kind, std::string text);

    /// The same for one that must be given.
    [[nodiscard]] Setting required() const;
    /// The same for one that also changes while the board runs.
    [[nodiscard]] Setting changing() const;

    /// What may be written, as it follows "allowed is".
    [[nodiscard]] std::string allowed() const;
    /// The value that a word stands for; nothing when it is not allowed. Numbers are a word with
    /// commas; other settings of several values have none.
    [[nodiscard]] std::optional<SettingValue> valueOf(const std::string& word) const;
    /// Nothing where there is none.
    [[nodiscard]] std::optional<SettingValue> valueByDefault() const {
        return byDefault.empty() ? std::nullopt : valueOf(byDefault);
    }
    /// Whether a value of the setting's type lies within its limits.
    [[nodiscard]] bool admits(const SettingValue& value) const;
    /// What to say of a word that is not allowed.
    [[nodiscard]] std::string complaintAbout(const std::string& word) const;

    std::string name;
    SettingKind kind;
    /// The limits of a number, or of how many bytes there are.
    double least = 0;
    double greatest = 0;
    std::vector<std::string> words;
    /// A word; empty when there is none unless given.
    std::string byDefault;
    std::string unit;
    std::string text;
    bool isRequired = false;
    bool changes = false;
};

/// Settable::set for a part with such settings: @p apply gets what the word stands for.
std::string
changeSetting(const std::vector<Setting>& settings, const std::string& name,
              const std::string& word,
              const std::function<void(const Setting& setting, const SettingValue& value)>& apply);

/// The values of one part's settings.
class SettingValues {
public:
    SettingValues() = default;
    SettingValues(std::initializer_list<std::pair<const std::string, SettingValue>> given)
        : values(given) {}

    void put(const std::string& name, SettingValue value) { values[name] = std::move(value); }
    /// Null where there is none.
    [[nodiscard]] const SettingValue* find(const std::string& name) const {
        const auto found = values.find(name);
        return found == values.end() ? nullptr : &found->second;
    }
    [[nodiscard]] bool has(const std::string& name) const { return values.count(name) != 0; }

    /// The value, which must be there and of that type.
    template <typename Type>
    [[nodiscard]] const Type& get(const std::string& name) const {
        return std::get<Type>(values.at(name));
    }
    /// An empty one where there is none.
    template <typename Type>
    [[nodiscard]] Type getOr(const std::string& name, Type otherwise = {}) const {
        return has(name) ? get<Type>(name) : otherwise;
    }

    bool operator==(const SettingValues& other) const { return values == other.values; }

private:
    std::map<std::string, SettingValue> values;
};

} // namespace virtual_adapter
