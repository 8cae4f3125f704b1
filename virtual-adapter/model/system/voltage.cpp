// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/system/voltage.hpp"

#include "model/checks.hpp"

namespace virtual_adapter {

namespace {

constexpr unsigned minMillivolts = 800;
constexpr unsigned maxMillivolts = 3300;

} // namespace

Answer IoVoltage::set(ByteReader& request) {
    const unsigned millivolts = request.u16();
    const unsigned enable = request.u8();
    const Status status = virtual_adapter::check(
        request, within(millivolts, minMillivolts, maxMillivolts) && enable <= 1);
    if (status == Status::Success) {
        outputEnabled = enable == 1;
    }
    return status;
}

Status IoVoltage::check(const ByteReader& request, bool valuesKnown) const {
    return outputEnabled ? virtual_adapter::check(request, valuesKnown) : Status::NoVoltage;
}

} // namespace virtual_adapter
