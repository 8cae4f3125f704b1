// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "usbip/Connection.hpp"

#include <utility>

namespace usbip {

namespace {

/// More than any host's driver keeps; each may hold `maxOutputSize` bytes.
constexpr size_t maxPendingCommands = 256;
constexpr size_t maxUnsentBytes = size_t{1} << 20U;

const char* const onlyBusId = "1-1";

ListedDevice listed(const ExportedDevice& exported) {
    return {onlyBusId, 1, 2, exported.description};
}

} // namespace

Connection::~Connection() {
    if (isPluggedIn()) {
        exported.isTaken = false;
    }
}

void Connection::plugIn() {
    exported.isTaken = true;
    device = exported.plugIn([this](const Result& result) {
        --pendingCommands;
        send(returnSubmit(static_cast<uint32_t>(result.id), result));
    });
}

void Connection::receive(const uint8_t* data, size_t size, Time now) {
    reader.append(data, size);
    while (!isOver() && !isPluggedIn()) {
        const std::optional<Request> request = reader.nextRequest();
        if (!request) {
            break;
        }
        std::visit([this](const auto& asked) { answer(asked); }, *request);
    }
    while (!isOver() && isPluggedIn()) {
        std::optional<Command> command = reader.nextCommand();
        if (!command) {
            break;
        }
        used = true;
        std::visit([&](auto& asked) { carryOut(std::move(asked), now); }, *command);
    }
    over = over || reader.isMalformed();
}

void Connection::serve(Time now) {
    if (isPluggedIn()) {
        device->serve(now);
    }
}

std::optional<Time> Connection::nextDue() const {
    return isPluggedIn() ? device->nextDue() : std::nullopt;
}

bool Connection::isOver() const {
    return over || (isPluggedIn() && !device->isOnBus());
}

bool Connection::wantsInput() const {
    return !isOver() && outgoing.size() < maxUnsentBytes;
}

void Connection::answer(const ListRequest& /*request*/) {
    const ListedDevice only = listed(exported);
    send(listReply(exported.isTaken ? nullptr : &only));
    over = true;
}

void Connection::answer(const ImportRequest& request) {
    if (request.busId != onlyBusId) {
        send(importRefusal(Refusal::NoSuchDevice));
        over = true;
    } else if (exported.isTaken) {
        send(importRefusal(Refusal::DeviceBusy));
        over = true;
    } else {
        send(importReply(listed(exported)));
        plugIn();
    }
}

void Connection::carryOut(Submit command, Time now) {
    if (pendingCommands == maxPendingCommands) {
        over = true;
        return;
    }
    ++pendingCommands;
    device->submit(std::move(command.transfer), now);
}

void Connection::carryOut(const Unlink& command, Time /*now*/) {
    const bool wasPending = device->cancel(command.unlinked);
    if (wasPending) {
        --pendingCommands;
    }
    send(returnUnlink(command.sequence, wasPending));
}

void Connection::send(const Bytes& message) {
    outgoing.insert(outgoing.end(), message.begin(), message.end());
}

} // namespace usbip
