// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "buses/Uart.hpp"

#include "Pieces.hpp"

#include <algorithm>

namespace veltra {

namespace {

// A host that is a moment late loses reports; so much comes back in few enough of them.
constexpr size_t messageBytes = 1024;

const Named<UartBaudRate> baudRates[] = {
    {"1200", UartBaudRate_1200},     {"2400", UartBaudRate_2400},
    {"4800", UartBaudRate_4800},     {"9600", UartBaudRate_9600},
    {"19200", UartBaudRate_19200},   {"38400", UartBaudRate_38400},
    {"57600", UartBaudRate_57600},   {"115200", UartBaudRate_115200},
    {"230400", UartBaudRate_230400}, {"460800", UartBaudRate_460800},
    {"921600", UartBaudRate_921600},
};

const Named<UartParity> parities[] = {
    {"none", UartParity_None}, {"odd", UartParity_Odd}, {"even", UartParity_Even}};

} // namespace

Uart::Uart(Session& over, Output& tells, const UartSettings& settings)
    : session(over), output(tells) {
    const UartBaudRate rate = parseName("baud rate", settings.baudRate, baudRates);
    const UartParity parity = parseName("parity", settings.parity, parities);
    const auto handshake = settings.rtsCts ? UartHwHandshake_RtsCts : UartHwHandshake_None;
    if (!session.rehearses()) {
        session.inbox(); // nothing that comes in from here on is missed
    }
    session.supplyPins();
    session.setUp("uart",
                  "uart: " + settings.baudRate + " bit/s, " + std::to_string(settings.dataBits) +
                      " data bits, parity " + settings.parity + ", " +
                      std::to_string(settings.stopBits) + " stop bits" +
                      (settings.rtsCts ? ", RTS and CTS" : ""),
                  [&](VeltraSDK& sdk) {
                      return sdk.uartInit(rate, handshake, parity,
                                          static_cast<UartDataSize>(settings.dataBits),
                                          static_cast<UartStopBit>(settings.stopBits));
                  });
}

void Uart::send(const Bytes& message) {
    forEachPiece({message.size(), messageBytes, "sent"}, [&](size_t at, size_t count) {
        const Bytes piece = pieceOf(message, at, count);
        session.perform("uart send: bytes " + hexWords(piece),
                        [&](VeltraSDK& sdk) { return sdk.uartSendMessage(piece); });
    });
}

Bytes Uart::receive(std::optional<std::chrono::milliseconds> patience) {
    const std::optional<Inbox::Entry> entry =
        session.inbox().next([](NotificationKind kind) { return kind == NotificationKind_UartRx; },
                             patience, [this](uint64_t count) { output.lost(count); });
    return entry ? receivedBytes(*entry) : Bytes();
}

Bytes receivedBytes(const Inbox::Entry& entry) {
    constexpr size_t headerBytes = 8;
    const Notification record = entry.notification();
    const UartRxData* const received = record.uartRx();
    if (received == nullptr) {
        return {};
    }
    const size_t carried = std::min(received->length, entry.frame.size() - headerBytes);
    return {received->data, received->data + carried};
}

} // namespace veltra
