// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What may come over the socket: from programs, to the adapter's process, in two connections with
// any bytes in any pieces; from an adapter's process, to the client in foreign programs.
#include "Input.hpp"

#include "preload/listing.hpp"
#include "socket/Channel.hpp"
#include "ways/SocketConnection.hpp"

#include <hidapi.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>
#include <memory>
#include <vector>

using fuzzing::Input;
using fuzzing::require;
using virtual_adapter::AdapterRack;
using virtual_adapter::ReplyKind;
using virtual_adapter::ReplyStep;
using virtual_adapter::SocketConnection;

namespace {

/// What the server's loop does with one client, without the socket.
void receive(SocketConnection& client, const fuzzing::Bytes& bytes, SocketConnection::Time now) {
    if (client.wantsInput()) {
        client.receive(bytes.data(), bytes.size(), now);
    }
}

using Clients = std::array<std::unique_ptr<SocketConnection>, 2>;

/// Likewise with all: what one sends may be what another waits for.
void answer(Clients& clients, SocketConnection::Time now) {
    while (std::any_of(clients.begin(), clients.end(),
                       [now](const auto& client) { return client->serve(now); })) {
    }
    for (const auto& client : clients) {
        require(!client->nextDue() || *client->nextDue() > now,
                "nothing is due any more: else the server would not rest");
    }
}

void fuzzAdapter(Input& input) {
    AdapterRack rack(std::vector<virtual_adapter::AdapterSettings>(1));
    SocketConnection::Time now{};
    Clients clients;
    for (auto& client : clients) {
        client = std::make_unique<SocketConnection>(rack);
    }
    while (!input.isEmpty()) {
        const uint8_t action = input.byte();
        auto& client = clients[action & 1U];
        switch (action >> 1U) {
        case 0:
            client->output().clear();
            client->serve(now);
            break;
        case 1:
            now += std::chrono::milliseconds(10 * int{input.byte()});
            client->serve(now);
            break;
        case 2:
            client->hangUp(now);
            client = std::make_unique<SocketConnection>(rack);
            break;
        default:
            receive(*client, input.twoPartBytes(), now);
            break;
        }
        answer(clients, now);
    }
}

void fuzzClient(Input& input) {
    constexpr size_t capacity = 2048;
    const auto kind = static_cast<ReplyKind>(input.byte());
    const fuzzing::Bytes bytes = input.twoPartBytes();
    size_t size = 0;
    const size_t have = bytes.size() < capacity ? bytes.size() : capacity;
    const ReplyStep step = virtual_adapter::nextReply(bytes.data(), have, capacity, kind, size);
    if (step != ReplyStep::Broken) {
        require(size >= virtual_adapter::messageHead && size <= capacity,
                "a message fits where it is received");
        require((step == ReplyStep::Incomplete) == (have < size),
                "a whole message is known as one");
    }
    hid_device_info* first = nullptr;
    hid_device_info** const end = preload::appendListed(&first, virtual_adapter::ByteReader(bytes),
                                                        1, {input.number<uint16_t>(), 0});
    require(*end == nullptr, "a list ends");
    for (const hid_device_info* each = first; each != nullptr; each = each->next) {
        unsigned socketNumber = 0;
        unsigned adapterNumber = 0;
        require(std::strlen(each->path) < 32, "a path is a text");
        preload::readPath(each->path, socketNumber, adapterNumber);
        require(each->serial_number == nullptr || std::wcslen(each->serial_number) <= 255,
                "a serial number is a text");
    }
    preload::freeListed(first);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    if (input.number<bool>()) {
        fuzzClient(input);
    } else {
        fuzzAdapter(input);
    }
    return 0;
}
