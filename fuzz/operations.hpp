// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "Input.hpp"

#include <veltrasdk/VeltraSDK.hpp>
#include <veltrasdk/veltrasdk.h>

namespace fuzzing {

/// Calls one operation with arguments from the input; which one, its first byte says.
void callClassOperation(VeltraSDK& sdk, Input& input);
void callFunction(VeltraSDK_Handle* handle, Input& input);

} // namespace fuzzing
