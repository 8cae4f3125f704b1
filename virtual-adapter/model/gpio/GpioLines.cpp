// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/gpio/GpioLines.hpp"

#include <algorithm>

namespace virtual_adapter {

void GpioLines::join(GpioPinNumber one, GpioPinNumber other) {
    const size_t kept = lineOf.at(one);
    const size_t given = lineOf.at(other);
    std::replace(lineOf.begin(), lineOf.end(), given, kept);
}

} // namespace virtual_adapter
