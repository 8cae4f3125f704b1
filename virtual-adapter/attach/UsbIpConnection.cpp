#include "attach/UsbIpConnection.hpp"

#include <utility>

namespace virtual_adapter {

namespace {

/// More than any host's driver keeps; each may hold `longestUsbIpOutput` bytes.
constexpr size_t mostPendingCommands = 256;
constexpr size_t mostUnsentBytes = size_t{1} << 20U;

const char* const onlyBusId = "1-1";

UsbIpDevice deviceOf(const AdapterSettings& settings) {
    return {onlyBusId, 1, 2, settings.identity};
}

} // namespace

UsbIpConnection::~UsbIpConnection() {
    if (isPluggedIn()) {
        port.isTaken = false;
    }
}

void UsbIpConnection::plugIn() {
    port.isTaken = true;
    device = std::make_unique<UsbDevice>(port.settings, [this](const UsbResult& result) {
        --pendingCommands;
        send(usbIpReturnSubmit(static_cast<uint32_t>(result.id), result));
    });
}

void UsbIpConnection::receive(const uint8_t* data, size_t size, Time now) {
    reader.append(data, size);
    while (!isOver() && !isPluggedIn()) {
        const std::optional<UsbIpRequest> request = reader.nextRequest();
        if (!request) {
            break;
        }
        std::visit([this](const auto& asked) { answer(asked); }, *request);
    }
    while (!isOver() && isPluggedIn()) {
        std::optional<UsbIpCommand> command = reader.nextCommand();
        if (!command) {
            break;
        }
        std::visit([&](auto& asked) { carryOut(std::move(asked), now); }, *command);
    }
    over = over || reader.isMalformed();
}

void UsbIpConnection::serve(Time now) {
    if (isPluggedIn()) {
        device->serve(now);
    }
}

std::optional<UsbIpConnection::Time> UsbIpConnection::nextDue() const {
    return isPluggedIn() ? device->nextDue() : std::nullopt;
}

bool UsbIpConnection::isOver() const {
    return over || (isPluggedIn() && !device->isOnBus());
}

bool UsbIpConnection::wantsInput() const {
    return !isOver() && outgoing.size() < mostUnsentBytes;
}

void UsbIpConnection::answer(const UsbIpListRequest& /*request*/) {
    const UsbIpDevice listed = deviceOf(port.settings);
    send(usbIpListReply(port.isTaken ? nullptr : &listed));
    over = true;
}

void UsbIpConnection::answer(const UsbIpImportRequest& request) {
    if (request.busId != onlyBusId) {
        send(usbIpImportRefusal(UsbIpRefusal::NoSuchDevice));
        over = true;
    } else if (port.isTaken) {
        send(usbIpImportRefusal(UsbIpRefusal::DeviceBusy));
        over = true;
    } else {
        send(usbIpImportReply(deviceOf(port.settings)));
        plugIn();
    }
}

void UsbIpConnection::carryOut(UsbIpSubmit command, Time now) {
    if (pendingCommands == mostPendingCommands) {
        over = true;
        return;
    }
    ++pendingCommands;
    device->submit(std::move(command.transfer), now);
}

void UsbIpConnection::carryOut(const UsbIpUnlink& command, Time /*now*/) {
    const bool wasPending = device->cancel(command.unlinked);
    if (wasPending) {
        --pendingCommands;
    }
    send(usbIpReturnUnlink(command.sequence, wasPending));
}

void UsbIpConnection::send(const Bytes& message) {
    outgoing.insert(outgoing.end(), message.begin(), message.end());
}

} // namespace virtual_adapter
