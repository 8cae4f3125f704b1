// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// The reference of the parts against the catalogue.
#include "board/BoardDescription.hpp"

#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using virtual_adapter::partCatalogue;
using virtual_adapter::PartKind;
using virtual_adapter::Place;
using virtual_adapter::Setting;
using virtual_adapter::SettingKind;

namespace {

const char* const mark = "<!-- from here on as the catalogue has it -->\n";

using Kinds = std::vector<const PartKind*>;

std::string contentsOf(const char* path) {
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string byDefault(const Setting& setting) {
    if (setting.isRequired) {
        return "must be given";
    }
    if (setting.byDefault.empty()) {
        return "none";
    }
    const bool quoted = setting.kind == SettingKind::Choice || setting.kind == SettingKind::Pid;
    if (setting.kind == SettingKind::ByteString) {
        return "none";
    }
    if (setting.kind == SettingKind::NumberList) {
        return "`[" + std::regex_replace(setting.byDefault, std::regex(","), ", ") + "]`";
    }
    return quoted ? "`\"" + setting.byDefault + "\"`" : "`" + setting.byDefault + "`";
}

std::string table(const std::vector<Setting>& settings, const PartKind* other = nullptr) {
    if (settings.empty()) {
        return "It has no settings.\n\n";
    }
    std::string text = "| Setting | Allowed | Unless given | Meaning |\n|---|---|---|---|\n";
    for (size_t i = 0; i < settings.size(); ++i) {
        const Setting& setting = settings[i];
        std::string allowed = setting.allowed();
        if (other != nullptr && other->settings[i].allowed() != allowed) {
            allowed = allowed.substr(0, allowed.find("of at most")) + "of at most its size";
        }
        text += "| `" + setting.name + "`" + (setting.changes ? ", changes" : "") + " | " +
                allowed + " | " + byDefault(setting) + " | " + setting.text + " |\n";
    }
    return text + "\n";
}

/// Whether two kinds differ in their sizes only.
bool alike(const PartKind& left, const PartKind& right) {
    return left.bus == right.bus && left.name.substr(0, 3) == "24c" &&
           right.name.substr(0, 3) == "24c";
}

std::string section(const Kinds& kinds) {
    std::string heading;
    std::string text;
    for (const PartKind* const kind : kinds) {
        heading += (heading.empty() ? "`" : ", `") + kind->name + "`";
        text += kinds.size() == 1 ? "Is " + kind->text + ".\n"
                                  : "- `" + kind->name + "` is " + kind->text + ".\n";
    }
    return "### " + heading + "\n\n" + text + "\n" + table(kinds.front()->settings, kinds.back());
}

std::string bus(const std::string& heading, virtual_adapter::PartBus ofParts,
                const std::vector<std::pair<std::string, Place>>& places) {
    std::string text = "## " + heading + "\n\n";
    for (const auto& [introduction, place] : places) {
        text += introduction + "\n\n" + table(placeSettings(place));
    }
    Kinds kinds;
    for (const PartKind& kind : partCatalogue()) {
        if (kind.bus != ofParts) {
            continue;
        }
        if (!kinds.empty() && !alike(*kinds.front(), kind)) {
            text += section(kinds);
            kinds.clear();
        }
        kinds.push_back(&kind);
    }
    return text + section(kinds);
}

std::string reference() {
    using virtual_adapter::PartBus;
    const std::string text =
        bus("Parts for I2C", PartBus::I2c,
            {{"Every entry `[[i2c]]` has, beside its `part` and that part's settings:",
              Place::I2c}}) +
        bus("10-bit addresses", PartBus::I2cTenBit,
            {{"An entry `[[i2c]]` of this part has:", Place::I2cTenBit}}) +
        bus("Parts for SPI", PartBus::Spi, {{"Every entry `[[spi]]` has:", Place::Spi}}) +
        bus("Parts for the UART", PartBus::Uart, {}) +
        bus("Parts for I3C", PartBus::I3c,
            {{"Every entry `[[i3c]]` of an I3C target has:", Place::I3c},
             {"With an `address` the part is a legacy device, one of those for I2C:",
              Place::I3cLegacy}});
    return text.substr(0, text.size() - 1);
}

TEST(PartReference, TheTablesOfThePageAreThoseOfTheCatalogue) {
    const std::string page = contentsOf(PARTS_PAGE);
    const size_t marked = page.find(mark);
    ASSERT_NE(marked, std::string::npos);
    const std::string expected = page.substr(0, marked) + mark + "\n" + reference();
    std::ofstream(RENEWED_PARTS_PAGE) << expected;
    EXPECT_TRUE(page == expected) << "what it should be: cp " RENEWED_PARTS_PAGE " " PARTS_PAGE;
}

} // namespace
