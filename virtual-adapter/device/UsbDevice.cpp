// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/UsbDevice.hpp"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr uint8_t endpointNumberMask = 0x0F;

/// With more answers than these unread, the adapter takes no request. The longest answer has 1,215
/// reports: a UART message of 65,535 bytes that comes back at full speed.
constexpr size_t maxUnreadReports = 4096;

bool erase(std::deque<UsbTransfer>& transfers, uint64_t id) {
    const auto found = std::find_if(transfers.begin(), transfers.end(),
                                    [=](const UsbTransfer& transfer) { return transfer.id == id; });
    if (found == transfers.end()) {
        return false;
    }
    transfers.erase(found);
    return true;
}

} // namespace

UsbDevice::UsbDevice(const AdapterSettings& chosen, std::function<void(UsbResult)> receiver)
    : settings(chosen),
      link(std::make_unique<AdapterLink>(chosen)),
      control(chosen.identity, chosen.serialNumber),
      completed(std::move(receiver)) {}

void UsbDevice::submit(UsbTransfer transfer, Time now) {
    if (!isOnBus()) {
        end(transfer, UsbStatus::Unplugged);
    } else if ((transfer.endpointAddress & endpointNumberMask) == 0) {
        submitControl(transfer, now);
        stallUnusableEndpoints();
    } else if (!isUsable(transfer.endpointAddress)) {
        end(transfer, UsbStatus::Stalled);
    } else if (transfer.endpointAddress == inEndpointAddress) {
        pendingInput.push_back(std::move(transfer));
    } else {
        pendingOutput.push_back(std::move(transfer));
    }
    serve(now);
}

bool UsbDevice::cancel(uint64_t id) {
    return erase(pendingInput, id) || erase(pendingOutput, id);
}

void UsbDevice::serve(Time now) {
    do {
        while (isOnBus() && serveOneInput(now)) {
        }
    } while (isOnBus() && serveOneOutput(now));
    if (!isOnBus()) {
        unplug();
    }
}

std::optional<UsbDevice::Time> UsbDevice::nextDue() const {
    return pendingInput.empty() ? std::nullopt : link->nextInputDue();
}

void UsbDevice::acceptOutput(bool accept, Time now) {
    acceptsOutput = accept;
    serve(now);
}

void UsbDevice::reset() {
    link = std::make_unique<AdapterLink>(settings);
}

std::string UsbDevice::tell(const std::string& stimulus, Time now) {
    std::string complaint = link->tell(stimulus, now);
    serve(now);
    return complaint;
}

void UsbDevice::unplug() {
    unplugged = true;
    endAll(pendingInput, UsbStatus::Unplugged);
    endAll(pendingOutput, UsbStatus::Unplugged);
}

void UsbDevice::submitControl(const UsbTransfer& transfer, Time now) {
    std::optional<Bytes> reply =
        control.handle(transfer.setup, transfer.data, [&](const Bytes& report) {
            return hasRoomForAnswers() && link->writeReport(report, now);
        });
    if (!reply) {
        end(transfer, UsbStatus::Stalled);
        return;
    }
    reply->resize(std::min(reply->size(), transfer.length));
    const size_t length = transfer.setup.isDeviceToHost() ? reply->size() : transfer.data.size();
    end(transfer, UsbStatus::Completed, length, std::move(*reply));
}

void UsbDevice::stallUnusableEndpoints() {
    if (!isUsable(inEndpointAddress)) {
        endAll(pendingInput, UsbStatus::Stalled);
    }
    if (!isUsable(outEndpointAddress)) {
        endAll(pendingOutput, UsbStatus::Stalled);
    }
}

bool UsbDevice::serveOneOutput(Time now) {
    if (pendingOutput.empty() || !acceptsOutput || !hasRoomForAnswers()) {
        return false;
    }
    const UsbTransfer transfer = std::move(pendingOutput.front());
    pendingOutput.pop_front();
    if (link->writeReport(transfer.data, now)) {
        end(transfer, UsbStatus::Completed, transfer.data.size());
    } else {
        end(transfer, link->isOnBus() ? UsbStatus::Stalled : UsbStatus::Unplugged);
    }
    return true;
}

bool UsbDevice::serveOneInput(Time now) {
    std::optional<Bytes> report = pendingInput.empty() ? std::nullopt : link->takeInputReport(now);
    if (!report) {
        return false;
    }
    const UsbTransfer transfer = std::move(pendingInput.front());
    pendingInput.pop_front();
    if (report->size() > transfer.length) {
        end(transfer, UsbStatus::Overflowed);
    } else {
        const size_t length = report->size();
        end(transfer, UsbStatus::Completed, length, std::move(*report));
    }
    return true;
}

bool UsbDevice::hasRoomForAnswers() const {
    return link->inputReportCount() <= maxUnreadReports;
}

bool UsbDevice::isUsable(uint8_t endpointAddress) const {
    return control.isConfigured() && !control.isHalted(endpointAddress) &&
           (endpointAddress == inEndpointAddress || endpointAddress == outEndpointAddress);
}

void UsbDevice::endAll(std::deque<UsbTransfer>& transfers, UsbStatus status) {
    for (const UsbTransfer& transfer : transfers) {
        end(transfer, status);
    }
    transfers.clear();
}

void UsbDevice::end(const UsbTransfer& transfer, UsbStatus status, size_t actualLength,
                    Bytes data) {
    completed({transfer.id, status, actualLength, std::move(data)});
}

} // namespace virtual_adapter
