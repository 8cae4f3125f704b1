// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

namespace virtual_adapter {

/// A whole message between host and adapter, header included.
using Frame = Bytes;

} // namespace virtual_adapter
