// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "completion/Completion.hpp"

#include "i3c/Ccc.hpp"

#include <algorithm>
#include <map>
#include <optional>

namespace veltra {

namespace {

using command_line::Command;
using command_line::Option;
using Words = std::vector<std::string>;

/// What the values of options and operands may be, by their names in the grammar.
const std::map<std::string, Words>& fixedValues() {
    static const std::map<std::string, Words> values = {
        {"--voltage", {"1.2", "1.8", "2.5", "3.3"}},
        {"--bus", {"0", "1"}},
        {"--pull-up", {"none", "10k", "4k7", "2k2"}},
        {"--clock", {"100k", "400k", "1M"}},
        {"--clock-max", {"1M", "4M", "8M", "20M"}},
        {"--cs", {"0", "1", "2", "3"}},
        {"--mode", {"0", "1", "2", "3"}},
        {"--bits", {"8", "16"}},
        {"--baud", {"9600", "19200", "38400", "57600", "115200", "230400", "460800", "921600"}},
        {"--parity", {"none", "odd", "even"}},
        {"--data", {"5", "6", "7", "8"}},
        {"--stop", {"1", "2"}},
        {"--reg-bytes", {"1", "2"}},
        {"--push-pull", {"12.5M", "10M", "8M", "6M", "4M", "2M", "1M"}},
        {"--open-drain", {"4M", "2.5M", "1M", "400k"}},
        {"--i2c", {"1M", "400k", "100k"}},
        {"--drive", {"2mA", "4mA", "8mA", "12mA"}},
        {"KIND", {"ibi", "hotjoin", "gpio", "uart"}},
        {"STATE", {"on", "off"}},
        {"PATTERN", {"reset", "exit"}},
        {"SHELL", {"bash"}},
        {"PIN", {"0", "1", "2", "3", "4", "5", "6", "7"}},
    };
    return values;
}

/// PIN=... once for each of what may stand behind it.
Words ofEachPin(const Words& values) {
    Words words;
    for (const char pin : std::string("01234567")) {
        for (const std::string& value : values) {
            words.push_back(std::string(1, pin) + "=" + value);
        }
    }
    return words;
}

/// Where a line of words leads in the grammar.
class Walk {
public:
    explicit Walk(Command root) : command(root) {}

    void step(const std::string& word) {
        if (awaiting) {
            noteDevice(word);
            awaiting.reset();
        } else if (word.size() > 1 && word[0] == '-') {
            takeOption(word);
        } else if (const std::optional<Command> next = subcommand(word)) {
            command = *next;
            operands = 0;
        } else {
            ++operands;
        }
    }

    [[nodiscard]] Command at() const { return command; }
    /// The option whose value comes next, where one awaits it.
    [[nodiscard]] const std::optional<Option>& option() const { return awaiting; }
    /// The operand that comes next, where one does.
    [[nodiscard]] std::optional<Option> operand() const {
        size_t number = 0;
        for (const Option candidate : command.options()) {
            if (candidate.isOperand() && (number++ == operands || candidate.maxValues() > 1)) {
                return candidate;
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] const std::string& device() const { return chosenDevice; }

private:
    [[nodiscard]] std::optional<Command> subcommand(const std::string& word) const {
        for (const Command candidate : command.commands()) {
            if (candidate.name() == word) {
                return candidate;
            }
        }
        return std::nullopt;
    }

    void takeOption(const std::string& word) {
        for (std::optional<Command> from = command; from; from = from->parent()) {
            for (const Option candidate : from->options()) {
                if (candidate.isCalled(word) && candidate.maxValues() > 0) {
                    awaiting = candidate;
                    return;
                }
            }
        }
    }

    void noteDevice(const std::string& word) {
        if (awaiting->name() == "--device") {
            chosenDevice = word;
        }
    }

    Command command;
    std::optional<Option> awaiting;
    size_t operands = 0;
    std::string chosenDevice;
};

Words namesOfCodes() {
    Words names;
    for (const CccName& code : cccNames()) {
        names.emplace_back(code.name);
    }
    return names;
}

Words valuesOf(const std::string& name, const Walk& walk, const LiveValues& live) {
    if (name == "--device") {
        return live.adapters();
    }
    if (name == "TARGET" || name == "VALUES") {
        return live.targets(walk.device());
    }
    if (name == "NAME") {
        return namesOfCodes();
    }
    if (name == "PIN=VALUE") {
        return ofEachPin({"0", "1"});
    }
    if (name == "PIN=MODE") {
        return ofEachPin({"in", "in-up", "in-down", "out", "out-high", "od"});
    }
    if (name == "--edge") {
        return ofEachPin({"rising", "falling", "both", "low", "high"});
    }
    const auto found = fixedValues().find(name);
    return found == fixedValues().end() ? Words() : found->second;
}

void appendCommands(Words& words, Command command) {
    for (const Command verb : command.commands()) {
        if (!verb.isHidden()) {
            words.push_back(verb.name());
        }
    }
}

void appendOptions(Words& words, Command command) {
    for (std::optional<Command> from = command; from; from = from->parent()) {
        for (const Option option : from->options()) {
            const Words names = option.longNames();
            words.insert(words.end(), names.begin(), names.end());
        }
    }
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
}

} // namespace

std::vector<std::string> complete(Command root, const std::vector<std::string>& words, size_t index,
                                  const LiveValues& live) {
    Walk walk(root);
    for (size_t at = 1; at < std::min(index, words.size()); ++at) {
        walk.step(words[at]);
    }
    const std::string begun = index < words.size() ? words[index] : "";
    Words candidates;
    if (walk.option()) {
        candidates = valuesOf(walk.option()->name(), walk, live);
    } else if (!begun.empty() && begun[0] == '-') {
        appendOptions(candidates, walk.at());
    } else {
        appendCommands(candidates, walk.at());
        if (const std::optional<Option> operand = walk.operand()) {
            const Words values = valuesOf(operand->name(), walk, live);
            candidates.insert(candidates.end(), values.begin(), values.end());
        }
    }
    const auto isOther = [&](const std::string& word) { return word.rfind(begun, 0) != 0; };
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(), isOther),
                     candidates.end());
    return candidates;
}

} // namespace veltra
