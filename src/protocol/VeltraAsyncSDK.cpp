// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/Link.hpp"

#include <utility>

uint16_t VeltraAsyncSDK::Link::send(const RequestFrame& request) {
    if (!connected) {
        return ResultCode_NotConnected;
    }
    if (gate != nullptr) {
        return gate->send(request);
    }
    communicationManager.sendRequest(request.message());
    return ResultCode_Success;
}

VeltraAsyncSDK::VeltraAsyncSDK() : link(std::make_unique<Link>()) {
    link->communicationManager.assignCallback([](const std::vector<uint8_t>&) {});
}

VeltraAsyncSDK::~VeltraAsyncSDK() = default;

void VeltraAsyncSDK::onResponse(std::function<void(const std::vector<uint8_t>&)> callback) {
    link->communicationManager.assignCallback(std::move(callback));
}

bool VeltraAsyncSDK::connect(const std::string& path) {
    link->connected = link->communicationManager.connect(path, "");
    return link->connected;
}

bool VeltraAsyncSDK::connectWithSerialNumber(const std::string& serialNumber) {
    link->connected = link->communicationManager.connect("", serialNumber);
    return link->connected;
}

void VeltraAsyncSDK::disconnect() {
    link->communicationManager.disconnect();
    link->connected = false;
}

bool VeltraAsyncSDK::isConnected() const {
    return link->connected;
}
