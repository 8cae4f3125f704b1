// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/serprog/Programmer.hpp"

#include "bytes/ByteWriter.hpp"

#include <algorithm>
#include <array>
#include <optional>

namespace serprog {

namespace {

using virtual_adapter::ByteReader;
using virtual_adapter::ByteWriter;

constexpr uint8_t acknowledged = 0x06;
constexpr uint8_t refused = 0x15;

enum Opcode : uint8_t {
    Nop = 0x00,
    QueryInterface = 0x01,
    QueryCommandMap = 0x02,
    QueryName = 0x03,
    QuerySerialBuffer = 0x04,
    QueryBusTypes = 0x05,
    QueryChipSize = 0x06,
    QueryOperationBuffer = 0x07,
    QueryMaxWrite = 0x08,
    ReadByte = 0x09,
    ReadBytes = 0x0A,
    InitOperations = 0x0B,
    WriteByte = 0x0C,
    WriteBytes = 0x0D,
    Delay = 0x0E,
    Execute = 0x0F,
    SyncNop = 0x10,
    QueryMaxRead = 0x11,
    SetBusType = 0x12,
    SpiOperation = 0x13,
    SetSpiClock = 0x14,
    SetPinState = 0x15,
    SetChipSelect = 0x16,
    SetSpiMode = 0x17,
    SetChipSelectMode = 0x18,
};

// Delays are not offered: a client that may queue them hands over its waiting, which the queue of
// operations would then have to keep in order. The rest is for parallel flashes.
constexpr std::array<uint8_t, 15> offered{
    Nop,           QueryInterface,       QueryCommandMap, QueryName,   QuerySerialBuffer,
    QueryBusTypes, QueryOperationBuffer, QueryMaxWrite,   SyncNop,     QueryMaxRead,
    SetBusType,    SpiOperation,         SetSpiClock,     SetPinState, SetChipSelect};

constexpr uint16_t interfaceVersion = 1;
constexpr uint8_t spiBusType = 0x08;
/// TCP has flow control of its own: a client need not count.
constexpr uint16_t unlimited = 0xFFFF;
/// Of data; a write has its opcode and an address of up to four bytes in front.
constexpr uint32_t maxData = 0x8000;
constexpr size_t maxSent = maxData + 5;
constexpr size_t commandMapSize = 32;
constexpr size_t nameSize = 16;

uint32_t u24(ByteReader& reader) {
    const uint32_t low = reader.u16();
    return low | uint32_t{reader.u8()} << 16U;
}

/// Behind the opcode, and in front of data of a length that they tell. Those of unknown commands
/// nobody knows.
size_t parameterBytes(uint8_t opcode) {
    switch (opcode) {
    case SetBusType:
    case SetPinState:
    case SetChipSelect:
    case SetSpiMode:
    case SetChipSelectMode:
        return 1;
    case ReadByte:
        return 3;
    case WriteByte:
    case Delay:
    case SetSpiClock:
        return 4;
    case ReadBytes:
    case WriteBytes:
    case SpiOperation:
        return 6;
    default:
        return 0;
    }
}

Bytes commandMap() {
    Bytes map(commandMapSize);
    for (const uint8_t opcode : offered) {
        map[opcode / 8U] |= static_cast<uint8_t>(1U << opcode % 8U);
    }
    return map;
}

Bytes sizeOfData() {
    return ByteWriter().u16(maxData & 0xFFFFU).u8(maxData >> 16U).take();
}

} // namespace

void Programmer::receive(const uint8_t* data, size_t size) {
    received.erase(received.begin(), received.begin() + static_cast<ptrdiff_t>(consumed));
    consumed = 0;
    received.insert(received.end(), data, data + size);
}

bool Programmer::step() {
    if (skipping) {
        return skip();
    }
    if (pending() == 0) {
        return false;
    }
    const uint8_t* const command = received.data() + consumed;
    const uint8_t opcode = *command;
    const size_t parameters = parameterBytes(opcode);
    if (pending() < 1 + parameters) {
        return false;
    }
    if (opcode == SpiOperation || opcode == WriteBytes) {
        return startLong(opcode);
    }
    consumed += 1 + parameters;
    ByteReader reader(command + 1, parameters);
    carryOut(opcode, reader);
    return true;
}

/// A command with data behind its parameters.
bool Programmer::startLong(uint8_t opcode) {
    ByteReader reader(received.data() + consumed, pending());
    reader.skip(1);
    const size_t length = u24(reader);
    const size_t count = u24(reader); // an address, of the command that is not offered
    const size_t parameters = pending() - reader.remaining();
    if (opcode != SpiOperation || length > maxSent || length + count > SpiBus::maxBytes) {
        consumed += parameters;
        bytesToSkip = length;
        skipping = true;
        return skip();
    }
    if (reader.remaining() < length) {
        return false;
    }
    const Bytes send = reader.bytes(length);
    consumed += parameters + length;
    transfer(send, count);
    return true;
}

bool Programmer::skip() {
    const size_t present = std::min(bytesToSkip, pending());
    consumed += present;
    bytesToSkip -= present;
    if (bytesToSkip > 0) {
        return false;
    }
    skipping = false;
    answer(false);
    return true;
}

void Programmer::carryOut(uint8_t opcode, ByteReader& parameters) {
    switch (opcode) {
    case Nop:
    case SetPinState: // the pins are driven during transfers only, in any case
        return answer(true);
    case SyncNop:
        synchronised = true;
        outgoing.insert(outgoing.end(), {refused, acknowledged});
        return;
    case QueryInterface:
        return answer(ByteWriter().u16(interfaceVersion).take());
    case QueryCommandMap:
        return answer(commandMap());
    case QueryName:
        return answer(ByteWriter().text("veltra", nameSize).take());
    case QuerySerialBuffer:
    case QueryOperationBuffer:
        return answer(ByteWriter().u16(unlimited).take());
    case QueryBusTypes:
        return answer(Bytes{spiBusType});
    case QueryMaxWrite:
    case QueryMaxRead:
        return answer(sizeOfData());
    case SetBusType:
        return answer((parameters.u8() & spiBusType) != 0);
    case SetSpiClock: {
        const uint32_t wish = parameters.u32();
        const std::optional<uint32_t> clock = wish == 0 ? std::nullopt : bus.setClock(wish);
        return clock ? answer(ByteWriter().u32(*clock).take()) : answer(false);
    }
    case SetChipSelect:
        return answer(bus.select(parameters.u8()));
    default:
        return answer(false);
    }
}

void Programmer::transfer(const Bytes& send, size_t count) {
    if (send.empty() && count == 0) {
        return answer(true);
    }
    const std::optional<Bytes> read = bus.transfer(send, count);
    return read && read->size() == count ? answer(*read) : answer(false);
}

void Programmer::answer(const Bytes& data) {
    answer(true);
    outgoing.insert(outgoing.end(), data.begin(), data.end());
}

void Programmer::answer(bool accepted) {
    outgoing.push_back(accepted ? acknowledged : refused);
}

} // namespace serprog
