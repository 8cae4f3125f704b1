// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/BoardFile.hpp"

#include "support/TemporaryDirectory.hpp"

#include <algorithm>
#include <fstream>

#include <gtest/gtest.h>

using virtual_adapter::BoardFile;
using virtual_adapter::BoardFileError;

namespace {

/// What is said about a file that is not right.
std::string complaint(const std::string& text) {
    try {
        const BoardFile file("board.toml", text);
    } catch (const BoardFileError& error) {
        return error.what();
    }
    return "nothing";
}

/// Of a board with one entry.
std::string complaintAboutEntry(const std::string& entry) {
    return complaint("board = 1\n" + entry);
}

TEST(BoardFile, TheVersionComesFirst) {
    EXPECT_EQ(complaint(""), "board.toml:1: the first key of a board is its version; allowed is: "
                             "board = 1");
    EXPECT_EQ(complaint("# mine\nboard = 2\nanything = 1\n"),
              "board.toml:2: the first key of a board is its version; allowed is: board = 1");
    EXPECT_EQ(complaint("board = \"1\""), "board.toml:1: the first key of a board is its version; "
                                          "allowed is: board = 1");
}

TEST(BoardFile, WhatIsNoTomlIsToldWithItsLine) {
    const std::string text = complaint("board = 1\n[[i2c]\n");
    EXPECT_EQ(text.rfind("board.toml:2: ", 0), 0U) << text;
}

TEST(BoardFile, UnknownKeysAreToldWithTheKnownOnes) {
    EXPECT_EQ(complaint("board = 1\nreplaces = true\n"),
              "board.toml:2: unknown key 'replaces'; a board has board, replace, i2c, spi, uart, "
              "gpio, i3c, at");
    EXPECT_EQ(complaintAboutEntry("[[i2c]]\nbus = 0\naddress = 0x50\npart = \"24c02\"\n"
                                  "content = \"hex:00\"\n"),
              "board.toml:6: unknown key 'content'; i2c has part, bus, address, supply, contents, "
              "write_protected");
    EXPECT_EQ(complaintAboutEntry("[gpio]\nwire = []"),
              "board.toml:3: unknown key 'wire'; gpio has wires");
}

TEST(BoardFile, ASettingThatIsNotAllowedIsToldWithWhatIs) {
    const std::string sensor = "[[i2c]]\nbus = 0\npart = \"lm75\"\naddress = ";
    EXPECT_EQ(complaintAboutEntry(sensor + "0x78"),
              "board.toml:5: address: this is not allowed; allowed is a number from 0x08 to 0x77");
    EXPECT_EQ(complaintAboutEntry(sensor + "-1"),
              "board.toml:5: address: this is not allowed; allowed is a number from 0x08 to 0x77");
    EXPECT_EQ(complaintAboutEntry(sensor + "\"0x48\""),
              "board.toml:5: address: this is not allowed; allowed is a number from 0x08 to 0x77");
    EXPECT_EQ(
        complaintAboutEntry(sensor + "0x48\ntemperature = \"warm\""),
        "board.toml:6: temperature: this is not allowed; allowed is a decimal number from -55 "
        "to 125 degrees Celsius");
    EXPECT_EQ(
        complaintAboutEntry(sensor + "0x48\ntemperature = nan"),
        "board.toml:6: temperature: this is not allowed; allowed is a decimal number from -55 "
        "to 125 degrees Celsius");
    EXPECT_EQ(complaintAboutEntry("[[i2c]]\nbus = 0\naddress = 0x50\npart = \"24c02\"\n"
                                  "contents = \"Hello\"\nwrite_protected = 1"),
              "board.toml:6: contents: this is not allowed; allowed is \"hex:0011ff\", "
              "\"str:text\" or \"@file\" of at most 256 bytes\n"
              "board.toml:7: write_protected: this is not allowed; allowed is true or false");
    EXPECT_EQ(
        complaintAboutEntry("[[i3c]]\npart = \"registers\"\npid = \"46100aa\""),
        "board.toml:4: pid: this is not allowed; allowed is 12 hexadecimal digits, not all 0, "
        "such as \"0461000000aa\"");
}

TEST(BoardFile, WhatIsMissingIsNamed) {
    EXPECT_EQ(complaintAboutEntry("[[i2c]]\nbus = 0\npart = \"lm75\""),
              "board.toml:2: i2c: address is missing; allowed is a number from 0x08 to 0x77");
    EXPECT_EQ(complaintAboutEntry("[[spi]]\nchip_select = 0"),
              "board.toml:2: spi: part is missing; allowed is one of \"nor-flash\", "
              "\"registers\", \"loopback\", \"program\"");
    EXPECT_EQ(complaintAboutEntry("[[at]]\nrequest = 1"),
              "board.toml:2: tell: allowed is one line of text, such as \"gpio drive 4 1\"");
}

TEST(BoardFile, NoTwoPartsShareAnAddress) {
    EXPECT_EQ(complaint("board = 1\nreplace = false\n"
                        "[[i2c]]\nbus = 0\naddress = 0x48\npart = \"lm75\"\n"),
              "board.toml:5: address: the lm75 of the factory board is there already");
    const std::string eeproms = "[[i2c]]\nbus = 0\naddress = 0x50\npart = \"24c04\"\n"
                                "[[i2c]]\nbus = 0\naddress = 0x51\npart = \"24c02\"\n";
    EXPECT_EQ(complaintAboutEntry(eeproms),
              "board.toml:8: address: the 24c04 of line 2 is there already");
    EXPECT_EQ(
        complaintAboutEntry("[[i2c]]\nbus = 0\naddress = 0x51\npart = \"24c04\"\n"),
        "board.toml:4: address: a 24c04 answers to 2 addresses; allowed are multiples of 2 up "
        "to 0x76");
    EXPECT_EQ(complaintAboutEntry("[[spi]]\nchip_select = 3\npart = \"loopback\"\n"
                                  "[[spi]]\nchip_select = 3\npart = \"loopback\"\n"),
              "board.toml:6: chip_select: the loopback of line 2 is there already");
    EXPECT_EQ(complaintAboutEntry("[[i3c]]\npart = \"memory\"\n[[i3c]]\npart = \"memory\"\n"
                                  "static_address = 0x20\n"),
              "board.toml:4: pid: the memory of line 2 has it already");
    EXPECT_EQ(complaintAboutEntry("[[i3c]]\npart = \"memory\"\n"
                                  "[[i3c]]\naddress = 0x54\npart = \"lm75\"\n"),
              "board.toml:5: address: the memory of line 2 is there already");
}

TEST(BoardFile, AddressesThatI3cReservesAreRefused) {
    EXPECT_EQ(complaintAboutEntry("[[i3c]]\npart = \"memory\"\nstatic_address = 0x3E\n"),
              "board.toml:2: static_address: 0x3E is reserved on the I3C bus");
    EXPECT_EQ(complaintAboutEntry("[[i3c]]\npart = \"memory\"\nstatic_address = 0x78\n"),
              "nothing");
    EXPECT_EQ(complaintAboutEntry("[[i3c]]\npart = \"memory\"\nstatic_address = 0x78\n"
                                  "[[i3c]]\naddress = 0x20\npart = \"lm75\"\n"),
              "board.toml:2: static_address: 0x78 is reserved on the I3C bus");
}

TEST(BoardFile, SettingsThatContradictOneAnotherAreRefused) {
    const std::string target = "[[i3c]]\npart = \"memory\"\n";
    EXPECT_EQ(complaintAboutEntry(target + "max_ibi_payload = 8"),
              "board.toml:4: max_ibi_payload: bcr bit 2 says that interrupts carry no payload; "
              "allowed is 0");
    EXPECT_EQ(
        complaintAboutEntry(target + "bcr = 0x24"),
        "board.toml:4: bcr: bit 2 promises a payload of interrupts, bit 1 says that there are "
        "none");
    EXPECT_EQ(complaintAboutEntry(target + "bcr = 0x00"),
              "board.toml:2: hdr_ddr: bcr bit 5 says that there are no advanced capabilities; "
              "allowed is false");
    EXPECT_EQ(
        complaintAboutEntry(target + "fastest_rate = \"8M\""),
        "board.toml:4: fastest_rate: bcr bit 0 says that the data speed has no limit; allowed "
        "is \"12.5M\"");
    EXPECT_EQ(complaintAboutEntry("[[spi]]\nchip_select = 0\npart = \"nor-flash\"\nsize = 65537"),
              "board.toml:5: size: 65537 is no power of two");
    EXPECT_EQ(
        complaintAboutEntry("[[spi]]\nchip_select = 0\npart = \"nor-flash\"\n"
                            "write_back = true"),
        "board.toml:5: write_back: there is no file to write to; allowed is true only with an "
        "image such as \"@flash.bin\"");
    EXPECT_EQ(
        complaintAboutEntry("[[spi]]\nchip_select = 0\npart = \"registers\"\n"
                            "registers = 129"),
        "board.toml:5: registers: 129 registers have addresses in which the read_bits are set");
}

TEST(BoardFile, RegistersThatDoNotExistAreRefused) {
    const std::string map = "[[i2c]]\nbus = 0\naddress = 0x20\npart = \"registers\"\n"
                            "registers = 16\n";
    EXPECT_EQ(complaintAboutEntry(map + "contents = { 0x10 = 0 }"),
              "board.toml:7: contents: register 0x10 is behind the last; there are 16");
    EXPECT_EQ(complaintAboutEntry(map + "contents = { 0x0F = \"hex:0102\" }"),
              "board.toml:7: contents: register 0x0F: 2 bytes reach behind the last register");
    EXPECT_EQ(complaintAboutEntry(map + "contents = { 0 = \"hex:0102\", 1 = 3 }"),
              "board.toml:7: contents: register 0x01 already has bytes of the one before it");
    EXPECT_EQ(complaintAboutEntry(map + "contents = { 0x0 = 1, 0x00 = 2 }"),
              "board.toml:7: contents, register 0x00 is there already");
    EXPECT_EQ(complaintAboutEntry(map + "contents = { id = 1 }"),
              "board.toml:7: contents: 'id' is no register; allowed is a number such as 0xD0");
    EXPECT_EQ(complaintAboutEntry(map + "read_only = [\"0x00-0x10\"]"),
              "board.toml:7: read_only: register 0x10 is behind the last; there are 16");
    EXPECT_EQ(complaintAboutEntry("[[i2c]]\nbus = 0\naddress = 0x20\npart = \"registers\"\n"
                                  "registers = 257\n"),
              "board.toml:6: registers: an address of 1 byte reaches 256 registers, not 257");
}

TEST(BoardFile, ASupplyIsSwitchedByOnePart) {
    EXPECT_EQ(complaintAboutEntry("[[i3c]]\npart = \"memory\"\nsupply = \"rail\"\n"),
              "board.toml:2: supply: no part switches 'rail'");
    EXPECT_EQ(complaintAboutEntry("[[i3c]]\npart = \"companion\"\nswitches = \"a\"\n"
                                  "supply = \"b\"\n"),
              "board.toml:5: supply: what switches a supply cannot hang on one");
}

TEST(BoardFile, WiresJoinDifferentPins) {
    const std::string allowed =
        "board.toml:3: wires: this is not allowed; allowed are lists of two "
        "and more different pins from 0 to 7, such as [[0, 1]]";
    for (const char* wires : {"[0, 1]", "[[0]]", "[[0, 0]]", "[[0, 8]]", "[[0, \"1\"]]", "1"}) {
        EXPECT_EQ(complaintAboutEntry(std::string("[gpio]\nwires = ") + wires), allowed) << wires;
    }
}

TEST(BoardFile, FilesThatCannotBeReadAreNamed) {
    const TemporaryDirectory directory;
    const std::string board = directory.path().string() + "/board.toml";
    try {
        const BoardFile file(board);
        ADD_FAILURE() << "nothing was read";
    } catch (const BoardFileError& error) {
        ADD_FAILURE() << "not there, it has no lines that could be wrong: " << error.what();
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()), "cannot read " + board + ": there is no such file");
    }
    std::ofstream(board) << "board = 1\n[[i2c]]\nbus = 1\naddress = 0x50\npart = \"24c02\"\n"
                            "contents = \"@.\"\n";
    try {
        const BoardFile file(board);
        ADD_FAILURE() << "a directory was read";
    } catch (const BoardFileError& error) {
        EXPECT_EQ(std::string(error.what()), board + ":6: contents: cannot read " +
                                                 directory.path().string() +
                                                 "/.: it is no regular file");
    }
}

