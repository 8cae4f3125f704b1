// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Input.hpp"

#include "driver/UsbTransferProtocol.hpp"
#include "support/ScriptedHid.hpp"

#include <array>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <set>

namespace fuzzing {

/// What happens to the link from a thread that waits for no answer.
enum class Outage { Disconnect, Reconnect, BootMode };

/// Carries outages from the adapter to the thread that brings them about.
class Outages {
public:
    void post(Outage outage);
    /// Nothing comes after those that are posted already.
    void close();
    /// Waits for the next one. Nothing once closed and empty.
    std::optional<Outage> next();

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Outage> posted;
    bool isClosed = false;
};

/// An adapter on the stand-in for hidapi for operations in strict mode, from several threads: it
/// answers each request as the next byte of its behaviours says, whose low half is one of Behaviour
/// and whose high half says how; plainly when there are no more.
///
/// The bytes that answer an operation are all its mark, by which its thread knows them. Every
/// other byte that the adapter makes up stays clear of marks and of the identifiers of a run.
class UnreliableAdapter {
public:
    enum Behaviour : uint8_t {
        Plain,
        Late, // together with the answer to the next request
        Lost,
        Doubled,
        Foreign,      // a response to nobody, then the own
        WrongCommand, // the own identifier with another command code, then the own
        Malformed,    // some reports that are no response, then the own
        Cut,          // the own, with some bytes of its end missing
        TooShort,     // the own, cut within its header
        Refused,
        ReadError, // in the answer's place
        WriteAndReadError,
        Stall,       // the write fails and nothing else; once in a run, since it costs 100 ms
        Notified,    // notifications, then the own
        Interrupted, // an outage, with the answer or without
    };

    /// Where operations wait without limit, nobody waits for an answer that does not come: an
    /// outage ends them.
    UnreliableAdapter(bool highSpeed, bool waitsWithoutLimit, Bytes behaviours, Outages& outages);

    static uint8_t markOf(uint8_t number) { return number | 0x80U; }
    /// The status of a refusal, which is the operation's own too.
    static uint16_t refusalOf(uint8_t mark) { return static_cast<uint16_t>(refusal << 8U | mark); }

    /// Whether an answer with this mark was cut.
    [[nodiscard]] bool hasCut(uint8_t mark) const { return cut.at(mark); }

private:
    static constexpr uint8_t refusal = 0x01;

    std::vector<Bytes> answersTo(const Bytes& report);
    std::vector<Bytes> answersToRequest(const Bytes& whole);
    void failWrite(bool unplugged);
    void interrupt(std::optional<Outage> outage);
    void append(std::vector<Bytes>& reports, const Bytes& message) const;
    Bytes malformedReport(uint8_t kind) const;
    [[nodiscard]] Behaviour behaviour() const { return static_cast<Behaviour>(current & 0xFU); }
    [[nodiscard]] uint8_t how() const { return current >> 4U; }

    test_support::ScriptedHid hid;
    UsbTransferProtocol protocol;
    const bool waitsWithoutLimit;
    const Bytes behaviours;
    Outages& outages;
    std::atomic<bool> isWritten{false};
    Input next;
    uint8_t current = Plain;
    Bytes request;
    size_t reportsOfRequest = 0;
    std::vector<Bytes> late;
    std::set<unsigned> identifiers;
    bool hasStalled = false;
    /// A continuation would complete a frame that was too short.
    bool lastWasTooShort = false;
    std::array<std::atomic<bool>, 0x100> cut{};
};

} // namespace fuzzing
