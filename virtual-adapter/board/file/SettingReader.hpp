// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "board/file/Problems.hpp"
#include "board/file/toml.hpp"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace virtual_adapter {

/// Reads the settings of one table of a board's file.
class SettingReader {
public:
    /// @p what is the table as messages call it. Files are sought in @p directory.
    SettingReader(const toml::table& itsTable, std::string what, std::filesystem::path itsDirectory,
                  Problems& toTell)
        : table(itsTable),
          name(std::move(what)),
          directory(std::move(itsDirectory)),
          problems(toTell) {}

    /// The value of a setting; nothing when it is not given or was complained about.
    std::optional<SettingValue> read(const Setting& setting);
    /// Those of several.
    SettingValues read(const std::vector<Setting>& settings);

    /// Complains about every key besides those that were read.
    void refuseOthers();
    /// Takes a key for one that the table may have.
    void know(const std::string& key) { known.push_back(key); }

    /// Where the setting of that name stands, or the table if it is not given.
    [[nodiscard]] size_t lineOfSetting(const std::string& setting) const;

    /// By the name of the setting: the files whose bytes were read.
    [[nodiscard]] const std::map<std::string, std::string>& files() const { return filesRead; }

private:
    std::optional<SettingValue> valueOf(const Setting& setting, const toml::node& node);
    std::optional<SettingValue> bytesOf(const Setting& setting, const toml::node& node);
    std::optional<SettingValue> registerContents(const Setting& setting, const toml::node& node);
    std::optional<Bytes> bytesOfFile(const Setting& setting, const std::string& file);

    const toml::table& table;
    const std::string name;
    const std::filesystem::path directory;
    Problems& problems;
    std::vector<std::string> known;
    std::map<std::string, std::string> filesRead;
};

} // namespace virtual_adapter
