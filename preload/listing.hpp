// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/ByteReader.hpp"

struct hid_device_info;

namespace preload {

/// What an enumeration asks for; 0 is any.
struct Wanted {
    unsigned short vendorId;
    unsigned short productId;
};

/// Appends the wanted ones of what an adapter's process lists: whatever it says, the list is whole.
/// Returns where the next entry goes.
hid_device_info** appendListed(hid_device_info** end, virtual_adapter::ByteReader adapters,
                               unsigned socketNumber, Wanted wanted);

/// Releases a list.
void freeListed(hid_device_info* first);

/// Reads the numbers of the socket and of the adapter there from a path as it is listed. Returns
/// false for any other.
bool readPath(const char* path, unsigned& socketNumber, unsigned& adapterNumber);

} // namespace preload
