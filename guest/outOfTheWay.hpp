// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

namespace guest {

/// Moves a descriptor out of a program's way: programs that close or reuse "all" their descriptors
/// usually mean the low ones. Returns what it is now, close-on-exec; @p descriptor itself, as it
/// was, where there is no room above.
int outOfTheWay(int descriptor);

} // namespace guest
