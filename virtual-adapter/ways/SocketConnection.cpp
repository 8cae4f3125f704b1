// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "ways/SocketConnection.hpp"

#include "bytes/ByteReader.hpp"
#include "device/Utf16.hpp"
#include "socket/replies.hpp"

#include <algorithm>
#include <chrono>
#include <string>

namespace virtual_adapter {

void SocketConnection::receive(const uint8_t* data, size_t size, Time now) {
    input.append(data, size);
    serve(now);
}

bool SocketConnection::serve(Time now) {
    const size_t before = unsent.size();
    if (waiting) {
        serveRead(now);
    }
    if (delayed && delayed->due <= now) {
        send(delayed->bytes);
        delayed.reset();
    }
    while (wantsInput()) {
        const auto message = input.next();
        if (!message) {
            break;
        }
        answer(*message, now);
    }
    if (input.isMalformed() && !over) {
        refuse("a message has no size that can be");
    }
    return unsent.size() > before;
}

std::optional<SocketConnection::Time> SocketConnection::nextDue() const {
    if (delayed) {
        return delayed->due;
    }
    if (!waiting) {
        return std::nullopt;
    }
    const std::optional<Time> report = adapter->nextDue();
    if (!report || !waiting->until) {
        return report ? report : waiting->until;
    }
    return std::min(*report, *waiting->until);
}

void SocketConnection::hangUp(Time now) {
    if (isOwner && adapter->isOpenAs(session)) {
        adapter->close(now);
    }
    isOwner = false;
    waiting.reset();
    delayed.reset();
}

void SocketConnection::answer(const MessageBuffer::Message& message, Time now) {
    ByteReader fields(message.content);
    if (!hasGreeted) {
        hasGreeted = message.kind == ClientMessageKind::Hello && fields.u32() == helloMagic &&
                     fields.u16() == socketVersion && fields.consumedExactly();
        if (!hasGreeted) {
            refuse(
                "this adapter speaks version " + std::to_string(socketVersion) +
                " of the socket's messages; the program's virtual adapter is of another version");
        }
        return;
    }
    switch (message.kind) {
    case ClientMessageKind::List:
        list();
        break;
    case ClientMessageKind::Open:
        open(fields);
        break;
    case ClientMessageKind::Join:
        join(fields);
        break;
    case ClientMessageKind::Write:
        write(fields.rest(), now);
        break;
    case ClientMessageKind::Read:
        startRead(fields, now);
        break;
    case ClientMessageKind::Close:
        hangUp(now);
        send(replyOf(ReplyKind::Closed));
        break;
    case ClientMessageKind::Tell:
        tell(fields, now);
        break;
    case ClientMessageKind::Hold:
        holds = true;
        break;
    default:
        refuse("a message is of no kind that there is");
        return;
    }
    if (!fields.consumedExactly() && !over) {
        refuse("a message is longer or shorter than its kind");
    }
}

void SocketConnection::list() {
    std::vector<ListedAdapter> listed;
    uint8_t number = 0;
    for (const HostedAdapter& each : rack.adapters()) {
        ++number;
        if (!each.isOnBus()) {
            continue;
        }
        const AdapterSettings& settings = each.adapterSettings();
        const UsbIdentity& identity = settings.identity;
        ListedAdapter entry{number,
                            each.isAccessible(),
                            identity.vendorId,
                            identity.productId,
                            identity.deviceRelease,
                            {},
                            {},
                            {}};
        if (entry.isAccessible) {
            entry.manufacturer = charactersOfUtf8(identity.manufacturer);
            entry.product = charactersOfUtf8(identity.variant.name);
            entry.serialNumber = charactersOfUtf8(settings.serialNumber);
        }
        listed.push_back(entry);
    }
    send(adaptersReply(listed));
}

void SocketConnection::open(ByteReader& fields) {
    HostedAdapter* const wanted = rack.find(fields.u8());
    if (adapter != nullptr) {
        refuse("a connection opens or joins once");
        return;
    }
    const HostedAdapter::Session next = rack.nextSession();
    if (wanted == nullptr || !wanted->open(next)) {
        send(openedReply(wanted == nullptr ? Outcome::Gone : Outcome::Refused, 0));
        return;
    }
    adapter = wanted;
    session = next;
    isOwner = true;
    send(openedReply(Outcome::Done, session));
}

void SocketConnection::join(ByteReader& fields) {
    const HostedAdapter::Session wanted = fields.u32();
    if (adapter != nullptr) {
        refuse("a connection opens or joins once");
        return;
    }
    for (HostedAdapter& each : rack.adapters()) {
        if (each.isOpenAs(wanted)) {
            adapter = &each;
            session = wanted;
        }
    }
    send(replyOf(ReplyKind::Joined, adapter == nullptr ? Outcome::Gone : Outcome::Done));
}

void SocketConnection::write(const Bytes& report, Time now) {
    if (adapter == nullptr || !adapter->isOpenAs(session)) {
        send(replyOf(ReplyKind::Written, Outcome::Gone));
        return;
    }
    const bool written =
        !report.empty() && report.size() <= maxWriteSize && adapter->write(report, now);
    const Bytes reply = replyOf(ReplyKind::Written, written ? Outcome::Done : Outcome::Refused);
    if (written && adapter->outputArrival() > now) {
        delayed = DelayedReply{reply, adapter->outputArrival()};
    } else {
        send(reply);
    }
}

void SocketConnection::startRead(ByteReader& fields, Time now) {
    const auto milliseconds = static_cast<int32_t>(fields.u32());
    if (adapter == nullptr) {
        send(replyOf(ReplyKind::Report, Outcome::Gone));
        return;
    }
    waiting.emplace();
    if (milliseconds >= 0) {
        waiting->until = now + std::chrono::milliseconds(milliseconds);
    }
    serveRead(now);
}

void SocketConnection::serveRead(Time now) {
    const bool isOpen = adapter->isOpenAs(session);
    if (const auto report = isOpen ? adapter->read(now) : std::nullopt) {
        send(replyOf(ReplyKind::Report, Outcome::Done, *report));
    } else if (!isOpen || !adapter->isInReach()) {
        send(replyOf(ReplyKind::Report, Outcome::Gone));
    } else if (waiting->until && *waiting->until <= now) {
        send(replyOf(ReplyKind::Report, Outcome::NothingYet));
    } else {
        return;
    }
    waiting.reset();
}

void SocketConnection::tell(ByteReader& fields, Time now) {
    const Bytes serialNumber = fields.bytes(fields.u16());
    const Bytes stimulus = fields.rest();
    if (fields.overran()) {
        return;
    }
    const std::string complaint = rack.tell({serialNumber.begin(), serialNumber.end()},
                                            {stimulus.begin(), stimulus.end()}, now);
    send(textReply(ReplyKind::Told, complaint));
}

void SocketConnection::send(const Bytes& reply) {
    unsent.insert(unsent.end(), reply.begin(), reply.end());
}

void SocketConnection::refuse(const std::string& why) {
    send(textReply(ReplyKind::Refused, "veltra-virtual-adapter: " + why + "\n"));
    over = true;
}

} // namespace virtual_adapter
