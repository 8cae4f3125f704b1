// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "command-line/Grammar.hpp"

#include <gtest/gtest.h>

namespace {

using command_line::Asked;
using command_line::Command;
using command_line::Grammar;
using command_line::Option;
using command_line::Refusal;
using Words = std::vector<std::string>;

std::string refusalOf(const Grammar& grammar, const Words& words) {
    try {
        grammar.parse(words);
    } catch (const Refusal& refusal) {
        return refusal.what();
    }
    return "";
}

std::string answerTo(const Grammar& grammar, const Words& words) {
    try {
        grammar.parse(words);
    } catch (const Asked& asked) {
        return asked.what();
    }
    return "";
}

TEST(Grammar, OptionsFillTheirVariables) {
    const Grammar grammar("", "program");
    const Command root = grammar.root();
    std::string text;
    int number = 0;
    unsigned size = 0;
    bool flag = false;
    std::string optional;
    Words each;
    Words read;
    Words rest;
    root.addOption("-t,--text", text, "");
    root.addOption("--number", number, "");
    root.addOption("--size", size, "");
    root.addFlag("--flag", flag, "");
    root.addFlag("--optional{alone}", optional, "");
    root.addOption("--each", each, "").oneEachTime();
    root.addOption(
        "--read", [&](const std::string& value) { read.push_back(value); }, "");
    root.addOption("REST", rest, "");
    grammar.parse({"-t", "a b", "--number=-3", "--size", "7", "--flag", "--optional", "--each", "x",
                   "--each", "y", "--read", "z", "1", "2"});
    EXPECT_EQ(text, "a b");
    EXPECT_EQ(number, -3);
    EXPECT_EQ(size, 7U);
    EXPECT_TRUE(flag);
    EXPECT_EQ(optional, "alone");
    EXPECT_EQ(each, (Words{"x", "y"}));
    EXPECT_EQ(read, Words{"z"});
    EXPECT_EQ(rest, (Words{"1", "2"}));
}

TEST(Grammar, ARefusalSaysWhatIsWrong) {
    const Grammar grammar("", "program");
    const Command root = grammar.root();
    int mode = 0;
    int bits = 0;
    std::string state;
    std::string word;
    std::string other;
    root.addOption("--mode", mode, "").range(0, 3);
    root.addOption("--bits", bits, "").oneOf({8, 16});
    root.addOption("--state", state, "").oneOf({"on", "off"});
    const Option first = root.addOption("--word", word, "").check([](const std::string& typed) {
        return typed == "good" ? "" : "not good";
    });
    root.addOption("--other", other, "").excludes(first);
    root.addOption(
        "--port", [](const std::string&) { throw Refusal("--port", "no port"); }, "");
    EXPECT_EQ(refusalOf(grammar, {"--mode", "4"}), "--mode: Value 4 not in range 0 to 3");
    EXPECT_EQ(refusalOf(grammar, {"--bits", "9"}), "--bits: 9 not in {8,16}");
    EXPECT_EQ(refusalOf(grammar, {"--state", "up"}), "--state: up not in {on,off}");
    EXPECT_EQ(refusalOf(grammar, {"--word", "bad"}), "--word: not good");
    EXPECT_EQ(refusalOf(grammar, {"--word", "good", "--other", "x"}),
              "--word excludes --other: leave one of them out");
    EXPECT_EQ(refusalOf(grammar, {"--port", "1"}), "--port: no port");
    EXPECT_EQ(refusalOf(grammar, {"--mode", "3", "--bits", "8", "--state", "on"}), "");
}

TEST(Grammar, AnOptionIsTakenFromItsVariable) {
    const Grammar grammar("", "program");
    std::string device;
    grammar.root().addOption("--device", device, "").environment("GRAMMAR_TEST_DEVICE");
    ASSERT_EQ(setenv("GRAMMAR_TEST_DEVICE", "one", 1), 0);
    grammar.parse({});
    EXPECT_EQ(device, "one");
    grammar.parse({"--device", "two"});
    EXPECT_EQ(device, "two");
    ASSERT_EQ(unsetenv("GRAMMAR_TEST_DEVICE"), 0);
}

TEST(Grammar, TheChosenCommandIsCalled) {
    const Grammar grammar("", "program");
    const Command root = grammar.root();
    root.requireCommand();
    const Command bus = root.addCommand("bus", "The bus");
    const Command read = bus.addCommand("read", "Reads");
    std::string called;
    read.onChosen([&] { called = "read"; });
    bus.addCommand("write", "Writes").onChosen([&] { called = "write"; });
    grammar.parse({"bus", "write"});
    EXPECT_EQ(called, "write");
    ASSERT_TRUE(root.chosen());
    ASSERT_TRUE(root.chosen()->chosen());
    EXPECT_EQ(root.chosen()->chosen()->name(), "write");
    EXPECT_EQ(refusalOf(grammar, {}), "A subcommand is required");
}

TEST(Grammar, WordsThatNobodyUnderstandsRemain) {
    const Grammar grammar("", "program");
    grammar.root().requireCommand();
    (void)grammar.root().addCommand("list", "");
    const Command rest = grammar.root().addCommand("rest", "");
    rest.passThrough();
    EXPECT_NE(refusalOf(grammar, {"list", "more"}), "");
    EXPECT_EQ(grammar.root().remaining(), Words{"more"});
    grammar.parse({"rest", "--device", "-x", "list"});
    EXPECT_EQ(rest.remaining(), (Words{"--device", "-x", "list"}));
}

TEST(Grammar, HelpAndVersionAreAnswers) {
    const Grammar grammar("Does it", "program");
    const Command root = grammar.root();
    root.setVersion("1.2");
    root.setFooter("That is all");
    (void)root.addCommand("shown", "Is listed");
    root.addCommand("secret", "Is not").hide();
    EXPECT_EQ(answerTo(grammar, {"--version"}), "1.2\n");
    EXPECT_EQ(answerTo(grammar, {"--help"}), R"(Does it
Usage: program [OPTIONS] [SUBCOMMAND]

Options:
  -h,--help                   Print this help message and exit
  --version                   Display program version information and exit

Subcommands:
  shown                       Is listed

That is all
)");
}

TEST(Grammar, WhatWasAddedCanBeWalked) {
    const Grammar grammar("", "program");
    const Command command = grammar.root().addCommand("read", "");
    std::string text;
    Words words;
    bool flag = false;
    command.addOption("-t,--text", text, "");
    command.addFlag("--flag", flag, "");
    command.addOption("BYTES", words, "");
    const Option read = command.option("--text");
    EXPECT_EQ(read.name(), "--text");
    EXPECT_EQ(read.maxValues(), 1);
    EXPECT_TRUE(read.isCalled("-t"));
    EXPECT_FALSE(read.isCalled("--flag"));
    EXPECT_FALSE(read.isOperand());
    EXPECT_EQ(command.option("--flag").maxValues(), 0);
    EXPECT_EQ(command.option("BYTES").name(), "BYTES");
    EXPECT_TRUE(command.option("BYTES").isOperand());
    EXPECT_GT(command.option("BYTES").maxValues(), 1);
    Words longNames;
    for (const Option option : command.options()) {
        const Words names = option.longNames();
        longNames.insert(longNames.end(), names.begin(), names.end());
    }
    EXPECT_EQ(longNames, (Words{"--help", "--text", "--flag"}));
    ASSERT_EQ(grammar.root().commands().size(), 1U);
    ASSERT_TRUE(command.parent());
    EXPECT_FALSE(command.parent()->parent());
}

} // namespace
