// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "capi/Marshalling.hpp"

std::vector<uint8_t>& copyIn(std::vector<uint8_t>& copy, const uint8_t* bytes, size_t count) {
    copy.resize(count);
    std::copy_n(bytes, count, copy.data());
    return copy;
}
