// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/CommandNames.hpp"
#include "faults/Fault.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>

using virtual_adapter::FaultSpan;

namespace {

/// The rows of a page's tables that the pattern matches: what its two groups hold.
std::multimap<std::string, std::string> rowsOf(const std::string& page,
                                               const std::string& pattern) {
    std::ifstream file(std::string(DOCUMENTS) + "/virtual-adapter/" + page);
    EXPECT_TRUE(file.is_open());
    const std::regex row(pattern);
    std::multimap<std::string, std::string> rows;
    std::string line;
    std::smatch groups;
    while (std::getline(file, line)) {
        if (std::regex_match(line, groups, row)) {
            rows.emplace(groups[1], groups[2]);
        }
    }
    return rows;
}

TEST(FaultDocuments, EveryFaultHasARowThatSaysHowLongItLasts) {
    std::multimap<std::string, std::string> faults;
    for (const auto& [name, kind, span] : virtual_adapter::faultNames()) {
        faults.emplace(name, span == FaultSpan::Once      ? "Once"
                             : span == FaultSpan::ForGood ? "For good"
                                                          : "From the start");
    }
    EXPECT_EQ(rowsOf("faults.md", R"(\| `([a-z-]+)` \| .*\. (Once|For good|From the start)\. \|)"),
              faults);
}

TEST(FaultDocuments, EveryCommandHasARowWithItsCode) {
    std::multimap<std::string, std::string> commands;
    for (const std::string& name : virtual_adapter::commandNames()) {
        const auto code = static_cast<uint16_t>(virtual_adapter::findCommand(name).value());
        std::array<char, 8> text{};
        std::snprintf(text.data(), text.size(), "0x%04X", code);
        commands.emplace(text.data(), name);
    }
    EXPECT_EQ(rowsOf("faults.md", R"(\| (0x[0-9A-F]{4}) \| `([a-z0-9-]+)` \|)"), commands);
}

/// How many commands of veltra stand behind an adapter with the fault, in the table of what they
/// make of each.
size_t commandsUnder(const std::string& fault) {
    std::ifstream table(VELTRA_FAULTS);
    EXPECT_TRUE(table.is_open());
    const std::regex adapter(R"(# adapter:.* --fault )" + fault + R"((@\S+)?( .*)?)");
    const std::regex command(R"(\$ .*\bveltra .*)");
    size_t count = 0;
    bool plugged = false;
    for (std::string line; std::getline(table, line);) {
        if (line.rfind("# adapter:", 0) == 0) {
            plugged = std::regex_match(line, adapter);
        }
        count += plugged && std::regex_match(line, command) ? size_t{1} : size_t{0};
    }
    return count;
}

TEST(FaultDocuments, ThreeCommandsShowWhatVeltraMakesOfEachFault) {
    for (const auto& [name, kind, span] : virtual_adapter::faultNames()) {
        EXPECT_GE(commandsUnder(name), 3U) << name;
    }
}

} // namespace
