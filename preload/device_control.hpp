// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "preload/Conversation.hpp"

namespace preload {

/// The ioctls of Linux's i2c-dev and spidev: takes what the program's structures hold and point to,
/// and stores there what the broker answers. Returns the result, or -1 with errno.
int control(Conversation& conversation, const DeviceId& id, uint32_t request, void* argument);

} // namespace preload
