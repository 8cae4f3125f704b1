#include "sdk/Engine.hpp"

#include "protocol/Link.hpp"

#include <limits>

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

VeltraSDK::Engine::Engine(int timeoutMs) : blockingApi(timeoutMs) {
    asyncSdk.onResponse([this](const std::vector<uint8_t>& frame) { handleResponse(frame); });
    asyncSdk.link->communicationManager.assignReadErrorCallback([this] { handleReadError(); });
}

VeltraSDK::Engine::~Engine() {
    // Closed before the members go, so that a queue which lives longer is told.
    disconnect();
}

void VeltraSDK::Engine::disconnect() {
    const bool wasOpen = asyncSdk.isConnected();
    asyncSdk.disconnect();
    tellEndOf(wasOpen);
}

uint16_t VeltraSDK::Engine::enterBootMode() {
    const bool wasOpen = asyncSdk.isConnected();
    const uint16_t result = asyncSdk.enterBootMode(generateTransactionId());
    tellEndOf(wasOpen);
    return result;
}

void VeltraSDK::Engine::handleReadError() {
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

uint16_t VeltraSDK::Engine::generateTransactionId() {
    const bool wraps = lastTransactionId == std::numeric_limits<uint16_t>::max();
    lastTransactionId = wraps ? uint16_t{1} : static_cast<uint16_t>(lastTransactionId + 1);
    return lastTransactionId;
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
    const std::lock_guard<std::mutex> lock(blockingApi.mutex);
    lastResponse = frame;
    blockingApi.notifyLocked();
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

VeltraSDK::Engine::Answer::Answer(Engine& engine, uint16_t transactionId, uint16_t encoded)
    : lock(encoded == ResultCode_Success ? BlockingApi::Lock(engine.blockingApi.mutex)
                                         : BlockingApi::Lock()),
      requestId(transactionId),
      result(encoded) {
    if (encoded != ResultCode_Success) {
        return;
    }
    if (engine.blockingApi.waitLocked(lock)) {
        response.emplace(engine.lastResponse);
        result = response->status();
    } else {
        result = ResultCode_NoResponse;
    }
}

uint16_t VeltraSDK::Engine::awaitStatus(uint16_t transactionId, uint16_t encoded) {
    return Answer(*this, transactionId, encoded).status();
}
