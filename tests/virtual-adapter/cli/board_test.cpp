// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/TemporaryDirectory.hpp"
#include "virtual-adapter/cli/RunProgram.hpp"

#include <fstream>

namespace {

const std::string veltra = "'" VELTRA "' -V 3.3 ";
const std::string tell = "'" + virtualAdapter + "' tell ";

class BoardOption : public testing::Test {
protected:
    std::string write(const std::string& name, const std::string& content) const {
        const std::string path = directory.path() / name;
        std::ofstream(path) << content;
        return path;
    }

    const TemporaryDirectory directory;
};

std::string sensorThatIs(const std::string& temperature) {
    return "board = 1\n[[i2c]]\nbus = 0\naddress = 0x4A\npart = \"lm75\"\ntemperature = " +
           temperature + "\n";
}

const std::string readSensor = veltra + "i2c read 0x4A 2 -r 0 --pull-up 4k7";

TEST_F(BoardOption, TheProgramMeetsTheBoardOfTheFileUntilItIsTold) {
    const std::string board = write("board.toml", sensorThatIs("25.5"));
    const ProcessResult result = run(
        {"--board", board}, {"sh", "-c",
                             readSensor + " && " + tell + "i2c 0 0x4A set temperature 85.5 && " +
                                 readSensor + " && " + tell + "reset && " + readSensor});
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output, "00: 19 80                                            ..\n"
                             "00: 55 80                                            U.\n"
                             "00: 19 80                                            ..\n");
}

TEST_F(BoardOption, TheFactoryBoardIsGone) {
    const std::string board = write("board.toml", sensorThatIs("25.5"));
    const ProcessResult result =
        run({"--board", board}, {"sh", "-c", veltra + "--json i2c scan --pull-up 4k7"});
    EXPECT_EQ(result.output, "{\"op\":\"i2c.scan\",\"bus\":0,\"addresses\":[74]}\n");
}

TEST_F(BoardOption, WhatIsToHappenBeforeARequestHappens) {
    const std::string board =
        write("board.toml", "board = 1\n[[at]]\nrequest = 2\ntell = \"gpio drive 4 1\"\n");
    const ProcessResult result =
        run({"--board", board}, {"sh", "-c", veltra + "gpio get 4 && " + veltra + "gpio get 4"});
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output, "4=1\n4=1\n");
}

TEST_F(BoardOption, EachOfSeveralAdaptersHasABoardOfItsOwn) {
    const std::string cold = write("cold.toml", sensorThatIs("-10"));
    const std::string warm = write("warm.toml", sensorThatIs("40"));
    const ProcessResult result =
        run({"--adapter", "ONE=" + cold, "--adapter", "TWO=" + warm},
            {"sh", "-c", readSensor + " -d ONE; VELTRA_DEVICE=TWO " + readSensor});
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output, "00: f6 00                                            ..\n"
                             "00: 28 00                                            (.\n");
}

TEST_F(BoardOption, AFileThatIsNotRightIsToldWithItsLine) {
    const std::string board = write("board.toml", "board = 2\n");
    const ProcessResult result = run({"--board", board}, {"true"});
    EXPECT_EQ(result.status, 125);
    EXPECT_NE(result.errors.find(board + ":1: "), std::string::npos) << result.errors;
}

TEST_F(BoardOption, AFileThatIsNotThereIsToldInOneLine) {
    for (const std::string option : {"--board=", "--adapter=A="}) {
        const ProcessResult result = run({option + "/no/such/board.toml"}, {"true"});
        EXPECT_EQ(result.status, 125);
        EXPECT_EQ(result.errors,
                  "veltra-virtual-adapter: run: " + option.substr(0, option.find('=')) +
                      ": cannot read /no/such/board.toml: there is no such file. See: "
                      "veltra-virtual-adapter run --help\n");
    }
}

TEST_F(BoardOption, AnImageThatIsMissingIsNamedBeforeTheProgramStarts) {
    const std::string board = write("board.toml", "board = 1\n[[spi]]\nchip_select = 0\n"
                                                  "part = \"nor-flash\"\nimage = \"@gone.bin\"\n");
    const ProcessResult result = run({"--board", board}, {"echo", "started"});
    EXPECT_EQ(result.status, 125);
    EXPECT_EQ(result.output, "");
    EXPECT_NE(result.errors.find("gone.bin"), std::string::npos) << result.errors;
}

} // namespace
