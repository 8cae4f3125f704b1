// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "driver/CommunicationManager.hpp"

#include "driver/VeltraDriver.hpp"

#include <utility>

CommunicationManager::CommunicationManager() : driver(std::make_unique<VeltraDriver>()) {
    driver->onResponse(
        [this](const std::vector<uint8_t>& report) { onDriverResponseCallback(report); });
}

CommunicationManager::~CommunicationManager() {
    // The polling thread must not meet a callback that is being destroyed.
    driver->close();
}

bool CommunicationManager::connect(const std::string& path, const std::string& serialNumber) {
    // Held until the framing object is in place, so that a report which arrives in between waits.
    const std::lock_guard<std::mutex> lock(protocolMutex);
    if (!driver->open(path, serialNumber)) {
        return false;
    }
    protocol.emplace(driver->getEndpointSize());
    return true;
}

void CommunicationManager::disconnect() {
    driver->close();
}

bool CommunicationManager::writeReports(const Message& request, bool goesOn) {
    const UsbTransferProtocol framing = *protocol;
    const size_t size = request.size();
    if (size == 0) {
        return true;
    }
    OutputReport report;
    const auto write = [&](size_t offset) {
        return driver->sendReport(report, framing.createPacket(report.packet(), request, offset));
    };
    bool allWritten = write(0);
    for (size_t offset = framing.getPacketPayloadLength(); offset < size && (allWritten || goesOn);
         offset += framing.getPacketPayloadLength()) {
        allWritten = write(offset) && allWritten;
    }
    return allWritten;
}

bool CommunicationManager::hasReadError() const {
    return driver->hasReadError();
}

void CommunicationManager::assignCallback(
    std::function<void(const std::vector<uint8_t>&)> callback) {
    responseCallback.swap(callback);
}

void CommunicationManager::assignReadErrorCallback(std::function<void()> callback) {
    driver->onReadError(std::move(callback));
}

void CommunicationManager::onDriverResponseCallback(const std::vector<uint8_t>& report) {
    bool complete = false;
    {
        const std::lock_guard<std::mutex> lock(protocolMutex);
        complete =
            protocol.has_value() && protocol->receiveUsbInTransferPackets(receivedMessage, report);
    }
    if (complete) {
        responseCallback(receivedMessage);
    }
}
