// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/BoardFile.hpp"

#include "board/FactoryBoard.hpp"

#include "support/TemporaryDirectory.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

using virtual_adapter::Board;
using virtual_adapter::BoardDescription;
using virtual_adapter::BoardFile;
using virtual_adapter::Bytes;
using virtual_adapter::factoryDescription;
using virtual_adapter::I2cDirection;
using virtual_adapter::I2cTarget;
using virtual_adapter::Place;

namespace {

BoardDescription read(const std::string& text) {
    return BoardFile("board.toml", text).description();
}

void write(const std::string& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

std::string contentsOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// --- The factory's ------------------------------------------------------------------------------

TEST(BoardFile, TheFactoryBoardsFileIsTheFactoryBoardPartByPart) {
    const BoardDescription fromFile = BoardFile(FACTORY_BOARD).description();
    const BoardDescription factory = factoryDescription();
    ASSERT_EQ(fromFile.parts.size(), factory.parts.size());
    for (size_t i = 0; i < factory.parts.size(); ++i) {
        EXPECT_TRUE(fromFile.parts[i] == factory.parts[i])
            << fromFile.parts[i].kind->name << " of line " << fromFile.parts[i].line;
    }
    EXPECT_EQ(fromFile.wires, factory.wires);
    EXPECT_TRUE(fromFile.stimuli.empty());
}

TEST(BoardFile, ReplaceFalseAddsToTheFactoryBoard) {
    const BoardDescription board = read("board = 1\nreplace = false\n"
                                        "[[i2c]]\nbus = 0\naddress = 0x20\npart = \"lm75\"\n");
    EXPECT_EQ(board.parts.size(), factoryDescription().parts.size() + 1);
    EXPECT_EQ(board.wires, factoryDescription().wires);
}

TEST(BoardFile, ABoardWithoutPartsIsEmpty) {
    EXPECT_TRUE(read("board = 1").parts.empty());
}

// --- What stands in it --------------------------------------------------------------------------

TEST(BoardFile, EveryKindOfEntryIsRead) {
    const BoardDescription board = read(R"(board = 1
[[i2c]]
bus = 0
address = 0x76
part = "registers"
registers = 256
contents = { 0xD0 = "hex:60", 0xF3 = 0x2A, 16 = "str:ab" }
read_only = ["0xD0", 0xD1, "0x88-0xA1"]

[[spi]]
chip_select = 2
part = "registers"
modes = [0]

[[i3c]]
part = "registers"
static_address = 0x68
pid = "0461000000aa"
bcr = 0x26
dcr = 0x44
max_write = 64
max_read = 64
max_ibi_payload = 8

[uart]
part = "loopback"

[gpio]
wires = [[0, 1, 2], [2, 3]]

[[at]]
request = 7
tell = "gpio drive 4 1"
[[at]]
request = 3
tell = "unplug"
[[at]]
request = 7
tell = "gpio drive 4 0"
)");
    using namespace virtual_adapter;
    const SettingValues& registers = board.parts.at(0).settings;
    EXPECT_EQ(registers.get<RegisterBytes>("contents"),
              (RegisterBytes{{0x10, {'a', 'b'}}, {0xD0, {0x60}}, {0xF3, {0x2A}}}));
    EXPECT_EQ(registers.get<RegisterRanges>("read_only"),
              (RegisterRanges{{0xD0, 0xD0}, {0xD1, 0xD1}, {0x88, 0xA1}}));
    EXPECT_EQ(registers.get<uint64_t>("width"), 1U);
    EXPECT_EQ(board.parts.at(0).line, 2U);
    EXPECT_EQ(board.parts.at(1).place, Place::Spi);
    EXPECT_EQ(board.parts.at(1).settings.get<Numbers>("modes"), Numbers{0});
    EXPECT_EQ(board.parts.at(2).place, Place::Uart);
    EXPECT_EQ(board.parts.at(3).place, Place::I3c);
    EXPECT_EQ(board.parts.at(3).settings.get<std::string>("pid"), "0461000000aa");
    EXPECT_EQ(board.wires, (std::vector<Numbers>{{0, 1, 2}, {2, 3}}));
    ASSERT_EQ(board.stimuli.size(), 3U);
    EXPECT_EQ(board.stimuli[0].text, "unplug");
    EXPECT_EQ(board.stimuli[0].line, 36U);
    EXPECT_EQ(board.stimuli[1].text, "gpio drive 4 1");
    EXPECT_EQ(board.stimuli[2].text, "gpio drive 4 0");
}

TEST(BoardFile, AnI2cDeviceHangsOnASupplyThatAnotherPartSwitches) {
    const Board board = BoardFile("board.toml", R"(board = 1
[[i3c]]
part = "companion"
switches = "rail"
[[i2c]]
bus = 0
address = 0x48
part = "lm75"
supply = "rail"
)")
                            .build();
    I2cTarget& sensor = *board.i2c[0].targetAt(0x48);
    EXPECT_FALSE(sensor.start(I2cDirection::Write));
    board.powerDomains.at("rail").supply(true);
    EXPECT_TRUE(sensor.start(I2cDirection::Write));
    sensor.writeMessage({0x03, 0x01});
    board.powerDomains.at("rail").supply(false);
    EXPECT_EQ(sensor.readMessage(1), Bytes{0xFF});
    board.powerDomains.at("rail").supply(true);
    sensor.start(I2cDirection::Write);
    sensor.writeMessage({0x03});
    EXPECT_EQ(sensor.readMessage(1), Bytes{80});
}

TEST(BoardFile, BytesComeFromAFileBesideIt) {
    const TemporaryDirectory directory;
    write(directory.path().string() + "/rom.bin", std::string("\x01\x02", 2));
    write(directory.path().string() + "/board.toml", "board = 1\n[[i2c]]\nbus = 1\naddress = 0x50\n"
                                                     "part = \"24c02\"\ncontents = \"@rom.bin\"\n");
    const BoardFile file(directory.path().string() + "/board.toml");
    EXPECT_EQ(file.description().parts.at(0).settings.get<Bytes>("contents"), (Bytes{1, 2}));
}

TEST(BoardFile, AnImageIsWrittenBackOnlyWhenToldAndReadAgainForTheNextBoard) {
    const TemporaryDirectory directory;
    const std::string image = directory.path().string() + "/flash.bin";
    for (const bool writeBack : {false, true}) {
        write(image, "ab");
        write(directory.path().string() + "/board.toml",
              std::string("board = 1\n[[spi]]\nchip_select = 0\npart = \"nor-flash\"\n"
                          "size = 65536\nimage = \"@flash.bin\"\nwrite_back = ") +
                  (writeBack ? "true" : "false"));
        const BoardFile file(directory.path().string() + "/board.toml");
        for (const uint8_t expected : {uint8_t{'a'}, static_cast<uint8_t>(writeBack ? 0 : 'a')}) {
            const Board board = file.build();
            virtual_adapter::SpiTarget& flash = *board.spi.targetAt(SpiChipSelect_0);
            EXPECT_EQ(flash.transfer({0x03, 0, 0, 0, 0}).back(), expected);
            flash.transfer({0x06});
            flash.transfer({0x02, 0, 0, 0, 0x00});
        }
        if (writeBack) {
            EXPECT_EQ(contentsOf(image), std::string(1, '\0') + "b" + std::string(65534, '\xFF'));
        } else {
            EXPECT_EQ(contentsOf(image), "ab");
        }
    }
}

} // namespace
