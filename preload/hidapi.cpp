// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/RemoteAdapter.hpp"
#include "preload/listing.hpp"
#include "preload/sockets.hpp"
#include "socket/Channel.hpp"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include <pthread.h>

// The project hides its symbols by default; a hidden one would leave the real hidapi in charge.
#pragma GCC visibility push(default)
#include <hidapi.h>
#pragma GCC visibility pop

// The eight functions of hidapi that the library calls, before the real ones. The program's other
// hid_ functions remain hidapi's own.

using preload::RemoteAdapter;

namespace {

/// Appends what stands at one socket. Returns where the next entry goes.
hid_device_info** appendAdapters(hid_device_info** end, unsigned socketNumber, const char* path,
                                 preload::Wanted wanted) {
    const int socket = virtual_adapter::greetAdapter(path);
    if (socket < 0) {
        return end;
    }
    auto* const buffer = static_cast<uint8_t*>(std::malloc(virtual_adapter::maxMessageSize));
    virtual_adapter::ClientMessage message(virtual_adapter::ClientMessageKind::List);
    virtual_adapter::Reply reply;
    if (buffer != nullptr && virtual_adapter::sendMessage(socket, message) &&
        virtual_adapter::receiveReply(socket, virtual_adapter::ReplyKind::Adapters, buffer,
                                      virtual_adapter::maxMessageSize, reply)) {
        end = preload::appendListed(end, reply.reader(), socketNumber, wanted);
    }
    std::free(buffer);
    close(socket);
    return end;
}

RemoteAdapter* adapterBehind(hid_device* handle) {
    auto* const adapter = reinterpret_cast<RemoteAdapter*>(handle);
    return preload::isAdapter(adapter) ? adapter : nullptr;
}

/// Before the program's own start: as long as it lives its adapters do.
__attribute__((constructor)) void comeToLife() {
    preload::holdAdapters();
    pthread_atfork(preload::lockAdapters, preload::unlockAdapters, [] {
        preload::forgetAdapters();
        preload::holdAdapters();
    });
}

} // namespace

int hid_init() {
    return 0;
}

int hid_exit() {
    if (preload::isAnyAdapterOpen()) {
        (void)std::fputs("veltra-virtual-adapter: hid_exit while a device is open: the real hidapi "
                         "aborts here too\n",
                         stderr);
        std::abort();
    }
    return 0;
}

// NOLINTNEXTLINE(readability-identifier-naming): hidapi's names.
hid_device_info* hid_enumerate(unsigned short vendor_id, unsigned short product_id) {
    hid_device_info* first = nullptr;
    hid_device_info** end = &first;
    char path[preload::maxSocketPath];
    for (unsigned number = 1; preload::socketPath(number, path); ++number) {
        end = appendAdapters(end, number, path, {vendor_id, product_id});
    }
    return first;
}

void hid_free_enumeration(hid_device_info* devs) {
    preload::freeListed(devs);
}

hid_device* hid_open_path(const char* path) {
    unsigned socketNumber = 0;
    unsigned adapterNumber = 0;
    if (path == nullptr || !preload::readPath(path, socketNumber, adapterNumber)) {
        return nullptr;
    }
    char socket[preload::maxSocketPath];
    if (!preload::socketPath(socketNumber, socket)) {
        return nullptr;
    }
    RemoteAdapter* const adapter = preload::adapterWith(socketNumber, adapterNumber);
    if (adapter == nullptr || !preload::openAdapter(*adapter)) {
        return nullptr;
    }
    return reinterpret_cast<hid_device*>(adapter);
}

int hid_write(hid_device* device, const unsigned char* data, size_t length) {
    RemoteAdapter* const adapter = adapterBehind(device);
    if (adapter == nullptr || data == nullptr || length == 0) {
        return -1;
    }
    // The report identifier 0 of unnumbered reports does not go on the wire.
    const size_t skipped = data[0] == 0 ? 1 : 0;
    return preload::writeReport(*adapter, data + skipped, length - skipped)
               ? static_cast<int>(length)
               : -1;
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds) {
    RemoteAdapter* const adapter = adapterBehind(device);
    if (adapter == nullptr || data == nullptr) {
        return -1;
    }
    return preload::readReport(*adapter, data, length, milliseconds);
}

void hid_close(hid_device* device) {
    if (RemoteAdapter* const adapter = adapterBehind(device)) {
        preload::closeAdapter(*adapter);
    }
}
