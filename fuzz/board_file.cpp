// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Board files of any content: one that is refused says so with its line; one that is not is
// printed, and its parts, programs aside, are built and asked.
#include "Input.hpp"

#include "board/BoardTable.hpp"
#include "board/file/BoardFile.hpp"

#include <algorithm>
#include <string>

using fuzzing::require;
using namespace virtual_adapter;

namespace {

void askEveryone(Board& board) {
    for (I2cBus& bus : board.i2c) {
        for (unsigned address = 0; address < 0x80; ++address) {
            if (bus.start(static_cast<uint8_t>(address), I2cDirection::Write)) {
                bus.write({0x00, 0x01, 0x02});
                bus.start(static_cast<uint8_t>(address), I2cDirection::Read);
                bus.stop();
            }
        }
        bus.cyclePower();
    }
    for (unsigned chipSelect = 0; chipSelect <= SpiChipSelect_3; ++chipSelect) {
        if (SpiTarget* const target = board.spi.targetAt(static_cast<SpiChipSelect>(chipSelect))) {
            require(target->transfer({0x9F, 0, 0, 0}).size() == 4, "a transfer is full duplex");
            require(target->transfer({0x5A, 0, 0, 0, 0, 0}).size() == 6,
                    "a transfer is full duplex");
        }
    }
    for (I3cTarget* const target : board.i3c.powered()) {
        target->write({0x00, 0x01, 0x02});
        const size_t limit = target->maxReadLength();
        require(target->read(limit).size() == limit, "as much is read as was asked for");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        const BoardFile file("/nonexistent/board.toml", std::string(data, data + size));
        boardTable(file.description());
        const std::vector<Placement>& parts = file.description().parts;
        const bool isClosed = std::none_of(parts.begin(), parts.end(), [](const Placement& part) {
            return part.kind->isProgram() || part.settings.getOr<bool>("write_back");
        });
        if (isClosed) {
            Board board = buildBoard(file.description());
            askEveryone(board);
        }
    } catch (const BoardFileError& error) {
        require(std::string(error.what()).rfind("/nonexistent/board.toml:", 0) == 0,
                "a complaint begins with the file and the line");
    }
    return 0;
}
