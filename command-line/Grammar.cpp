// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "command-line/Grammar.hpp"

#include <CLI/CLI.hpp>

#include <sstream>
#include <utility>

namespace command_line {

Option Option::required(bool isRequired) const {
    return Option(*option->required(isRequired));
}

Option Option::typeName(const std::string& name) const {
    return Option(*option->type_name(name));
}

Option Option::help(const std::string& text) const {
    return Option(*option->description(text));
}

Option Option::defaultText(const std::string& text) const {
    return Option(*option->default_str(text));
}

Option Option::environment(const std::string& variable) const {
    return Option(*option->envname(variable));
}

Option Option::range(int min, int max) const {
    return Option(*option->check(CLI::Range(min, max)));
}

Option Option::oneOf(const std::vector<std::string>& values) const {
    return Option(*option->check(CLI::IsMember(values)));
}

Option Option::oneOf(std::initializer_list<int> values) const {
    return Option(*option->check(CLI::IsMember(values)));
}

Option Option::check(std::function<std::string(const std::string&)> complaintAbout) const {
    return Option(*option->check(std::move(complaintAbout)));
}

Option Option::excludes(Option other) const {
    return Option(*option->excludes(other.option));
}

Option Option::excludes(const std::string& other) const {
    return Option(*option->excludes(other));
}

Option Option::oneEachTime() const {
    return Option(*option->allow_extra_args(false));
}

Option Option::repeatable() const {
    return Option(*option->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll));
}

bool Option::wasGiven() const {
    return !option->empty();
}

bool Option::isOperand() const {
    return option->get_positional();
}

int Option::maxValues() const {
    return option->get_items_expected_max();
}

std::string Option::name() const {
    return option->get_lnames().empty() ? option->get_name(true)
                                        : "--" + option->get_lnames().front();
}

std::vector<std::string> Option::longNames() const {
    std::vector<std::string> names;
    for (const std::string& name : option->get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

bool Option::isCalled(const std::string& typed) const {
    return option->check_name(typed);
}

Command Command::addCommand(const std::string& name, const std::string& help) const {
    return Command(*app->add_subcommand(name, help));
}

Option Command::addOption(const std::string& names, std::string& value,
                          const std::string& help) const {
    return Option(*app->add_option(names, value, help));
}

Option Command::addOption(const std::string& names, int& value, const std::string& help) const {
    return Option(*app->add_option(names, value, help));
}

Option Command::addOption(const std::string& names, unsigned& value,
                          const std::string& help) const {
    return Option(*app->add_option(names, value, help));
}

Option Command::addOption(const std::string& names, std::vector<std::string>& values,
                          const std::string& help) const {
    return Option(*app->add_option(names, values, help));
}

Option Command::addOption(const std::string& names,
                          const std::function<void(const std::string&)>& read,
                          const std::string& help) const {
    return Option(*app->add_option_function(names, read, help));
}

Option Command::addOption(const std::string& names,
                          const std::function<void(const std::vector<std::string>&)>& read,
                          const std::string& help) const {
    return Option(*app->add_option_function(names, read, help));
}

Option Command::addFlag(const std::string& names, bool& value, const std::string& help) const {
    return Option(*app->add_flag(names, value, help));
}

Option Command::addFlag(const std::string& names, std::string& value,
                        const std::string& help) const {
    return Option(*app->add_flag(names, value, help));
}

void Command::setVersion(const std::string& version) const {
    app->set_version_flag("--version", version);
}

void Command::setFooter(const std::string& text) const {
    app->footer(text);
}

void Command::hide() const {
    app->group("");
}

void Command::requireCommand() const {
    app->require_subcommand(1);
}

void Command::takeOptionsAnywhere() const {
    app->fallthrough();
}

void Command::passThrough() const {
    app->fallthrough(false)->prefix_command();
}

void Command::onChosen(std::function<void()> action) const {
    app->callback(std::move(action));
}

void Command::excludeOthers(Option option) const {
    for (CLI::Option* const other : app->get_options()) {
        if (other != option.option && other != app->get_help_ptr()) {
            option.option->excludes(other);
        }
    }
}

const std::string& Command::name() const {
    return app->get_name();
}

bool Command::isHidden() const {
    return app->get_group().empty();
}

bool Command::requiresCommand() const {
    return app->get_require_subcommand_min() > 0;
}

std::optional<Command> Command::parent() const {
    CLI::App* const above = app->get_parent();
    return above == nullptr ? std::nullopt : std::optional(Command(*above));
}

std::vector<Command> Command::commands() const {
    std::vector<Command> commands;
    for (CLI::App* const below : app->get_subcommands(nullptr)) {
        commands.emplace_back(*below);
    }
    return commands;
}

std::vector<Option> Command::options() const {
    std::vector<Option> options;
    for (CLI::Option* const each : app->get_options()) {
        options.emplace_back(*each);
    }
    return options;
}

Option Command::option(const std::string& name) const {
    return Option(*app->get_option(name));
}

std::optional<Command> Command::chosen() const {
    const std::vector<CLI::App*> chosen = app->get_subcommands();
    return chosen.empty() ? std::nullopt : std::optional(Command(*chosen.front()));
}

std::vector<std::string> Command::remaining() const {
    return app->remaining(true);
}

Grammar::Grammar(const std::string& description, const std::string& program)
    : app(std::make_unique<CLI::App>(description, program)) {}

Grammar::~Grammar() = default;

void Grammar::parse(const std::vector<std::string>& words) const {
    try {
        app->parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::Success& asked) {
        std::ostringstream answer;
        app->exit(asked, answer, answer);
        throw Asked(answer.str());
    } catch (const CLI::ExcludesError& error) {
        throw Refusal(std::string(error.what()) + ": leave one of them out");
    } catch (const CLI::ParseError& error) {
        throw Refusal(error.what());
    }
}

} // namespace command_line
