// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/RemoteAdapter.hpp"
#include "preload/sockets.hpp"
#include "socket/Channel.hpp"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <pthread.h>

// The project hides its symbols by default; a hidden one would leave the real hidapi in charge.
#pragma GCC visibility push(default)
#include <hidapi.h>
#pragma GCC visibility pop

// The eight functions of hidapi that the library calls, before the real ones. The program's other
// hid_ functions remain hidapi's own.

using preload::RemoteAdapter;
using virtual_adapter::ByteReader;

namespace {

/// Bus and port of a path: the number of the socket, and that of the adapter there.
constexpr const char* pathFormat = "%u-%u:1.0";

constexpr size_t maxPath = 32;

/// How many characters an identity string has at most.
constexpr size_t maxText = 255;

/// An entry of the enumeration with the texts it points to. Programs hold the address of its first
/// member.
struct ListedDevice {
    hid_device_info info;
    char path[maxPath];
    wchar_t manufacturer[maxText + 1];
    wchar_t product[maxText + 1];
    wchar_t serialNumber[maxText + 1];
};

/// Reads a text into an array that is large enough for any that may be there.
wchar_t* readText(ByteReader& reader, wchar_t (&text)[maxText + 1]) {
    const size_t size = reader.u16();
    for (size_t i = 0; i < size; ++i) {
        const auto character = static_cast<wchar_t>(reader.u32());
        if (i < maxText) {
            text[i] = character;
        }
    }
    return text;
}

/// The next adapter of the list; null at its end, without memory, and where the list makes no
/// sense.
ListedDevice* readAdapter(ByteReader& reader, unsigned socketNumber) {
    auto* const listed = static_cast<ListedDevice*>(std::calloc(1, sizeof(ListedDevice)));
    if (listed == nullptr) {
        return nullptr;
    }
    hid_device_info& info = listed->info;
    const unsigned number = reader.u8();
    const bool isAccessible = reader.u8() != 0;
    info.vendor_id = reader.u16();
    info.product_id = reader.u16();
    info.release_number = reader.u16();
    info.manufacturer_string = readText(reader, listed->manufacturer);
    info.product_string = readText(reader, listed->product);
    info.serial_number = readText(reader, listed->serialNumber);
    if (reader.overran()) {
        std::free(listed);
        return nullptr;
    }
    if (!isAccessible) {
        info.manufacturer_string = nullptr;
        info.product_string = nullptr;
        info.serial_number = nullptr;
    }
    (void)std::snprintf(listed->path, sizeof listed->path, pathFormat, socketNumber, number);
    info.path = listed->path;
    info.bus_type = HID_API_BUS_USB;
    return listed;
}

bool isWanted(const hid_device_info& info, unsigned short vendorId, unsigned short productId) {
    return (vendorId == 0 || vendorId == info.vendor_id) &&
           (productId == 0 || productId == info.product_id);
}

/// Appends what stands at one socket. Returns where the next entry goes.
hid_device_info** appendAdapters(hid_device_info** end, unsigned socketNumber, const char* path,
                                 unsigned short vendorId, unsigned short productId) {
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
        ByteReader reader = reply.reader();
        for (unsigned left = reader.u8(); left > 0; --left) {
            ListedDevice* const listed = readAdapter(reader, socketNumber);
            if (listed == nullptr) {
                break;
            }
            if (isWanted(listed->info, vendorId, productId)) {
                *end = &listed->info;
                end = &listed->info.next;
            } else {
                std::free(listed);
            }
        }
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
        end = appendAdapters(end, number, path, vendor_id, product_id);
    }
    return first;
}

void hid_free_enumeration(hid_device_info* devs) {
    while (devs != nullptr) {
        hid_device_info* const next = devs->next;
        std::free(devs);
        devs = next;
    }
}

hid_device* hid_open_path(const char* path) {
    unsigned socketNumber = 0;
    unsigned adapterNumber = 0;
    char same[maxPath];
    if (path == nullptr ||
        // NOLINTNEXTLINE(cert-err34-c): what does not fit in shows when it is written again.
        std::sscanf(path, pathFormat, &socketNumber, &adapterNumber) != 2 ||
        std::snprintf(same, sizeof same, pathFormat, socketNumber, adapterNumber) < 0 ||
        std::strcmp(path, same) != 0 || adapterNumber > virtual_adapter::maxAdapters) {
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
