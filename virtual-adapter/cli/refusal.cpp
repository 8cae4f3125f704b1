// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/refusal.hpp"

#include <algorithm>

namespace virtual_adapter {

namespace {

const std::string program = "veltra-virtual-adapter ";

bool contains(const std::vector<std::string>& words, const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool isOption(const std::string& word) {
    return word.rfind('-', 0) == 0;
}

std::string commandsOf(command_line::Command root) {
    std::string list;
    for (const command_line::Command command : root.commands()) {
        list += (list.empty() ? "" : ", ") + command.name();
    }
    return list;
}

/// A word at the command's place that is no command.
std::string complaintAboutCommand(command_line::Command root, const TypedWords& typed) {
    const std::vector<command_line::Command> commands = root.commands();
    const bool isCommand = std::any_of(commands.begin(), commands.end(), [&](const auto& command) {
        return command.name() == typed.command();
    });
    if (typed.words.empty() || isCommand || !contains(root.remaining(), typed.command())) {
        return {};
    }
    return "'" + typed.command() + "' is none of its commands: " + commandsOf(root) +
           "; --help says what they do";
}

/// A program without a -- in front of it, or for a command that starts none.
std::string complaintAboutProgram(command_line::Command root, const TypedWords& typed) {
    const std::vector<std::string> unknown = root.remaining();
    if (typed.words.empty()) {
        return {};
    }
    const auto found =
        std::find_if(typed.words.begin() + 1, typed.words.end(), [&](const std::string& word) {
            return !isOption(word) && contains(unknown, word);
        });
    if (found == typed.words.end()) {
        return {};
    }
    const std::string rest = *found + (typed.words.end() - found > 1 ? " ..." : "");
    if (!typed.startsProgram()) {
        return typed.command() + " starts no program; type: " + program + "run -- " + rest;
    }
    const std::string between = typed.command() == "replay" ? "FILE " : "[OPTIONS] ";
    return "-- is missing in front of the program; type: " + program + typed.command() + " " +
           (found - typed.words.begin() > 1 ? between : "") + "-- " + rest;
}

/// The first of the options that the command does not have; empty without one.
std::string unknownOption(command_line::Command root, const TypedWords& typed) {
    const std::vector<std::string> unknown = root.remaining();
    const auto found =
        std::find_if(typed.words.begin(), typed.words.end(), [&](const std::string& word) {
            return isOption(word) && contains(unknown, word);
        });
    return found == typed.words.end() ? "" : found->substr(0, found->find('='));
}

/// The commands that do have it, as in " (serve and attach have it)".
std::string whoHas(command_line::Command root, const std::string& option) {
    std::string names;
    unsigned count = 0;
    for (const command_line::Command command : root.commands()) {
        for (const command_line::Option& each : command.options()) {
            if (each.isCalled(option)) {
                names += (names.empty() ? "" : ", ") + command.name();
                ++count;
            }
        }
    }
    return names.empty() ? "" : " (" + names + (count == 1 ? " has it)" : " have it)");
}

} // namespace

bool TypedWords::startsProgram() const {
    return command() == "run" || command() == "replay";
}

std::string misunderstood(command_line::Command root, const TypedWords& typed) {
    std::string complaint = complaintAboutCommand(root, typed);
    const bool takesWords = typed.command() == "tell" || typed.command() == "check";
    if (!complaint.empty() || typed.hasSeparator || takesWords ||
        (!typed.startsProgram() && !unknownOption(root, typed).empty())) {
        return complaint;
    }
    return complaintAboutProgram(root, typed);
}

std::string withMend(command_line::Command root, const TypedWords& typed,
                     const std::string& refusal) {
    if (typed.words.empty()) {
        return "a command is missing: " + commandsOf(root) + "; --help says what they do";
    }
    const std::string command = typed.command() + ": ";
    const std::string option = unknownOption(root, typed);
    if (!option.empty()) {
        return command + "it has no " + option + whoHas(root, option) + ". See: " + program +
               typed.command() + " --help";
    }
    if (refusal.rfind("-- PROGRAM", 0) == 0) {
        return command + refusal + "; type: " + program + typed.command() +
               (typed.command() == "replay" ? " FILE" : " [OPTIONS]") + " -- PROGRAM";
    }
    // What has lines of its own, as a board's complaints have, says enough.
    if (refusal.find('\n') != std::string::npos) {
        return command + refusal;
    }
    const bool known = root.chosen().has_value();
    return (known ? command : "") + refusal + ". See: " + program +
           (known ? typed.command() + " " : "") + "--help";
}

} // namespace virtual_adapter
