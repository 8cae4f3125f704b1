// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

namespace preload {

/// The variable that names the sockets of the adapters, separated by colons.
constexpr const char* socketVariable = "VELTRA_VIRTUAL_ADAPTER_SOCKET";

/// The longest path of a socket, its terminating null included.
constexpr unsigned long maxSocketPath = 108;

/// Stores the path of the socket with that number, which the first has as 1. Returns false when
/// there are fewer. A path that is too long for a socket is stored empty.
bool socketPath(unsigned number, char (&path)[maxSocketPath]);

/// Makes the adapters live as long as this process, whatever becomes of its descriptors. What is
/// held already, also by the process that this one was forked from, is let go.
void holdAdapters();

} // namespace preload
