// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

/// The heap allocations made with operator new so far, by any thread.
size_t allocationsSoFar();
