// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Failure.hpp"

#include <veltrasdk/adapters.h>

#include <string>

namespace veltra {

/// The adapter that was asked for by serial number or path, or the only one; a Failure otherwise.
VeltraSDK_AdapterInfo chooseAdapter(const std::string& device);

/// Why an adapter that is there could not be opened.
Failure whyNotOpened(const VeltraSDK_AdapterInfo& adapter);

/// The name that users give a model: "full-speed" or "high-speed".
std::string modelOf(const VeltraSDK_AdapterInfo& adapter);

} // namespace veltra
