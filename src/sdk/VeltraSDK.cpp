// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include <veltrasdk/VeltraSDK.hpp>

#include "driver/CommunicationManager.hpp"
#include "sdk/Engine.hpp"

VeltraSDK::VeltraSDK(int timeoutMs) : engine(std::make_unique<Engine>(timeoutMs)) {}

VeltraSDK::~VeltraSDK() = default;

bool VeltraSDK::connect(const std::string& path) {
    return engine->connect(&VeltraAsyncSDK::connect, path);
}

bool VeltraSDK::connectWithSerialNumber(const std::string& serialNumber) {
    return engine->connect(&VeltraAsyncSDK::connectWithSerialNumber, serialNumber);
}

void VeltraSDK::disconnect() {
    engine->disconnect();
}

bool VeltraSDK::isConnected() const {
    return engine->isConnected();
}

void VeltraSDK::setStrict(bool strict) {
    engine->setStrict(strict);
}

uint16_t VeltraSDK::setOverlap(uint8_t requests) {
    return engine->setOverlap(requests);
}

uint64_t VeltraSDK::getUnmatchedResponses() const {
    return engine->unmatchedResponses();
}

void VeltraSDK::onNotification(std::function<void(const Notification&)> handler) {
    engine->onNotification(std::move(handler));
}

uint16_t VeltraSDK::generateTransactionId() {
    return engine->generateTransactionId();
}

void VeltraSDK::handleResponse(const std::vector<uint8_t>& frame) {
    engine->handleResponse(frame);
}
