// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <fstream>

namespace {

ProcessResult check(const std::string& file) {
    return runProcess({virtualAdapter, "check", file});
}

TEST(Check, TheFactoryBoardIsPrintedByBus) {
    const ProcessResult result = check(FACTORY_BOARD);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output, R"(i2c 0
  0x48          lm75
  0x50          24c02       contents 31 bytes
  0x51          24c256
i2c 1
  0x1A2         ten-bit
  0x48          lm75        temperature -10.5
  0x50          24c02       contents 17 bytes
  0x51          24c256      contents hex:3332204b6942206f6e206275732031
spi
  0             nor-flash   image 25 bytes
  1             loopback
uart
                loopback
i3c
  0x4F          lm75        temperature 20  fastest_rate 400k
  0x50          24c02       contents 23 bytes
  fffe00101000  companion   switches socket
  fffe00201000  memory
  fffe00301000  temperature-sensor
  fffe00401000  accelerometer  supply socket
gpio
  0-1
  2-3
)");
    EXPECT_EQ(result.status, 0);
}

TEST(Check, EverySettingIsPrintedAsItIsWritten) {
    const TemporaryDirectory directory;
    const std::string board = directory.path() / "board.toml";
    std::ofstream(board) << R"(board = 1
[[i2c]]
bus = 0
address = 0x20
part = "registers"
auto_increment = false
contents = { 0xD0 = "hex:6061", 1 = 2 }
read_only = ["0xD0", "0x88-0xA1"]
[[spi]]
chip_select = 2
part = "registers"
modes = [1, 2]
read_bits = 0xC0
registers = 64
[[i2c]]
bus = 1
address = 0x21
part = "program"
command = ["sh", "-c", "exit 1"]
[[at]]
request = 7
tell = "gpio drive 4 1"
)";
    const ProcessResult result = check(board);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output, R"(i2c 0
  0x20          registers   auto_increment false  contents 0x01:02,0xD0:6061  read_only 0xD0,0x88-0xA1
i2c 1
  0x21          program     command sh -c exit 1
spi
  2             registers   registers 64  read_bits 0xC0  modes 1,2
at
  7             gpio drive 4 1
)");
    EXPECT_EQ(result.status, 0);
}

TEST(Check, WhatIsWrongIsToldWithItsLineAndTheStatusIs2) {
    const TemporaryDirectory directory;
    const std::string board = directory.path() / "board.toml";
    std::ofstream(board) << "board = 1\n[[spi]]\nchip_select = 4\npart = \"loopback\"\nspeed = 1\n";
    const ProcessResult result = check(board);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, board +
                                 ":3: chip_select: this is not allowed; allowed is a number from "
                                 "0 to 3\n" +
                                 board + ":5: unknown key 'speed'; spi has part, chip_select\n");
}

TEST(Check, AStimulusThatCannotBeIsToldWithItsLine) {
    const TemporaryDirectory directory;
    const std::string board = directory.path() / "board.toml";
    std::ofstream(board) << "board = 1\n[[at]]\nrequest = 7\ntell = \"gpio drive 9 1\"\n";
    const ProcessResult result = check(board);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, board + ":4: tell: '9' is no pin: expected 0 to 7\n");
}

TEST(Check, AFileThatIsNotThereIsNamed) {
    const ProcessResult result = check("/no/such/board.toml");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "veltra-virtual-adapter: cannot read /no/such/board.toml: there is no "
                             "such file\n");
}

TEST(Check, AFileIsRequired) {
    EXPECT_EQ(runProcess({virtualAdapter, "check"}).status, 125);
}

} // namespace
