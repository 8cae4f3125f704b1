// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Setting.hpp"
#include "model/i3c/I3cTarget.hpp"

#include <string>
#include <vector>

namespace virtual_adapter {

/// The settings that every I3C target has, with those of @p kind unless given.
std::vector<Setting> i3cSettings(const I3cCharacteristics& kind);

/// The same without a provisioned identifier, which must then be given.
std::vector<Setting> i3cSettings();

/// What is wrong with settings that are each allowed by itself; empty when nothing is. The first
/// word is the name of the setting.
std::string complaintAboutI3c(const SettingValues& values);

I3cCharacteristics i3cCharacteristics(const SettingValues& values);

} // namespace virtual_adapter
