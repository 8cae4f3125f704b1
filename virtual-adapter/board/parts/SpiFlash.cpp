// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/SpiFlash.hpp"

#include "bytes/ByteWriter.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

enum Opcode : uint8_t {
    WriteStatus = 0x01,
    PageProgram = 0x02,
    ReadData = 0x03,
    WriteDisable = 0x04,
    ReadStatus = 0x05,
    WriteEnable = 0x06,
    FastRead = 0x0B,
    SectorErase = 0x20,
    ReadParameters = 0x5A,
    ChipErase = 0x60,
    ReadIdentification = 0x9F,
    OtherChipErase = 0xC7,
    BlockErase = 0xD8,
};

constexpr size_t sectorSize = 4096;
constexpr size_t blockSize = size_t{64} * 1024;
constexpr size_t pageSize = 256;
/// The opcode and three address bytes; some commands have a dummy byte behind them.
constexpr size_t addressedCommandSize = 4;
constexpr size_t dummyBytes = 1;

constexpr unsigned writeInProgressBit = 0x01;
constexpr unsigned writeEnableLatchBit = 0x02;

uint8_t powerOfTwo(size_t size) {
    uint8_t power = 0;
    while (size > 1) {
        size /= 2;
        ++power;
    }
    return power;
}

/// Even parity makes the first byte nobody's manufacturer code in JEP106; the last one is the
/// power of two of the size.
Bytes identificationOf(size_t size) {
    return {0x56, 0x41, powerOfTwo(size)};
}

/// JESD216: the header, the header of the one table behind it, and the table.
Bytes parametersOf(size_t size) {
    constexpr uint8_t tableDoubleWords = 9;
    constexpr uint8_t tableAddress = 0x10;
    ByteWriter parameters;
    parameters.text("SFDP", 4).u16(0x0100).u8(0).u8(0xFF);
    parameters.u8(0x00).u16(0x0100).u8(tableDoubleWords).u16(tableAddress).u8(0).u8(0xFF);
    // Erasing 4 KiB by 0x20, writing whole pages, three address bytes, no reads on several lines.
    parameters.u32(0xFF8020E5);
    parameters.u32(static_cast<uint32_t>(8 * size - 1));
    parameters.u32(0).u32(0).u32(0xFFFFFFEE).u32(0x0000FFFF).u32(0x0000FFFF);
    // The sizes that can be erased, as powers of two, each with its opcode.
    parameters.u8(powerOfTwo(sectorSize)).u8(SectorErase).u8(powerOfTwo(blockSize)).u8(BlockErase);
    parameters.u32(0);
    return parameters.take();
}

/// Behind the opcode, of a command that has them.
size_t threeByteAddress(const Bytes& sent) {
    return static_cast<size_t>(sent[1]) << 16U | static_cast<size_t>(sent[2]) << 8U | sent[3];
}

} // namespace

std::vector<Setting> SpiFlash::settings() {
    return {
        Setting::number("size", minSize, maxSize, "262144",
                        "how many bytes it has: a power of two"),
        Setting::bytes("image", 0, maxSize,
                       "hex:", "what it holds from address 0 on; it is erased (0xFF) behind"),
        Setting::flag("write_back", "false",
                      "whether what is programmed and erased goes into the image's file, which is "
                      "first filled up to the size with 0xFF"),
        Setting::bytes("jedec_id", 3, 3, "",
                       "its identification; unless given 0x56, 0x41 and the power of two of the "
                       "size"),
    };
}

std::string SpiFlash::complaintAbout(const SettingValues& values) {
    const auto size = static_cast<size_t>(values.get<uint64_t>("size"));
    if (size != size_t{1} << powerOfTwo(size)) {
        return "size: " + std::to_string(size) + " is no power of two";
    }
    const size_t imageSize = values.get<Bytes>("image").size();
    if (imageSize > size) {
        return "image: " + std::to_string(imageSize) + " bytes do not fit into " +
               std::to_string(size);
    }
    return {};
}

