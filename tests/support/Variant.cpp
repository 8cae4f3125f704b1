// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "support/Variant.hpp"

#include <algorithm>

namespace test_support {

const Variant fullSpeed{"FullSpeed", 0x0001, 64};
const Variant highSpeed{"HighSpeed", 0x0002, 1024};
const Variant fullSpeedStrict{"FullSpeedStrict", 0x0001, 64, true};
const Variant highSpeedStrict{"HighSpeedStrict", 0x0002, 1024, true};

Bytes counting(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i % 251);
    }
    return bytes;
}

Bytes Variant::input(const Bytes& packet) const {
    Bytes report = packet;
    report.resize(reportSize);
    return report;
}

Bytes Variant::output(const Bytes& packet) const {
    Bytes report = input(packet);
    report.insert(report.begin(), 0);
    return report;
}

std::vector<Bytes> Variant::inputs(const Bytes& message) const {
    const size_t capacity = reportSize - 2;
    std::vector<Bytes> reports;
    size_t offset = 0;
    do {
        const size_t length = std::min(capacity, message.size() - offset);
        const unsigned first = offset == 0 ? 1 : 0;
        const unsigned last = offset + length == message.size() ? 2 : 0;
        const unsigned header = first | last | static_cast<unsigned>(length) << 2U;
        Bytes packet{static_cast<uint8_t>(header & 0xFFU), static_cast<uint8_t>(header >> 8U)};
        const auto payload = message.begin() + static_cast<std::ptrdiff_t>(offset);
        packet.insert(packet.end(), payload, payload + static_cast<std::ptrdiff_t>(length));
        reports.push_back(input(packet));
        offset += length;
    } while (offset < message.size());
    return reports;
}

std::vector<Bytes> Variant::outputs(const Bytes& message) const {
    std::vector<Bytes> reports = inputs(message);
    for (Bytes& report : reports) {
        report.insert(report.begin(), 0);
    }
    return reports;
}

} // namespace test_support
