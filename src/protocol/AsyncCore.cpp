#include <veltrasdk/VeltraAsyncSDK.hpp>

#include "driver/CommunicationManager.hpp"
#include "protocol/RequestFrame.hpp"

#include <utility>

VeltraAsyncSDK::VeltraAsyncSDK() : communicationManager(std::make_unique<CommunicationManager>()) {
    communicationManager->assignCallback([](const std::vector<uint8_t>&) {});
}

VeltraAsyncSDK::~VeltraAsyncSDK() = default;

void VeltraAsyncSDK::onResponse(std::function<void(const std::vector<uint8_t>&)> callback) {
    communicationManager->assignCallback(std::move(callback));
}

bool VeltraAsyncSDK::connect(const std::string& path) {
    connected = communicationManager->connect(path, "");
    return connected;
}

bool VeltraAsyncSDK::connectWithSerialNumber(const std::string& serialNumber) {
    connected = communicationManager->connect("", serialNumber);
    return connected;
}

void VeltraAsyncSDK::disconnect() {
    communicationManager->disconnect();
    connected = false;
}

uint16_t VeltraAsyncSDK::enterBootMode(uint16_t transactionId) {
    const uint16_t result = send(RequestFrame(transactionId, CommandCode::EnterBootMode));
    if (result == ResultCode_Success) {
        disconnect();
    }
    return result;
}

uint16_t VeltraAsyncSDK::getUsbString(uint16_t transactionId, uint8_t index) {
    return send(RequestFrame(transactionId, CommandCode::GetUsbString).u8(index));
}

uint16_t VeltraAsyncSDK::send(const RequestFrame& request) {
    if (!connected) {
        return ResultCode_NotConnected;
    }
    communicationManager->sendRequest(request.content());
    return ResultCode_Success;
}

uint16_t VeltraAsyncSDK::refuseArgument() const {
    return connected ? ResultCode_InvalidArgument : ResultCode_NotConnected;
}