SpiFlash::SpiFlash(size_t size, Bytes contents, const Bytes& identification)
    : memory(std::move(contents)),
      jedecId(identification.empty() ? identificationOf(size) : identification),
      discoverableParameters(parametersOf(size)) {
    memory.resize(size, 0xFF);
}

bool SpiFlash::understands(SpiMode mode, SpiChipSelectPolarity polarity) const {
    return (mode == SpiMode_0 || mode == SpiMode_3) && polarity == SpiChipSelectPolarity_ActiveLow;
}

Bytes SpiFlash::transfer(const Bytes& sent) {
    Bytes driven(sent.size(), undrivenByte);
    if (sent.empty()) {
        return driven;
    }
    if (sent.front() == ReadStatus) {
        std::generate(driven.begin() + 1, driven.end(), [this] { return readStatus(); });
    } else if (pollsLeft > 0) {
        poll();
    } else {
        command(sent, driven);
    }
    return driven;
}

void SpiFlash::command(const Bytes& sent, Bytes& driven) {
    switch (sent.front()) {
    case ReadIdentification:
        std::copy_n(jedecId.begin(), std::min(jedecId.size(), driven.size() - 1),
                    driven.begin() + 1);
        break;
    case ReadData:
        read(sent, addressedCommandSize, driven);
        break;
    case FastRead:
        read(sent, addressedCommandSize + dummyBytes, driven);
        break;
    case ReadParameters:
        for (size_t i = addressedCommandSize + dummyBytes; i < driven.size(); ++i) {
            const size_t address = threeByteAddress(sent) + i - addressedCommandSize - dummyBytes;
            if (address < discoverableParameters.size()) {
                driven[i] = discoverableParameters[address];
            }
        }
        break;
    case WriteEnable:
    case WriteDisable:
        if (sent.size() == 1) {
            writeEnabled = sent.front() == WriteEnable;
        }
        break;
    default:
        if (writeEnabled) {
            write(sent);
        }
    }
}

void SpiFlash::write(const Bytes& sent) {
    const bool isAddress = sent.size() == addressedCommandSize;
    switch (sent.front()) {
    case PageProgram:
        if (sent.size() > addressedCommandSize) {
            pageProgram(sent);
        }
        break;
    case SectorErase:
        if (isAddress) {
            erase(addressIn(sent), sectorSize);
        }
        break;
    case BlockErase:
        if (isAddress) {
            erase(addressIn(sent), blockSize);
        }
        break;
    case ChipErase:
    case OtherChipErase:
        if (sent.size() == 1) {
            erase(0, memory.size());
        }
        break;
    case WriteStatus:
        // Nothing can be protected: the bits stay 0.
        if (sent.size() == 2) {
            pollsLeft = pollsUntilReady;
        }
        break;
    default:
        break;
    }
}

uint8_t SpiFlash::readStatus() {
    const unsigned status =
        (pollsLeft > 0 ? writeInProgressBit : 0U) | (writeEnabled ? writeEnableLatchBit : 0U);
    poll();
    return static_cast<uint8_t>(status);
}

void SpiFlash::read(const Bytes& sent, size_t headSize, Bytes& driven) const {
    for (size_t i = headSize; i < driven.size(); ++i) {
        driven[i] = memory[(addressIn(sent) + i - headSize) % memory.size()];
    }
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
    changed(page, pageSize);
}

void SpiFlash::erase(size_t address, size_t size) {
    const size_t start = address - address % size;
    std::fill_n(memory.begin() + static_cast<Bytes::difference_type>(start), size, uint8_t{0xFF});
    changed(start, size);
}

void SpiFlash::changed(size_t address, size_t size) {
    pollsLeft = pollsUntilReady;
    if (keeper) {
        const auto first = memory.begin() + static_cast<Bytes::difference_type>(address);
        keeper(address, Bytes(first, first + static_cast<Bytes::difference_type>(size)));
    }
}

void SpiFlash::poll() {
    if (pollsLeft > 0 && --pollsLeft == 0) {
        writeEnabled = false;
    }
}

size_t SpiFlash::addressIn(const Bytes& sent) const {
    return threeByteAddress(sent) % memory.size();
}

} // namespace virtual_adapter
