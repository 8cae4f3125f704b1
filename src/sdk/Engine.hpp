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
#include <tuple>
#include <utility>
#include <vector>

/// What stands behind a VeltraSDK: the encoders below it, the wait for responses, the
/// transaction identifiers, strict mode and who takes notifications.
class __attribute__((visibility("hidden"))) VeltraSDK::Engine {
public:
    [[gnu::cold]] explicit Engine(int timeoutMs);
    [[gnu::cold]] ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    [[gnu::cold]] bool connect(bool (VeltraAsyncSDK::*open)(const std::string&),
                               const std::string& which);
    [[gnu::cold]] void disconnect();
    [[gnu::cold]] uint16_t enterBootMode();

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

    /// A request in the making: an encoder and what it is given. It refers to nothing but what the
    /// encoder takes by reference.
    template <typename... Parameters>
    class Question {
    public:
        using Encoder = uint16_t (VeltraAsyncSDK::*)(uint16_t, Parameters...);

        template <typename... Arguments>
        Question(Engine& engineOfIt, size_t answerSize, Encoder method, Arguments&&... given)
            : engine(engineOfIt),
              maxAnswerSize(answerSize),
              encoder(method),
              arguments(std::forward<Arguments>(given)...) {}

        /// Sends the request; returns the encoder's result code.
        uint16_t operator()(uint16_t id) {
            requestId = id;
            return std::apply(
                [&](auto&... each) {
                    return (engine.asyncSdk.*encoder)(id, std::forward<Parameters>(each)...);
                },
                arguments);
        }

        /// Of the request that was sent.
        [[nodiscard]] uint16_t transactionId() const { return requestId; }

        /// Has it answered. Returns what @p judge makes of the response, if there is one, whatever
        /// its status, or why there is none.
        template <typename Judge>
        uint16_t judged(const Judge& judge) {
            return engine.transact(maxAnswerSize, StrictEngine::SendRequest(*this),
                                   BlockingApi::Judge(judge));
        }

        /// The same where the response's status is the result and @p decode has only to decode.
        template <typename Decode>
        uint16_t decoded(const Decode& decode) {
            return judged([&](const ResponseFrame& response) {
                decode(response);
                return response.status();
            });
        }

    private:
        Engine& engine;
        size_t maxAnswerSize;
        Encoder encoder;
        std::tuple<Parameters...> arguments;
        uint16_t requestId = 0;
    };

    /// Asks by way of @p encoder; the answer's frame has at most @p maxAnswerSize bytes.
    template <typename... Parameters, typename... Arguments>
    [[nodiscard]] Question<Parameters...>
    ask(size_t maxAnswerSize, uint16_t (VeltraAsyncSDK::*encoder)(uint16_t, Parameters...),
        Arguments&&... arguments) {
        return {*this, maxAnswerSize, encoder, std::forward<Arguments>(arguments)...};
    }

    /// An operation of whose answer nothing is wanted but the status.
    template <typename... Parameters, typename... Arguments>
    uint16_t command(uint16_t (VeltraAsyncSDK::*encoder)(uint16_t, Parameters...),
                     Arguments&&... arguments) {
        return ask(ResponseFrame::minSize, encoder, std::forward<Arguments>(arguments)...)
            .judged(statusOf);
    }

    /// What keeps an operation of several requests inside the object between them.
    [[nodiscard]] StrictEngine::Presence stay() {
        return StrictEngine::Presence(isStrict ? &strictEngine : nullptr);
    }

private:
    static constexpr auto statusOf = [](const ResponseFrame& response) {
        return response.status();
    };

    /// The pattern of every blocking operation: takes a transaction identifier, has the request
    /// sent, and waits for the answer.
    uint16_t transact(size_t maxAnswerSize, StrictEngine::SendRequest sendRequest,
                      BlockingApi::Judge judge);

    void handleNotification(const std::vector<uint8_t>& frame) const;
    [[gnu::cold]] void handleReadError();
    void tellEndOf(bool openLink);

    BlockingApi blockingApi;
    TransactionIds transactionIds;
    std::function<void(const Notification&)> notificationHandler;
    std::shared_ptr<NotificationQueue::State> queue = std::make_shared<NotificationQueue::State>();
    // A read error is the end of a link that is still open; closing it then is no other.
    std::atomic<bool> openLinkHasEnded{false};
    // Its polling thread uses all of this object.
    VeltraAsyncSDK asyncSdk;
    std::atomic<bool> isStrict{false};
    StrictEngine strictEngine;
};
