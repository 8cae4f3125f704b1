// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "socket/MessageBuffer.hpp"
#include "ways/AdapterRack.hpp"

#include <optional>

namespace virtual_adapter {

class ByteReader;

/// What is said with one client at the socket, without input or output of its own.
///
/// A client has one question at a time answered; those behind it wait. Whatever it sends, the
/// others are not touched.
class SocketConnection {
public:
    using Time = HostedAdapter::Time;

    explicit SocketConnection(AdapterRack& adapters) : rack(adapters) {}

    /// Takes bytes of the client.
    void receive(const uint8_t* data, size_t size, Time now);

    /// Answers what can be answered by now. Returns whether there was something.
    bool serve(Time now);

    /// When to call `serve` although nothing came.
    [[nodiscard]] std::optional<Time> nextDue() const;

    /// What the client is to be sent. Take from it what has been sent.
    Bytes& output() { return unsent; }

    /// Whether to receive: not while it has an answer to wait for or to take.
    [[nodiscard]] bool wantsInput() const {
        return !waiting && !delayed && unsent.empty() && !over;
    }

    /// Whether the client waits for a report.
    [[nodiscard]] bool isReading() const { return waiting.has_value(); }

    /// Once what is to be sent is sent, the connection ends.
    [[nodiscard]] bool isOver() const { return over; }

    /// Whether the client has asked that the adapters live as long as its process.
    [[nodiscard]] bool holdsAdapters() const { return holds; }

    /// The client has gone: closes what it had open.
    void hangUp(Time now);

private:
    struct WaitingRead {
        /// Nothing for one without limit.
        std::optional<Time> until;
    };

    /// What is answered when the report has crossed the bus.
    struct DelayedReply {
        Bytes bytes;
        Time due;
    };

    void answer(const MessageBuffer::Message& message, Time now);
    void open(ByteReader& fields);
    void join(ByteReader& fields);
    void write(const Bytes& report, Time now);
    void startRead(ByteReader& fields, Time now);
    void tell(ByteReader& fields, Time now);
    void serveRead(Time now);
    void list();
    void send(const Bytes& reply);
    void refuse(const std::string& why);

    AdapterRack& rack;
    MessageBuffer input;
    Bytes unsent;
    bool hasGreeted = false;
    bool over = false;
    bool holds = false;
    bool isOwner = false;
    HostedAdapter* adapter = nullptr;
    HostedAdapter::Session session = 0;
    std::optional<WaitingRead> waiting;
    std::optional<DelayedReply> delayed;
};

} // namespace virtual_adapter
