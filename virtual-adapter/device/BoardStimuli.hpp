// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "model/Adapter.hpp"
#include "stimuli/Stimulus.hpp"

#include <string>

namespace virtual_adapter {

/// Lets the board of @p adapter feel what concerns it. Returns an empty text, or why that cannot
/// be; other stimuli are not for the board. What the adapter has to say of it waits to be taken.
std::string stimulateBoard(Adapter& adapter, const Stimulus& stimulus);

} // namespace virtual_adapter
