// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace veltra {

std::string libraryVersion();
/// Of the hidapi that the library has loaded; "unknown" where that tells none.
std::string hidapiVersion();

} // namespace veltra
