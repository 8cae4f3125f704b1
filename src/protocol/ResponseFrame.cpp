// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/ResponseFrame.hpp"

#include <algorithm>

void ResponseFrame::copyTo(std::vector<uint8_t>& destination, size_t offset, size_t count) const {
    destination.resize(count);
    copyTo(destination.data(), offset, count);
}

void ResponseFrame::copyTo(void* destination, size_t offset, size_t count) const {
    const size_t present = offset < size ? std::min(count, size - offset) : 0;
    auto* const bytes = static_cast<uint8_t*>(destination);
    std::fill(std::copy_n(data + (present != 0 ? offset : 0), present, bytes), bytes + count,
              uint8_t{0});
}
