// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i3c/i3c_ccc.hpp"

#include "model/i3c/I3cCccCommand.hpp"

#include <algorithm>
#include <optional>

namespace virtual_adapter {

namespace {

using Kind = I3cCccCommand::Kind;

/// The bit by which the direct form of a code differs from its broadcast form.
constexpr uint8_t directBit = 0x80;

/// The lengths of CCC data travel most significant byte first.
uint16_t lengthFrom(const Bytes& operands) {
    return static_cast<uint16_t>(operands[0] << 8U | operands[1]);
}

Bytes bytesOf(uint16_t length) {
    return {static_cast<uint8_t>(length >> 8U), static_cast<uint8_t>(length & 0xFFU)};
}

/// The codes whose broadcast form does to every target what the direct form does to one.
void set(I3cTarget& target, CCC directCode, const Bytes& operands) {
    switch (directCode) {
    case CCC_ENECDirect:
        target.enableEvents(operands[0]);
        break;
    case CCC_DISECDirect:
        target.disableEvents(operands[0]);
        break;
    case CCC_SETMWLDirect:
        target.setMaxWriteLength(lengthFrom(operands));
        break;
    case CCC_SETMRLDirect:
        target.setMaxReadLength(lengthFrom(operands));
        if (operands.size() > 2) {
            target.setMaxIbiPayloadSize(operands[2]);
        }
        break;
    default:
        break;
    }
}

/// The target's reply, or nothing when it does not acknowledge the query.
std::optional<Bytes> query(I3cTarget& target, CCC code, std::optional<uint8_t> definingByte) {
    const I3cCharacteristics& kind = target.characteristics();
    switch (static_cast<uint32_t>(code)) {
    case CCC_GETMWL:
        return bytesOf(target.maxWriteLength());
    case CCC_GETMRL: {
        Bytes reply = bytesOf(target.maxReadLength());
        if (target.hasIbiPayload()) {
            reply.push_back(target.maxIbiPayloadSize());
        }
        return reply;
    }
    case CCC_GETPID:
        return Bytes(kind.pid.begin(), kind.pid.end());
    case CCC_GETBCR:
        return Bytes{kind.bcr};
    case CCC_GETDCR:
        return Bytes{kind.dcr};
    case CCC_GETSTATUS:
        return target.status(definingByte);
    case CCC_GETCAPS:
        return target.capabilities(definingByte);
    case getMaxDataSpeed:
        return target.maxDataSpeed(definingByte);
    default:
        return target.resetAction(definingByte.value_or(0));
    }
}

} // namespace

Answer I3cCcc::transfer(ByteReader& request) {
    const I3cCccCommand command(request, controller.getTable().isBesideLegacy());
    Status status = controller.onInitialisedBus(command.status());
    if (status != Status::Success) {
        return status;
    }
    Bytes received;
    controller.start();
    status = carryOut(command, received);
    controller.stop();

    return {status, ByteWriter()
                        .bytes(command.echo())
                        .countU8(static_cast<uint8_t>(received.size()))
                        .bytes(received)};
}

Status I3cCcc::carryOut(const I3cCccCommand& command, Bytes& received) {
    // Every target acknowledges the broadcast address; what it does not know it ignores.
    if (controller.getBus().powered().empty()) {
        return Status::NotAcknowledged;
    }
    if (!command.isKnown()) {
        return command.kind() == Kind::Broadcast ? Status::Success : Status::NotAcknowledged;
    }
    switch (command.kind()) {
    case Kind::Broadcast:
        return broadcast(command);
    case Kind::Write:
        return write(command);
    default:
        return read(command, received);
    }
}

Status I3cCcc::broadcast(const I3cCccCommand& command) {
    const Bytes operands = command.operands();
    switch (command.code()) {
    case CCC_RSTDAA:
        controller.getTable().resetAddresses();
        return Status::Success;
    case CCC_ENTDAA:
        controller.getTable().assignAll();
        return Status::Success;
    case CCC_SETAASA:
        return controller.getTable().adoptStatic(operands);
    case CCC_RSTACTBroadcast:
        for (I3cTarget* target : controller.getBus().powered()) {
            target->armReset(operands[0]);
        }
        return Status::Success;
    default:
        break;
    }
    for (I3cTarget* target : controller.getBus().powered()) {
        set(*target, static_cast<CCC>(command.code() | directBit), operands);
    }
    const bool admitted = command.code() == CCC_ENECBroadcast;
    if ((admitted || command.code() == CCC_DISECBroadcast) &&
        (operands[0] & i3c_event::hotJoin) != 0) {
        controller.admitHotJoin(admitted);
    }
    return Status::Success;
}

Status I3cCcc::write(const I3cCccCommand& command) {
    const Bytes operands = command.operands();
    if (command.code() == CCC_SETDASA) {
        return controller.getTable().assignFromStatic(command.address(), operands[0] / 2);
    }
    I3cTarget* target = controller.getBus().withDynamicAddress(command.address());
    if (target == nullptr) {
        return Status::NotAcknowledged;
    }
    switch (command.code()) {
    case CCC_SETNEWDA:
        return controller.getTable().change(*target, operands[0] / 2);
    case CCC_RSTACTDirect:
        return target->armReset(command.definingByte().value_or(0)) ? Status::Success
                                                                    : Status::NotAcknowledged;
    default:
        set(*target, command.code(), operands);
        return Status::Success;
    }
}

Status I3cCcc::read(const I3cCccCommand& command, Bytes& received) {
    I3cTarget* target = controller.getBus().withDynamicAddress(command.address());
    if (target == nullptr) {
        return Status::NotAcknowledged;
    }
    const std::optional<Bytes> reply = query(*target, command.code(), command.definingByte());
    if (!reply.has_value()) {
        return Status::NotAcknowledged;
    }
    received = *reply;
    received.resize(std::min(received.size(), command.length()));
    return Status::Success;
}

} // namespace virtual_adapter
