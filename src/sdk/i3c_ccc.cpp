// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

#include <utility>

namespace {

using Bytes = std::vector<uint8_t>;

// MIPI I3C Basic v1.1.1, section 5.1.2.1: the broadcast address.
constexpr uint8_t broadcast = 0x7E;

const Bytes noData;

constexpr auto write = I3cTransferDirection_Write;
constexpr auto read = I3cTransferDirection_Read;
constexpr auto plain = I3cCccType_WithoutDefiningByte;
constexpr auto defined = I3cCccType_WithDefiningByte;

/// One Common Command Code as it is sent, but for the data of a write; every operation below is a
/// row of these.
struct CommonCommandCode {
    uint8_t address;
    I3cTransferDirection direction;
    I3cCccType type;
    size_t length;
    CCC code;
    uint32_t definingByte;
};

constexpr size_t countOffset = 9;
constexpr size_t dataOffset = 10;
/// A GETMRL reply of this length ends with the in-band interrupt payload size.
constexpr uint8_t mrlWithIbiPayloadSize = 3;

auto into(Bytes& data) {
    return [&data](const ResponseFrame& response) {
        response.copyTo(data, dataOffset, response.u8(countOffset));
    };
}

auto into(uint8_t& value) {
    return [&value](const ResponseFrame& response) { value = response.u8(dataOffset); };
}

auto into(uint16_t& value) {
    return [&value](const ResponseFrame& response) { value = response.u16BigEndian(dataOffset); };
}

uint8_t lowByte(size_t value) {
    return static_cast<uint8_t>(value & 0xFFU);
}

Bytes bigEndian(uint16_t value) {
    return {static_cast<uint8_t>(value >> 8U), lowByte(value)};
}

Bytes maximumReadLength(uint16_t mrl, std::optional<uint8_t> ibiPayloadSize) {
    Bytes data = bigEndian(mrl);
    if (ibiPayloadSize) {
        data.push_back(*ibiPayloadSize);
    }
    return data;
}

/// An address as data stands in bits 7 to 1.
Bytes shiftedAddress(uint8_t address) {
    return {lowByte(address * size_t{2})};
}

I3cCccType typeOf(std::optional<uint8_t> definingByte) {
    return definingByte ? defined : plain;
}

// Compiled once for each kind of answer: the operations have only their rows.

template <typename Engine, typename Decode>
[[gnu::noinline]] uint16_t query(Engine& engine, const CommonCommandCode& ccc,
                                 const Decode& decode) {
    return engine
        .ask(dataOffset + ccc.length, &VeltraAsyncSDK::i3cCccTransfer, ccc.address, ccc.direction,
             I3cTransferMode_Sdr, false, ccc.type, lowByte(ccc.length), ccc.code,
             lowByte(ccc.definingByte), noData)
        .decoded(decode);
}

template <typename Engine>
[[gnu::noinline]] uint16_t command(Engine& engine, const CommonCommandCode& ccc,
                                   const Bytes& data = noData) {
    return engine.command(&VeltraAsyncSDK::i3cCccTransfer, ccc.address, ccc.direction,
                          I3cTransferMode_Sdr, false, ccc.type, lowByte(ccc.length), ccc.code,
                          lowByte(ccc.definingByte), data);
}

} // namespace

uint16_t VeltraSDK::i3cCccGETPID(uint8_t address, Bytes& pid) {
    return query(*engine, {address, read, plain, 6, CCC_GETPID, 0}, into(pid));
}

uint16_t VeltraSDK::i3cCccGETBCR(uint8_t address, uint8_t& bcr) {
    return query(*engine, {address, read, plain, 1, CCC_GETBCR, 0}, into(bcr));
}

uint16_t VeltraSDK::i3cCccGETDCR(uint8_t address, uint8_t& dcr) {
    return query(*engine, {address, read, plain, 1, CCC_GETDCR, 0}, into(dcr));
}

uint16_t VeltraSDK::i3cCccGETMWL(uint8_t address, uint16_t& mwl) {
    return query(*engine, {address, read, plain, 2, CCC_GETMWL, 0}, into(mwl));
}

uint16_t VeltraSDK::i3cCccGETMRL(uint8_t address, uint16_t& mrl,
                                 std::optional<uint8_t>& ibiPayloadSize) {
    return query(*engine, {address, read, plain, 3, CCC_GETMRL, 0},
                 [&](const ResponseFrame& response) {
                     mrl = response.u16BigEndian(dataOffset);
                     ibiPayloadSize.reset();
                     if (response.u8(countOffset) == mrlWithIbiPayloadSize) {
                         ibiPayloadSize = response.u8(dataOffset + 2);
                     }
                 });
}

