// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <veltrasdk/Notification.hpp>

namespace fuzzing {

/// Does what a careful notification handler may do: decodes the record in C and in C++, checks that
/// both say the same, and reads every byte that the frame holds behind a payload pointer.
void consume(const Notification& notification);

/// The same as a C callback.
void consumeInC(const Notification* notification);

} // namespace fuzzing
