#include <veltrasdk/VeltraSDK.hpp>

#include "driver/CommunicationManager.hpp"
#include "sdk/Transaction.hpp"

#include <limits>
#include <utility>

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

VeltraSDK::VeltraSDK(int timeoutMs)
    : blockingApi(std::make_unique<BlockingApi>(timeoutMs)),
      asyncSdk(std::make_unique<VeltraAsyncSDK>()) {
    asyncSdk->onResponse([this](const std::vector<uint8_t>& frame) { handleResponse(frame); });
}

VeltraSDK::~VeltraSDK() {
    // No frame may meet members that are being destroyed.
    asyncSdk->disconnect();
}

bool VeltraSDK::connect(const std::string& path) {
    return asyncSdk->connect(path);
}

bool VeltraSDK::connectWithSerialNumber(const std::string& serialNumber) {
    return asyncSdk->connectWithSerialNumber(serialNumber);
}

void VeltraSDK::disconnect() {
    asyncSdk->disconnect();
}

void VeltraSDK::onNotification(std::function<void(const Notification&)> handler) {
    notificationHandler.swap(handler);
}

uint16_t VeltraSDK::generateTransactionId() {
    const bool wraps = lastTransactionId == std::numeric_limits<uint16_t>::max();
    lastTransactionId = wraps ? uint16_t{1} : static_cast<uint16_t>(lastTransactionId + 1);
    return lastTransactionId;
}

void VeltraSDK::handleResponse(const std::vector<uint8_t>& frame) {
    const ResponseFrame response(frame);
    if (!response.holds(ResponseFrame::shortestFrame)) {
        return;
    }
    if (response.transactionId() == 0) {
        if (notificationHandler) {
            Notification notification{};
            notification.kind = kindOf(response.commandCode());
            notification.data = frame.data();
            notification.size = frame.size();
            notificationHandler(notification);
        }
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(responseMutex);
        lastResponse = frame;
    }
    blockingApi->notifyResponseReceived();
}
