// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Output.hpp"

#include <veltrasdk/i3c.h>

#include <string>
#include <vector>

namespace veltra {

/// A target's record as JSON has it.
Json jsonOf(const I3cTargetInfo& target);

/// The table of the bus for people.
std::string tableOf(const std::vector<I3cTargetInfo>& targets);

/// What a bus characteristics register promises.
std::vector<std::string> wordsOfBcr(uint8_t bcr);
/// What kind of device it is; empty for one that has no name here.
std::string wordsOfDcr(uint8_t dcr);

/// Reads
/// static=0x48,dynamic=0x09,pid=0123456789ab,mwl=64,mrl=64,ibi-max=8,ibi=accept|reject,legacy.
I3cTargetInfo parseTarget(const std::string& text);

/// The 6 bytes of a provisioned identifier, of 12 digits.
Bytes parsePid(const std::string& text);
std::string pidOf(const I3cTargetInfo& target);
bool isLegacy(const I3cTargetInfo& target);

} // namespace veltra