uint16_t VeltraSDK::i3cCccGETCAPS(uint8_t address, Bytes& capabilities,
                                  std::optional<uint8_t> definingByte) {
    return query(*engine,
                 {address, read, typeOf(definingByte), 4, CCC_GETCAPS, definingByte.value_or(0)},
                 into(capabilities));
}

uint16_t VeltraSDK::i3cCccGETSTATUS(uint8_t address, Bytes& status,
                                    std::optional<uint8_t> definingByte) {
    return query(*engine,
                 {address, read, typeOf(definingByte), 2, CCC_GETSTATUS, definingByte.value_or(0)},
                 into(status));
}

uint16_t VeltraSDK::i3cCccSETMWLDirect(uint8_t address, uint16_t mwl) {
    return command(*engine, {address, write, plain, 2, CCC_SETMWLDirect, 0}, bigEndian(mwl));
}

uint16_t VeltraSDK::i3cCccSETMWLBroadcast(uint16_t mwl) {
    return command(*engine, {broadcast, write, plain, 2, CCC_SETMWLBroadcast, 0}, bigEndian(mwl));
}

uint16_t VeltraSDK::i3cCccSETMRLDirect(uint8_t address, uint16_t mrl,
                                       std::optional<uint8_t> ibiPayloadSize) {
    const Bytes data = maximumReadLength(mrl, ibiPayloadSize);
    return command(*engine, {address, write, plain, data.size(), CCC_SETMRLDirect, 0}, data);
}

uint16_t VeltraSDK::i3cCccSETMRLBroadcast(uint16_t mrl, std::optional<uint8_t> ibiPayloadSize) {
    const Bytes data = maximumReadLength(mrl, ibiPayloadSize);
    return command(*engine, {broadcast, write, plain, data.size(), CCC_SETMRLBroadcast, 0}, data);
}

uint16_t VeltraSDK::i3cCccSETNEWDA(uint8_t currentAddress, uint8_t newAddress) {
    return command(*engine, {currentAddress, write, plain, 1, CCC_SETNEWDA, 0},
                   shiftedAddress(newAddress));
}

uint16_t VeltraSDK::i3cCccSETDASA(uint8_t staticAddress, uint8_t dynamicAddress) {
    return command(*engine, {staticAddress, write, plain, 1, CCC_SETDASA, 0},
                   shiftedAddress(dynamicAddress));
}

uint16_t VeltraSDK::i3cCccSETAASA(const Bytes& staticAddresses) {
    return command(*engine, {broadcast, write, plain, staticAddresses.size(), CCC_SETAASA, 0},
                   staticAddresses);
}

uint16_t VeltraSDK::i3cCccENECDirect(uint8_t address, uint8_t events) {
    return command(*engine, {address, write, plain, 1, CCC_ENECDirect, 0}, {events});
}

uint16_t VeltraSDK::i3cCccENECBroadcast(uint8_t events) {
    return command(*engine, {broadcast, write, defined, 1, CCC_ENECBroadcast, events});
}

uint16_t VeltraSDK::i3cCccDISECDirect(uint8_t address, uint8_t events) {
    return command(*engine, {address, write, plain, 1, CCC_DISECDirect, 0}, {events});
}

uint16_t VeltraSDK::i3cCccDISECBroadcast(uint8_t events) {
    return command(*engine, {broadcast, write, defined, 1, CCC_DISECBroadcast, events});
}

uint16_t VeltraSDK::i3cCccRSTACTDirect(uint8_t address, I3cTargetResetDefByte definingByte,
                                       I3cTransferDirection direction, uint8_t* reply) {
    const uint8_t length = direction != write ? 1 : 0;
    return query(*engine, {address, direction, defined, length, CCC_RSTACTDirect, definingByte},
                 [&](const ResponseFrame& response) {
                     if (direction == read && reply != nullptr) {
                         *reply = response.u8(dataOffset);
                     }
                 });
}

uint16_t VeltraSDK::i3cCccRSTACTBroadcast(I3cTargetResetDefByte definingByte) {
    return command(*engine, {broadcast, write, defined, 1, CCC_RSTACTBroadcast, definingByte});
}

uint16_t VeltraSDK::i3cCccRSTDAA() {
    return command(*engine, {broadcast, write, plain, 0, CCC_RSTDAA, 0});
}

uint16_t VeltraSDK::i3cCccENTDAA() {
    return command(*engine, {broadcast, write, plain, 0, CCC_ENTDAA, 0});
}

uint16_t VeltraSDK::i3cCccTransfer(uint8_t address, I3cTransferDirection direction,
                                   I3cTransferMode mode, bool optionFlag, I3cCccType type,
                                   uint8_t length, CCC code, uint8_t definingByte,
                                   const Bytes& data, Bytes& reply) {
    return engine
        ->ask(dataOffset + length, &VeltraAsyncSDK::i3cCccTransfer, address, direction, mode,
              optionFlag, type, length, code, definingByte, data)
        .decoded(into(reply));
}
