// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "flash/NorFlash.hpp"

#include "Pieces.hpp"

#include <algorithm>
#include <chrono>

namespace veltra {

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint8_t opcodeProgram = 0x02;
constexpr uint8_t opcodeRead = 0x03;
constexpr uint8_t opcodeReadStatus = 0x05;
constexpr uint8_t opcodeWriteEnable = 0x06;
constexpr uint8_t opcodeErase4k = 0x20;
constexpr uint8_t opcodeReadSfdp = 0x5A;
constexpr uint8_t opcodeIdentify = 0x9F;

constexpr uint8_t statusBusy = 0x01;
constexpr uint8_t statusProtected = 0x1C;

constexpr size_t pieceBytes = 16384;
// A block takes 3 s at most; polls are counted too, since where there is no bus there is no time.
constexpr auto busyLimit = std::chrono::seconds(5);
constexpr int minPolls = 50;

Bytes withAddress(uint8_t opcode, uint32_t address) {
    return {opcode, static_cast<uint8_t>(address >> 16U), static_cast<uint8_t>(address >> 8U),
            static_cast<uint8_t>(address)};
}

/// Many makers put the power of two there; 64 KiB to 16 MiB are believed.
bool namesSize(const Bytes& id) {
    return id.size() == 3 && id[2] >= 16 && id[2] <= 24;
}

} // namespace

void NorFlash::identify() {
    id = spi.query({opcodeIdentify}, 3);
    const auto isIdle = [](uint8_t byte) { return byte == 0xFF || byte == 0x00; };
    if (std::all_of(id.begin(), id.end(), isIdle)) {
        throw Failure(ExitStatus::Refused, "flash",
                      "no flash answers (identification " + hexWords(id) + ")")
            .advise("Is it on this chip select? -c 0 to 3; is its clock too fast? --clock 100k");
    }
    const SfdpReader tables = [this](uint32_t address, size_t count) {
        Bytes question = withAddress(opcodeReadSfdp, address);
        question.push_back(0); // the dummy byte
        return spi.query(question, count);
    };
    sfdp = hasSfdp(tables);
    if (sfdp) {
        shape = readSfdp(tables);
    } else if (namesSize(id)) {
        shape = {uint64_t{1} << id[2], 4096, opcodeErase4k, 256};
    } else {
        throw Failure(ExitStatus::Refused, "flash",
                      "the flash " + hexWords(id) + " does not tell its size");
    }
}

Bytes NorFlash::readPiece(uint32_t offset, size_t count) {
    return spi.query(withAddress(opcodeRead, offset), count);
}

Bytes NorFlash::read(uint32_t offset, size_t count) {
    Bytes contents;
    forEachPiece({count, pieceBytes, "read"}, output, "reading", [&](size_t at, size_t size) {
        const Bytes piece = readPiece(static_cast<uint32_t>(offset + at), size);
        contents.insert(contents.end(), piece.begin(), piece.end());
    });
    return contents;
}

void NorFlash::waitUntilReady() {
    const Clock::time_point end = Clock::now() + busyLimit;
    for (int poll = 0; (spi.query({opcodeReadStatus}, 1)[0] & statusBusy) != 0; ++poll) {
        if (poll >= minPolls && Clock::now() > end) {
            throw Failure(ExitStatus::Refused, "flash", "the flash stays busy");
        }
    }
}

void NorFlash::enableWriting() {
    const uint8_t status = spi.query({opcodeReadStatus}, 1)[0];
    if ((status & statusProtected) != 0) {
        throw Failure(ExitStatus::Refused, "flash",
                      "the flash is write-protected (its status is " + hexNumber(status, 2) + ")");
    }
    spi.command({opcodeWriteEnable});
}

void NorFlash::eraseBlock(uint32_t offset) {
    enableWriting();
    spi.command(withAddress(shape.eraseOpcode, offset));
    waitUntilReady();
}

void NorFlash::program(uint32_t offset, const Bytes& before, const Bytes& wanted) {
    for (size_t at = 0; at < wanted.size(); at += shape.pageBytes) {
        const Bytes page = pieceOf(wanted, at, shape.pageBytes);
        if (page == pieceOf(before, at, shape.pageBytes)) {
            continue;
        }
        Bytes command = withAddress(opcodeProgram, static_cast<uint32_t>(offset + at));
        command.insert(command.end(), page.begin(), page.end());
        enableWriting();
        spi.command(command);
        waitUntilReady();
    }
}

void NorFlash::write(uint32_t offset, const Bytes& contents) {
    const uint32_t block = shape.eraseBytes;
    const uint32_t first = offset - offset % block;
    const size_t total = offset - first + contents.size();
    forEachPiece({total, block, "written"}, output, "writing", [&](size_t at, size_t) {
        const auto start = static_cast<uint32_t>(first + at);
        Bytes before = readPiece(start, block);
        Bytes wanted = before;
        for (size_t byte = 0; byte < block; ++byte) {
            const size_t source = start + byte;
            if (source >= offset && source - offset < contents.size()) {
                wanted[byte] = contents[source - offset];
            }
        }
        const auto needsErase = [](uint8_t old, uint8_t next) { return (next & ~old) != 0; };
        if (!std::equal(before.begin(), before.end(), wanted.begin(), std::not_fn(needsErase))) {
            eraseBlock(start);
            before.assign(block, 0xFF);
        }
        program(start, before, wanted);
    });
    verify(offset, contents);
}

void NorFlash::erase(uint32_t offset, size_t count) {
    forEachPiece({count, shape.eraseBytes, "erased"}, output, "erasing",
                 [&](size_t at, size_t) { eraseBlock(static_cast<uint32_t>(offset + at)); });
    verify(offset, Bytes(count, 0xFF));
}

void NorFlash::verify(uint32_t offset, const Bytes& contents) {
    const Pieces pieces{contents.size(), pieceBytes, "verified"};
    forEachPiece(pieces, output, "verifying", [&](size_t at, size_t size) {
        const Bytes seen = readPiece(static_cast<uint32_t>(offset + at), size);
        const Bytes wanted = pieceOf(contents, at, size);
        const auto differs = std::mismatch(wanted.begin(), wanted.end(), seen.begin());
        if (differs.first != wanted.end()) {
            const auto byte = static_cast<size_t>(differs.first - wanted.begin());
            throw Failure(ExitStatus::NotAsExpected, "verify",
                          "byte " + hexNumber(offset + at + byte, 6) + " is " +
                              hexDigits({*differs.second}) + " and should be " +
                              hexDigits({*differs.first}));
        }
    });
}

} // namespace veltra
