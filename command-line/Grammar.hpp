// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): as CLI11 has it
class App;
class Option;
} // namespace CLI

namespace command_line {

/// Why words are not understood.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    Refusal(const std::string& option, const std::string& complaint)
        : std::runtime_error(option + ": " + complaint) {}
};

/// The words ask for the help or the version, not for a command.
class Asked : public std::exception {
public:
    explicit Asked(std::string answer) : text(std::move(answer)) {}
    [[nodiscard]] const char* what() const noexcept override { return text.c_str(); }

private:
    std::string text; // with the line's end
};

/// An option, or an operand, which has a name without dashes. Copies are the same option.
class Option {
public:
    explicit Option(CLI::Option& of) : option(&of) {}

    // NOLINTBEGIN(modernize-use-nodiscard): each returns the option itself, for the next of a
    // chain.
    Option required(bool isRequired = true) const;
    /// What the help calls its value; nothing when empty.
    Option typeName(const std::string& name) const;
    Option help(const std::string& text) const;
    /// What the help calls its value unless it is given.
    Option defaultText(const std::string& text) const;
    /// The variable that it is taken from where it is not given.
    Option environment(const std::string& variable) const;
    Option range(int min, int max) const;
    Option oneOf(const std::vector<std::string>& values) const;
    Option oneOf(std::initializer_list<int> values) const;
    /// Refuses a value for which the function returns a complaint.
    Option check(std::function<std::string(const std::string&)> complaintAbout) const;
    Option excludes(Option other) const;
    Option excludes(const std::string& other) const;
    /// Takes one value of its list each time it is given, not all words that follow.
    Option oneEachTime() const;
    /// The same for an option that the help shows like one that is given once.
    Option repeatable() const;
    // NOLINTEND(modernize-use-nodiscard)

    [[nodiscard]] bool wasGiven() const;
    [[nodiscard]] bool isOperand() const;
    /// Of one occurrence: 0 for a flag.
    [[nodiscard]] int maxValues() const;
    /// As it is typed, the longest form of an option's.
    [[nodiscard]] std::string name() const;
    /// Its long forms, with their dashes.
    [[nodiscard]] std::vector<std::string> longNames() const;
    [[nodiscard]] bool isCalled(const std::string& typed) const;

private:
    friend class Command;
    CLI::Option* option;
};

/// A command with its options, operands and further commands. Copies are the same command; it
/// lives as long as its Grammar.
class Command {
public:
    explicit Command(CLI::App& of) : app(&of) {}

    [[nodiscard]] Command addCommand(const std::string& name, const std::string& help) const;

    // Names are as in "-b,--bus" or "ADDR". Parsing fills the value, which must live until then.
    Option addOption(const std::string& names, std::string& value, const std::string& help) const;
    Option addOption(const std::string& names, int& value, const std::string& help) const;
    Option addOption(const std::string& names, unsigned& value, const std::string& help) const;
    /// Takes all words that follow.
    Option addOption(const std::string& names, std::vector<std::string>& values,
                     const std::string& help) const;
    /// What reads the value may throw a Refusal.
    Option addOption(const std::string& names, const std::function<void(const std::string&)>& read,
                     const std::string& help) const;
    Option addOption(const std::string& names,
                     const std::function<void(const std::vector<std::string>&)>& read,
                     const std::string& help) const;
    Option addFlag(const std::string& names, bool& value, const std::string& help) const;
    /// A flag that may have a value behind =; a name such as "--virtual{true}" tells it without.
    Option addFlag(const std::string& names, std::string& value, const std::string& help) const;
    /// What --version answers.
    void setVersion(const std::string& version) const;

    /// What stands below the help.
    void setFooter(const std::string& text) const;
    /// The help does not list it.
    void hide() const;
    /// One of its commands must follow.
    void requireCommand() const;
    /// Its options may also stand behind the names of its commands.
    void takeOptionsAnywhere() const;
    /// The words behind it are remaining(), unread, where a command is required in front.
    void passThrough() const;
    /// Parsing calls it when the command has been chosen.
    void onChosen(std::function<void()> action) const;
    /// Excludes all others of its options but the help.
    void excludeOthers(Option option) const;

    [[nodiscard]] const std::string& name() const;
    [[nodiscard]] bool isHidden() const;
    [[nodiscard]] bool requiresCommand() const;
    [[nodiscard]] std::optional<Command> parent() const;
    [[nodiscard]] std::vector<Command> commands() const;
    [[nodiscard]] std::vector<Option> options() const;
    /// The option of that name; throws std::exception when there is none.
    [[nodiscard]] Option option(const std::string& name) const;

    /// The command behind this one that has been parsed.
    [[nodiscard]] std::optional<Command> chosen() const;
    /// The words that were not understood, here and in the commands behind.
    [[nodiscard]] std::vector<std::string> remaining() const;

private:
    CLI::App* app;
};

/// All that a program understands.
class Grammar {
public:
    Grammar(const std::string& description, const std::string& program);
    ~Grammar();
    Grammar(const Grammar&) = delete;
    Grammar& operator=(const Grammar&) = delete;

    [[nodiscard]] Command root() const { return Command(*app); }

    /// Reads what stands behind the program's name. Throws Refusal or Asked.
    void parse(const std::vector<std::string>& words) const;

private:
    std::unique_ptr<CLI::App> app;
};

} // namespace command_line
