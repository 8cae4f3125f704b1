// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/uart/uart.hpp"

#include "model/checks.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr size_t packetHeaderSize = 2;
constexpr size_t notificationHeaderSize = 8;
/// Keeps the notification below 256 bytes, beyond which the library's C callback sees none of it.
constexpr size_t maxChunkOfAnyVariant = 240;

} // namespace

Uart::Uart(const IoVoltage& ioVoltage, UartTarget* itsTarget, Outbox& toHost,
           const AdapterVariant& variant)
    : voltage(ioVoltage),
      target(itsTarget),
      outbox(toHost),
      maxChunk(std::min(variant.reportSize - packetHeaderSize - notificationHeaderSize,
                        maxChunkOfAnyVariant)) {}

Answer Uart::init(ByteReader& request) {
    UartDataSize wanted{};
    const Status status = readSettings(request, wanted);
    if (status == Status::Success) {
        dataSize = wanted;
    }
    return status;
}

Answer Uart::setParameters(ByteReader& request) {
    UartDataSize wanted{};
    const Status status = readSettings(request, wanted);
    if (status != Status::Success) {
        return status;
    }
    if (!dataSize) {
        return Status::NotInitialised;
    }
    dataSize = wanted;
    return Status::Success;
}

Answer Uart::sendMessage(ByteReader& request) {
    const size_t length = request.u16();
    const Bytes message = request.bytes(length);
    const Status status = voltage.check(request, true);
    if (status != Status::Success) {
        return status;
    }
    if (!dataSize) {
        return Status::NotInitialised;
    }
    if (target != nullptr) {
        receive(target->receive(onTheLine(message)));
    }
    return Status::Success;
}

bool Uart::receiveFromLine(Bytes characters) {
    if (!voltage.isOn() || !dataSize) {
        return false;
    }
    receive(onTheLine(std::move(characters)));
    return true;
}

Bytes Uart::onTheLine(Bytes characters) const {
    const unsigned dataBits = (1U << *dataSize) - 1U;
    for (uint8_t& character : characters) {
        character = static_cast<uint8_t>(character & dataBits);
    }
    return characters;
}

Status Uart::readSettings(ByteReader& request, UartDataSize& wanted) const {
    const uint8_t baudRate = request.u8();
    const uint8_t handshake = request.u8();
    const uint8_t parity = request.u8();
    wanted = static_cast<UartDataSize>(request.u8());
    const uint8_t stopBit = request.u8();
    return voltage.check(request,
                         within(baudRate, UartBaudRate_1200, UartBaudRate_921600) &&
                             within(handshake, UartHwHandshake_None, UartHwHandshake_RtsCts) &&
                             within(parity, UartParity_None, UartParity_Even) &&
                             within(wanted, UartDataSize_5Bits, UartDataSize_8Bits) &&
                             within(stopBit, UartStopBit_1, UartStopBit_2));
}

void Uart::receive(const Bytes& message) {
    for (auto begin = message.begin(); begin != message.end();) {
        const auto left = static_cast<size_t>(message.end() - begin);
        const auto size = static_cast<uint16_t>(std::min(left, maxChunk));
        outbox.notify(CommandCode::UartRxNotification,
                      ByteWriter().countU16(size).range(begin, begin + size));
        begin += size;
    }
}

} // namespace virtual_adapter
