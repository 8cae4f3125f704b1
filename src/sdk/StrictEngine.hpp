// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver/CommunicationManager.hpp"
#include "protocol/RequestGate.hpp"
#include "sdk/Outstanding.hpp"
#include "sdk/TransactionIds.hpp"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

/// The operations of strict mode, from several threads: they take turns, an answer is the response
/// with an operation's own identifier and command code, and all end when the adapter has gone or
/// the link is closed.
class StrictEngine final : public RequestGate {
public:
    using Slot = Outstanding::Slot;

    /// @p adapterLink carries the requests; it may be torn down once nobody uses this object.
    StrictEngine(int timeout, TransactionIds& ids, CommunicationManager& adapterLink);

    struct EndTurn {
        StrictEngine* engine = nullptr;
        void operator()(Slot* slot) const { engine->end(*slot); }
    };
    /// An operation's place among those outstanding, from before its request is made until its
    /// answer has been decoded.
    using Turn = std::unique_ptr<Slot, EndTurn>;

    /// Waits for a turn, in the order in which they were asked for. Null when the adapter has gone
    /// or the link is being closed.
    Turn begin(size_t maxAnswerSize);

    /// Writes the request of an operation that has a turn and waits for its answer, which then lies
    /// in the slot: the result says why there is none. A request of anybody else is only written.
    uint16_t send(const RequestFrame& request) override;

    /// Takes a response; runs on the polling thread.
    void handleResponse(const std::vector<uint8_t>& frame);

    /// Ends every operation; runs on the polling thread once the link says that a read has failed.
    void handleReadError();

    /// How many operations may be outstanding, 1 to Outstanding::maxOverlap.
    void setOverlap(uint8_t requests);

    [[nodiscard]] uint64_t unmatchedResponses() const;

    /// While it exists, its thread counts as one that has not left, whether it has a turn or not.
    class Presence {
    public:
        /// Of no thread where @p strictEngine is null.
        explicit Presence(StrictEngine* strictEngine);
        ~Presence();
        Presence(const Presence&) = delete;
        Presence& operator=(const Presence&) = delete;

    private:
        StrictEngine* engine;
    };

    /// Made when every operation has been ended and has left; none begins while it exists. One
    /// exists at a time.
    class Closing {
    public:
        explicit Closing(StrictEngine& strictEngine);
        ~Closing();
        Closing(const Closing&) = delete;
        Closing& operator=(const Closing&) = delete;

    private:
        StrictEngine& engine;
        std::unique_lock<std::mutex> connecting;
    };

    /// Held while the link is opened or closed.
    std::mutex connectionMutex;

private:
    using Lock = std::unique_lock<std::mutex>;

    bool write(const RequestFrame& request);
    uint16_t sendUnanswered(const RequestFrame& request);
    void await(Lock& lock, Slot& slot, bool written);
    void end(Slot& slot);
    void leave();
    [[nodiscard]] bool hasEnded() const { return isClosing || link.hasReadError(); }

    const int timeoutMs;
    TransactionIds& transactionIds;
    CommunicationManager& link;

    // Held while the reports of one request are written.
    std::mutex writeMutex;

    // Guards everything below; not held while a request is written.
    mutable std::mutex mutex;
    Outstanding outstanding;
    uint8_t overlap = 1;
    // Turns are given out in the order of these numbers.
    uint64_t nextTurn = 0;
    uint64_t servedTurns = 0;
    // Wakes whoever waits for a turn, or to write its request.
    std::condition_variable turnPassed;
    // Threads that are in an operation.
    size_t inside = 0;
    std::condition_variable allLeft;
    bool isClosing = false;
    std::condition_variable gone;
    uint64_t unmatched = 0;
};
