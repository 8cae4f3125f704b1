// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "protocol/RequestFrame.hpp"

RequestFrame& RequestFrame::subAddress(const std::vector<uint8_t>& values) {
    static constexpr std::array<uint8_t, maxSubAddressSize> zeros{};
    return bytes(values).append(zeros.data(), maxSubAddressSize - values.size());
}

void RequestFrame::reserve(size_t size) {
    longer.reserve(size);
}

RequestFrame& RequestFrame::appendToLonger(const uint8_t* values, size_t count) {
    if (longer.empty()) {
        longer.reserve(sizeInPlace + count);
        longer.assign(inPlace.data(), inPlace.data() + sizeInPlace);
    }
    longer.insert(longer.end(), values, values + count);
    return *this;
}
