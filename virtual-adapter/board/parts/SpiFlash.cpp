// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/SpiFlash.hpp"

#include <algorithm>
#include <array>
#include <string>

namespace virtual_adapter {

namespace {

enum Opcode : uint8_t {
    PageProgram = 0x02,
    ReadData = 0x03,
    WriteDisable = 0x04,
    ReadStatus = 0x05,
    WriteEnable = 0x06,
    SectorErase = 0x20,
    ReadIdentification = 0x9F,
};

constexpr size_t memorySize = size_t{256} * 1024;
constexpr size_t sectorSize = 4096;
constexpr size_t pageSize = 256;
/// The opcode and three address bytes.
constexpr size_t addressedCommandSize = 4;

/// Even parity makes the first byte nobody's manufacturer code in JEP106; the last one is the
/// power of two of the size.
constexpr std::array<uint8_t, 3> identification{0x56, 0x41, 0x12};

constexpr unsigned writeInProgressBit = 0x01;
constexpr unsigned writeEnableLatchBit = 0x02;

/// Address bits above the memory's size are ignored.
size_t addressIn(const Bytes& sent) {
    const size_t address =
        static_cast<size_t>(sent[1]) << 16U | static_cast<size_t>(sent[2]) << 8U | sent[3];
    return address % memorySize;
}

} // namespace

SpiFlash::SpiFlash() : memory(memorySize, 0xFF) {
    const std::string greeting = "Hello from the SPI flash!";
    std::copy(greeting.begin(), greeting.end(), memory.begin());
}

bool SpiFlash::understands(SpiMode mode, SpiChipSelectPolarity polarity) const {
    return (mode == SpiMode_0 || mode == SpiMode_3) && polarity == SpiChipSelectPolarity_ActiveLow;
}

Bytes SpiFlash::transfer(const Bytes& sent) {
    Bytes driven(sent.size(), undrivenByte);
    if (sent.empty()) {
        return driven;
    }
    const uint8_t opcode = sent.front();
    if (opcode == ReadStatus) {
        std::generate(driven.begin() + 1, driven.end(), [this] { return readStatus(); });
    } else if (pollsLeft > 0) {
        poll();
    } else if (opcode == ReadIdentification) {
        const size_t count = std::min(identification.size(), driven.size() - 1);
        std::copy_n(identification.begin(), count, driven.begin() + 1);
    } else if (opcode == ReadData) {
        for (size_t i = addressedCommandSize; i < driven.size(); ++i) {
            driven[i] = memory[(addressIn(sent) + i - addressedCommandSize) % memorySize];
        }
    } else if (opcode == WriteEnable && sent.size() == 1) {
        writeEnabled = true;
    } else if (opcode == WriteDisable && sent.size() == 1) {
        writeEnabled = false;
    } else if (opcode == PageProgram && writeEnabled && sent.size() > addressedCommandSize) {
        pageProgram(sent);
    } else if (opcode == SectorErase && writeEnabled && sent.size() == addressedCommandSize) {
        sectorErase(sent);
    }
    return driven;
}

uint8_t SpiFlash::readStatus() {
    const unsigned status =
        (pollsLeft > 0 ? writeInProgressBit : 0U) | (writeEnabled ? writeEnableLatchBit : 0U);
    poll();
    return static_cast<uint8_t>(status);
}

void SpiFlash::pageProgram(const Bytes& sent) {
    const size_t address = addressIn(sent);
    const size_t page = address - address % pageSize;
    // Of more bytes than the page holds, each overwrites its predecessor before anything is
    // programmed.
    Bytes latch(pageSize, 0xFF);
    for (size_t i = addressedCommandSize; i < sent.size(); ++i) {
        latch[(address + i - addressedCommandSize) % pageSize] = sent[i];
    }
    for (size_t i = 0; i < pageSize; ++i) {
        memory[page + i] = memory[page + i] & latch[i];
    }
    beginBusy();
}

void SpiFlash::sectorErase(const Bytes& sent) {
    const size_t address = addressIn(sent);
    std::fill_n(memory.begin() +
                    static_cast<Bytes::difference_type>(address - address % sectorSize),
                sectorSize, uint8_t{0xFF});
    beginBusy();
}

void SpiFlash::beginBusy() {
    pollsLeft = pollsUntilReady;
}

void SpiFlash::poll() {
    if (pollsLeft > 0 && --pollsLeft == 0) {
        writeEnabled = false;
    }
}

} // namespace virtual_adapter
