// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "driver/CommunicationManager.hpp"
#include "protocol/RequestGate.hpp"
#include "sdk/BlockingApi.hpp"
#include "sdk/Outstanding.hpp"
#include "sdk/TransactionIds.hpp"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

/// The operations of strict mode, from several threads: they take turns, an answer is the response
/// with an operation's own identifier and command code, and all end when the adapter has gone or
/// the link is closed.
///
/// Whoever has the turn makes a request and writes it; the turn passes on before the answer is
/// waited for, so that requests never mix and as many as may overlap are outstanding.
class StrictEngine final : public RequestGate {
public:
    using SendRequest = BlockingApi::SendRequest;
    using Judge = BlockingApi::Judge;

    /// @p adapterLink carries the requests; it may be torn down once nobody uses this object.
    StrictEngine(int timeout, TransactionIds& ids, CommunicationManager& adapterLink);

    /// Waits for a turn, in the order in which they were asked for, has @p sendRequest hand over a
    /// request under a transaction identifier, and returns what @p judge makes of its answer, which
    /// has at most @p maxAnswerSize bytes, or why there is none.
    uint16_t transact(size_t maxAnswerSize, SendRequest sendRequest, Judge judge);

    /// Writes the request of the operation that has the turn, which the mutex is held for, and
    /// passes the turn on. A request of anybody else is written, and the result says whether.
    uint16_t send(const RequestFrame& request) override;

    /// Takes a response; runs on the polling thread.
    void handleResponse(ResponseFrame response);

    /// Ends every operation, and those to come; runs on the polling thread when a read has failed.
    void handleReadError();

    /// Before the link is opened.
    void forgetReadError();

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
    using Slot = Outstanding::Slot;
    using Stage = Outstanding::Stage;
    class Stay;

    // Threads seldom meet.
    [[gnu::cold]] Slot* waitForTurn();
    [[gnu::cold]] void makeUnique(Slot& slot);
    [[gnu::cold]] void waitToGo(const Slot& slot);
    [[gnu::cold]] uint16_t sendUnanswered(const RequestFrame& request);
    template <typename Condition>
    void wait(const Condition& condition);
    void tellWaiting();
    void leave();
    [[gnu::cold]] void endAll();
    [[nodiscard]] bool hasEnded() const { return isClosing || isGone; }

    const int timeoutMs;
    TransactionIds& transactionIds;
    CommunicationManager& link;

    // Guards everything below; not held while a request is written.
    mutable std::mutex mutex;
    Outstanding outstanding;
    // Of the operation whose turn it is.
    Slot* current = nullptr;
    uint8_t overlap = 1;
    bool isClosing = false;
    bool isGone = false;
    // Threads that are in an operation, and those of them that wait for a turn or to write.
    size_t inside = 0;
    size_t waiting = 0;
    std::condition_variable changed;
    // Whoever waits for a turn is served in the order of these numbers.
    uint64_t nextTurn = 0;
    uint64_t servedTurns = 0;
    std::condition_variable allLeft;
    std::condition_variable gone;
    uint64_t unmatched = 0;
};