TEST(BoardFile, AProgramThatIsNotThereIsNamed) {
    EXPECT_EQ(complaintAboutEntry("[[i2c]]\nbus = 1\naddress = 0x50\npart = \"program\"\n"
                                  "command = [\"/no/such/part\"]\n"),
              "board.toml:6: command: there is no program '/no/such/part' that can be executed");
}

TEST(BoardFile, WhatNestsDeeperThanABoardDoesNotReachTheParser) {
    std::string dots = "a";
    std::string brackets = "a = ";
    for (int i = 0; i < 100'000; ++i) {
        dots += ".a";
        brackets += "[";
    }
    const std::string expected = "board.toml:2: this nests deeper than a board does";
    EXPECT_EQ(complaint("board = 1\n" + dots + " = 1"), expected);
    EXPECT_EQ(complaint("board = 1\n[" + dots + "]"), expected);
    EXPECT_EQ(complaint("board = 1\n" + brackets), expected);
    EXPECT_EQ(complaint("board = 1\n'x' " + dots + " = 1"), expected);
    EXPECT_EQ(complaint("board = 1\n[[at]]\nrequest = 1\ntell = \"......................\"\n"
                        "# ....................\n"),
              "nothing");
}

TEST(BoardFile, LettersBeyondAsciiStandInTextsAndCommentsOnly) {
    EXPECT_EQ(complaint("board = 1\nx = \xCA\x88 8\n"),
              "board.toml:2: letters beyond ASCII stand in texts and comments only");
    EXPECT_EQ(complaint("board = 1 \xC2\xB5"),
              "board.toml:1: letters beyond ASCII stand in texts and comments only");
    EXPECT_EQ(complaint("board = 1\nx = 5'\xCA\x88'"), "board.toml:2: no text begins here");
    EXPECT_EQ(complaint("board = 1\nx = 'a''\xCA\x88'"), "board.toml:2: no text begins here");
    // All of a bare value, up to white space, is the parser's, quotes and brackets included.
    EXPECT_EQ(complaint("board = 1\nx = 5='\xCA\x88'"), "board.toml:2: no value begins here");
    EXPECT_EQ(complaint("board = 1\nx = [5='\xCA\x88']"), "board.toml:2: no value begins here");
    EXPECT_EQ(complaint("board = 1\nx = {a = 5='\xCA\x88'}"), "board.toml:2: no value begins here");
    EXPECT_EQ(complaint("board = 1\nx = 5.'\xCA\x88'"), "board.toml:2: no text begins here");
    EXPECT_EQ(complaint("board = 1\nx = [5.'\xCA\x88']"), "board.toml:2: no text begins here");
    const std::string noList = "board.toml:2: no list and no table begins here";
    EXPECT_EQ(complaint("board = 1\nx = 5['\xCA\x88']"), noList);
    EXPECT_EQ(complaint("board = 1\nx = 5{'\xCA\x88' = 1}"), noList);
    const std::string expected =
        "board.toml:2: a text does not go on behind a backslash with this letter";
    EXPECT_EQ(complaint("board = 1\nx = \"\"\"a\\\n  \xC3\xA4\"\"\"\n"), expected);
    EXPECT_EQ(complaint("board = 1\nx = \"\"\"\\\xC3\xA4\"\"\"\n"), expected);
    EXPECT_EQ(complaint("\xEF\xBB\xBF"
                        "board = 1 # \xC2\xB5\n[[i2c]]\nbus = 0\naddress = 0x50\n"
                        "part = \"24c02\"\ncontents = \"\"\"str:\xC3\xA4\\\\\xC3\xA4\"\"\"\"\n"),
              "nothing");
    EXPECT_EQ(complaint("board = 1\n['\xCA\x88'.'\xC3\xA4']\n'b'.'\xC3\xA4' = [[{'\xC2\xB5' = 1, "
                        "'\xCA\x88' = [{}]}],\n # \xC2\xB5\n ['\xC3\xA4',\n]]\n"),
              "board.toml:2: unknown key '\xCA\x88'; a board has board, replace, i2c, spi, uart, "
              "gpio, i3c, at");
}

TEST(BoardFile, OfVeryManyProblemsTheFirst20AreTold) {
    std::string text = "board = 1\n";
    for (int i = 0; i < 30; ++i) {
        text += "x" + std::to_string(i) + " = 1\n";
    }
    const std::string told = complaint(text);
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 20);
    EXPECT_EQ(told.substr(told.rfind('\n') + 1), "board.toml: and 10 more");
}

} // namespace
