// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Output.hpp"
#include "buses/I2c.hpp"

#include <vector>

namespace veltra {

/// Plugs each bus into this machine's kernel as a device that it drives, says which of the kernel's
/// buses it has become, and serves them until the kernel lets go of all. The end of the link and
/// the user's interruption are Failures, behind which the kernel's buses are gone.
void lendToKernel(Session& session, Output& output, const std::vector<I2cSettings>& buses);

} // namespace veltra
