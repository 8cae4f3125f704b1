// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "preload/listing.hpp"

#include "socket/messages.hpp"

#include <hidapi.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace preload {

using virtual_adapter::ByteReader;

namespace {

/// Bus and port: the number of the socket, and that of the adapter there.
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

bool isWanted(const hid_device_info& info, Wanted wanted) {
    return (wanted.vendorId == 0 || wanted.vendorId == info.vendor_id) &&
           (wanted.productId == 0 || wanted.productId == info.product_id);
}

} // namespace

hid_device_info** appendListed(hid_device_info** end, ByteReader adapters, unsigned socketNumber,
                               Wanted wanted) {
    for (unsigned left = adapters.u8(); left > 0; --left) {
        ListedDevice* const listed = readAdapter(adapters, socketNumber);
        if (listed == nullptr) {
            break;
        }
        if (isWanted(listed->info, wanted)) {
            *end = &listed->info;
            end = &listed->info.next;
        } else {
            std::free(listed);
        }
    }
    return end;
}

void freeListed(hid_device_info* first) {
    while (first != nullptr) {
        hid_device_info* const next = first->next;
        std::free(first);
        first = next;
    }
}

bool readPath(const char* path, unsigned& socketNumber, unsigned& adapterNumber) {
    char same[maxPath];
    // What does not fit in shows when it is written again.
    // NOLINTNEXTLINE(cert-err34-c)
    return std::sscanf(path, pathFormat, &socketNumber, &adapterNumber) == 2 &&
           std::snprintf(same, sizeof same, pathFormat, socketNumber, adapterNumber) > 0 &&
           std::strcmp(path, same) == 0 && adapterNumber <= virtual_adapter::maxAdapters;
}

} // namespace preload
