// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <veltrasdk/VeltraAsyncSDK.hpp>
#include <veltrasdk/VeltraSDK.hpp>

#include "protocol/ResponseFrame.hpp"
#include "sdk/BlockingApi.hpp"
#include "sdk/NotificationQueue.hpp"
#include "sdk/StrictEngine.hpp"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

/// What stands behind a VeltraSDK: the encoders below it, the wait for responses, the response that
/// came last, the transaction identifiers and the notification handler.
class __attribute__((visibility("hidden"))) VeltraSDK::Engine {
public:
    explicit Engine(int timeoutMs);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    bool connect(bool (VeltraAsyncSDK::*open)(const std::string&), const std::string& which);
    void disconnect();
    uint16_t enterBootMode();

    /// Whether the link is connected, wherever the adapter is.
    [[nodiscard]] bool hasLink() const { return asyncSdk.isConnected(); }
    /// Whether it is connected and no read has failed since.
    [[nodiscard]] bool isConnected() const;

    void setStrict(bool strict);
    uint16_t setOverlap(uint8_t requests);
    [[nodiscard]] uint64_t unmatchedResponses() const { return strictEngine.unmatchedResponses(); }

    uint16_t generateTransactionId() { return transactionIds.next(); }

    /// Routes a frame from the adapter; runs on the polling thread.
    void handleResponse(const std::vector<uint8_t>& frame);

    void onNotification(std::function<void(const Notification&)> handler);

    /// Which a queue may keep longer than the engine lives.
    [[nodiscard]] std::shared_ptr<NotificationQueue::State> notificationQueue() const {
        return queue;
    }
    /// Opens it, behind a link that has ended already with that as its first entry. Returns its
    /// descriptor.
    int openQueue(size_t bytes);

    /// The answer to a request, which stays as it is while this object lives: it holds the lock
    /// under which responses are stored, or its turn in strict mode.
    class Answer {
    public:
        /// Waits in strict mode for a turn, for an answer of at most @p maxAnswerSize bytes.
        Answer(Engine& engine, size_t maxAnswerSize)
            : turn(engine.isStrict ? engine.strictEngine.begin(maxAnswerSize) : nullptr),
              requestId(!engine.isStrict ? engine.generateTransactionId()
                        : turn           ? turn->transactionId
                                         : uint16_t{0}) {}

        /// That of the request; 0 when it must not be sent.
        [[nodiscard]] uint16_t transactionId() const { return requestId; }

        /// Waits, unless @p encoded says that nothing was sent or the mode has waited already.
        void await(Engine& asked, uint16_t encoded);

        /// The response's status, or why there is no response.
        [[nodiscard]] uint16_t status() const { return result; }

        /// Calls @p decode with the response, if there is one, whatever its status.
        template <typename Decode>
        [[nodiscard]] uint16_t decoded(const Decode& decode) const {
            if (response) {
                decode(*response);
            }
            return result;
        }

        /// The same where decoding yields the operation's result code.
        template <typename Judge>
        [[nodiscard]] uint16_t judged(const Judge& judge) const {
            return response ? judge(*response) : result;
        }

    private:
        BlockingApi::Lock lock;
        StrictEngine::Turn turn;
        std::optional<ResponseFrame> response;
        uint16_t requestId;
        uint16_t result = ResultCode_NotConnected;
    };

    /// The pattern of every blocking operation: takes a transaction identifier, has @p encoder send
    /// the request, and waits for the answer, whose frame has at most @p maxAnswerSize bytes.
    template <typename... Parameters, typename... Arguments>
    [[nodiscard]] Answer ask(size_t maxAnswerSize,
                             uint16_t (VeltraAsyncSDK::*encoder)(uint16_t, Parameters...),
                             Arguments&&... arguments) {
        Answer answer(*this, maxAnswerSize);
        const uint16_t id = answer.transactionId();
        if (id != 0) {
            answer.await(*this, (asyncSdk.*encoder)(id, std::forward<Arguments>(arguments)...));
        }
        return answer;
    }

    /// An operation of whose answer nothing is wanted but the status.
    template <typename... Parameters, typename... Arguments>
    uint16_t command(uint16_t (VeltraAsyncSDK::*encoder)(uint16_t, Parameters...),
                     Arguments&&... arguments) {
        return ask(ResponseFrame::minSize, encoder, std::forward<Arguments>(arguments)...).status();
    }

    /// What keeps an operation of several requests inside the object between them.
    [[nodiscard]] StrictEngine::Presence stay() {
        return StrictEngine::Presence(isStrict ? &strictEngine : nullptr);
    }

private:
    void handleNotification(const std::vector<uint8_t>& frame) const;
    void handleReadError();
    void tellEndOf(bool openLink);

    BlockingApi blockingApi;
    TransactionIds transactionIds;
    // Guarded by the lock of the wait.
    std::vector<uint8_t> lastResponse;
    std::function<void(const Notification&)> notificationHandler;
    std::shared_ptr<NotificationQueue::State> queue = std::make_shared<NotificationQueue::State>();
    // A read error is the end of a link that is still open; closing it then is no other.
    std::atomic<bool> openLinkHasEnded{false};
    // Its polling thread uses all of this object.
    VeltraAsyncSDK asyncSdk;
    std::atomic<bool> isStrict{false};
    StrictEngine strictEngine;
};
