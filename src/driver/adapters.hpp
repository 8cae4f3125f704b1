// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <veltrasdk/adapters.h>

#include <vector>

/// Every adapter that is plugged in, in hidapi's order.
std::vector<VeltraSDK_AdapterInfo> pluggedInAdapters();
