// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/BoardDescription.hpp"

namespace virtual_adapter {

/// The board that the adapter has unless told otherwise. docs/virtual-adapter/ describes it for
/// users.
BoardDescription factoryDescription();

Board factoryBoard();

} // namespace virtual_adapter
