// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "expose/serprog/SpiBus.hpp"

#include "bytes/ByteReader.hpp"

namespace serprog {

/// What is said with one client: its commands in, answers out.
///
/// A client reads answers without a time limit, so each command gets exactly one, at the end of its
/// bytes: a refused one too, however long it is.
class Programmer {
public:
    explicit Programmer(SpiBus& spiBus) : bus(spiBus) { bus.begin(); }

    void receive(const uint8_t* data, size_t size);
    /// Carries out the next command; false while it has not come wholly.
    bool step();

    /// What the client has yet to be sent. The caller removes what it has sent.
    [[nodiscard]] Bytes& output() { return outgoing; }
    /// False while there is enough to do.
    [[nodiscard]] bool wantsInput() const { return pending() < maxBuffered; }
    /// Whether the client has shown that it speaks this protocol.
    [[nodiscard]] bool isSynchronised() const { return synchronised; }

private:
    using ByteReader = virtual_adapter::ByteReader;

    /// More than the longest command that is carried out.
    static constexpr size_t maxBuffered = size_t{1} << 16U;

    bool skip();
    void carryOut(uint8_t opcode, ByteReader& parameters);
    bool startLong(uint8_t opcode);
    void transfer(const Bytes& send, size_t count);
    void answer(const Bytes& data);
    void answer(bool accepted);
    [[nodiscard]] size_t pending() const { return received.size() - consumed; }

    SpiBus& bus;
    Bytes received;
    /// Of what is received; it goes when more comes, so that no command moves those behind it.
    size_t consumed = 0;
    Bytes outgoing;
    /// Of a refused command, whose refusal is sent behind them.
    size_t bytesToSkip = 0;
    bool skipping = false;
    bool synchronised = false;
};

} // namespace serprog
