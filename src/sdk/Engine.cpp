// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Engine.hpp"

#include "protocol/Link.hpp"

#include <optional>

namespace {

NotificationKind kindOf(CommandCode code) {
    switch (code) {
    case CommandCode::I3cHotJoinNotification:
        return NotificationKind_I3cHotJoin;
    case CommandCode::I3cIbiNotification:
        return NotificationKind_I3cIbi;
    case CommandCode::GpioNotification:
        return NotificationKind_Gpio;
    case CommandCode::UartRxNotification:
        return NotificationKind_UartRx;
    default:
        return NotificationKind_Unknown;
    }
}

} // namespace

VeltraSDK::Engine::Engine(int timeoutMs)
    : blockingApi(timeoutMs),
      strictEngine(timeoutMs, transactionIds, asyncSdk.link->communicationManager) {
    asyncSdk.onResponse([this](const std::vector<uint8_t>& frame) { handleResponse(frame); });
    asyncSdk.link->communicationManager.assignReadErrorCallback([this] { handleReadError(); });
}

VeltraSDK::Engine::~Engine() {
    // Closed before the members go: no frame may meet them, and a queue which lives longer is told.
    disconnect();
}

bool VeltraSDK::Engine::connect(bool (VeltraAsyncSDK::*open)(const std::string&),
                                const std::string& which) {
    std::unique_lock<std::mutex> lock(strictEngine.connectionMutex, std::defer_lock);
    if (isStrict) {
        lock.lock();
        // Operations of other threads use an open link.
        if (hasLink()) {
            return true;
        }
    }
    if (!hasLink()) {
        strictEngine.forgetReadError();
    }
    return (asyncSdk.*open)(which);
}

void VeltraSDK::Engine::disconnect() {
    std::optional<StrictEngine::Closing> closing;
    if (isStrict) {
        closing.emplace(strictEngine);
    }
    const bool wasOpen = asyncSdk.isConnected();
    asyncSdk.disconnect();
    tellEndOf(wasOpen);
}

void VeltraSDK::Engine::handleReadError() {
    strictEngine.handleReadError();
    if (!openLinkHasEnded.exchange(true)) {
        queue->putEndOfLink();
    }
}

void VeltraSDK::Engine::tellEndOf(bool openLink) {
    const bool isTold = openLinkHasEnded.exchange(false);
    if (openLink && !isTold) {
        queue->putEndOfLink();
    }
}

int VeltraSDK::Engine::openQueue(size_t bytes) {
    const int descriptor = queue->open(bytes);
    if (descriptor != NotificationQueue::State::none && openLinkHasEnded) {
        queue->putEndOfLink();
    }
    return descriptor;
}

uint16_t VeltraSDK::Engine::enterBootMode() {
    std::optional<StrictEngine::Closing> closing;
    if (isStrict) {
        closing.emplace(strictEngine);
    }
    const bool wasOpen = asyncSdk.isConnected();
    const uint16_t result = asyncSdk.enterBootMode(generateTransactionId());
    tellEndOf(wasOpen);
    return result;
}

bool VeltraSDK::Engine::isConnected() const {
    return hasLink() && !asyncSdk.link->communicationManager.hasReadError();
}

void VeltraSDK::Engine::setStrict(bool strict) {
    strictEngine.setOverlap(1);
    asyncSdk.link->gate = strict ? &strictEngine : nullptr;
    isStrict = strict;
}

uint16_t VeltraSDK::Engine::setOverlap(uint8_t requests) {
    if (!isStrict || requests == 0 || requests > Outstanding::maxOverlap) {
        return ResultCode_InvalidArgument;
    }
    strictEngine.setOverlap(requests);
    return ResultCode_Success;
}

uint16_t VeltraSDK::Engine::transact(size_t maxAnswerSize, StrictEngine::SendRequest sendRequest,
                                     BlockingApi::Judge judge) {
    return isStrict ? strictEngine.transact(maxAnswerSize, sendRequest, judge)
                    : blockingApi.transact(transactionIds, sendRequest, judge);
}

void VeltraSDK::Engine::handleResponse(const std::vector<uint8_t>& frame) {
    const ResponseFrame response(frame);
    if (!response.holds(ResponseFrame::minSize)) {
        return;
    }
    if (response.transactionId() == 0) {
        handleNotification(frame);
        return;
    }
    if (isStrict) {
        strictEngine.handleResponse(response);
        return;
    }
    blockingApi.respond(response);
}

void VeltraSDK::Engine::handleNotification(const std::vector<uint8_t>& frame) const {
    const NotificationKind kind = kindOf(ResponseFrame(frame).commandCode());
    queue->put(kind, frame.data(), frame.size());
    if (!notificationHandler) {
        return;
    }
    Notification notification{};
    notification.kind = kind;
    notification.data = frame.data();
    notification.size = frame.size();
    notificationHandler(notification);
}

void VeltraSDK::Engine::onNotification(std::function<void(const Notification&)> handler) {
    notificationHandler.swap(handler);
}
