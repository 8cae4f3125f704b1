// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Board.hpp"

namespace virtual_adapter {

/// The board that the adapter has unless told otherwise. docs/virtual-adapter/ describes it for
/// users.
Board factoryBoard();

} // namespace virtual_adapter
