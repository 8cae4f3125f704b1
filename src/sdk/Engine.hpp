#pragma once

#include <veltrasdk/VeltraAsyncSDK.hpp>
#include <veltrasdk/VeltraSDK.hpp>

#include "protocol/ResponseFrame.hpp"
#include "sdk/BlockingApi.hpp"
#include "sdk/NotificationQueue.hpp"

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

    VeltraAsyncSDK& encoders() { return asyncSdk; }

    uint16_t generateTransactionId();

    void disconnect();
    uint16_t enterBootMode();

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
    /// under which responses are stored.
    class Answer {
    public:
        /// Waits, unless @p encoded says that nothing was sent.
        Answer(Engine& engine, uint16_t transactionId, uint16_t encoded);

        /// That of the request.
        [[nodiscard]] uint16_t transactionId() const { return requestId; }

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
        std::optional<ResponseFrame> response;
        uint16_t requestId;
        uint16_t result;
    };

    /// The pattern of every blocking operation: takes a transaction identifier, has @p encoder send
    /// the request, and waits for the answer.
    template <typename... Parameters, typename... Arguments>
    [[nodiscard]] Answer ask(uint16_t (VeltraAsyncSDK::*encoder)(uint16_t, Parameters...),
                             Arguments&&... arguments) {
        const uint16_t id = generateTransactionId();
        return Answer(*this, id, (asyncSdk.*encoder)(id, std::forward<Arguments>(arguments)...));
    }

    /// An operation of whose answer nothing is wanted but the status.
    template <typename... Parameters, typename... Arguments>
    uint16_t command(uint16_t (VeltraAsyncSDK::*encoder)(uint16_t, Parameters...),
                     Arguments&&... arguments) {
        const uint16_t id = generateTransactionId();
        return awaitStatus(id, (asyncSdk.*encoder)(id, std::forward<Arguments>(arguments)...));
    }

private:
    void handleNotification(const std::vector<uint8_t>& frame) const;
    void handleReadError();
    void tellEndOf(bool openLink);
    uint16_t awaitStatus(uint16_t transactionId, uint16_t encoded);

    BlockingApi blockingApi;
    uint16_t lastTransactionId = 0;
    // Guarded by the lock of the wait.
    std::vector<uint8_t> lastResponse;
    std::function<void(const Notification&)> notificationHandler;
    std::shared_ptr<NotificationQueue::State> queue = std::make_shared<NotificationQueue::State>();
    // A read error is the end of a link that is still open; closing it then is no other.
    std::atomic<bool> openLinkHasEnded{false};
    // Its polling thread uses all of the above.
    VeltraAsyncSDK asyncSdk;
};
