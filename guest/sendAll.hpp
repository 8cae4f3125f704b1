// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

#include <sys/uio.h>

namespace guest {

/// Sends all of the parts, one behind the other, which uses the array up. Whoever listens no more
/// is an error, and no signal to a program that expects none. False leaves errno as the failure has
/// set it.
bool sendAll(int socket, iovec* parts, size_t count);

} // namespace guest
