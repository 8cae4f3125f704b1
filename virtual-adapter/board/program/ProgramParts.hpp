// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/BoardDescription.hpp"
#include "board/program/PartProcess.hpp"

#include <functional>
#include <memory>
#include <string>

namespace virtual_adapter {

/// Is told what a part has done wrong, in one line.
using Complaint = std::function<void(const std::string&)>;

/// Prints on the standard error output.
void complainOnStandardError(const std::string& text);

// Parts that are programs of the user's. The program is started at once. One that cannot be, that
// ends, is silent, or answers anything but what it is asked does not acknowledge any more, which is
// said once.

/// @p file is the board's, for messages.
std::unique_ptr<I2cTarget> i2cProgramPart(const Placement& part, const std::string& file,
                                          const Complaint& complain = complainOnStandardError,
                                          PartProcess::Patience patience = PartProcess::patience);
std::unique_ptr<SpiTarget> spiProgramPart(const Placement& part, const std::string& file,
                                          const Complaint& complain = complainOnStandardError,
                                          PartProcess::Patience patience = PartProcess::patience);

} // namespace virtual_adapter
