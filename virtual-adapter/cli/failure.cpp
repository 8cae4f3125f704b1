// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "cli/failure.hpp"

#include <iostream>

namespace virtual_adapter {

void fail(int exitStatus, const std::string& message) {
    std::cerr << "veltra-virtual-adapter: " + message + "\n" << std::flush;
    throw ProcessEnd{exitStatus};
}

} // namespace virtual_adapter
