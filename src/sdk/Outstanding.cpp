// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Outstanding.hpp"

#include <algorithm>

namespace {

// A longer one takes so long to write that nothing is gained.
constexpr size_t maxOverlappingRequest = 512;

} // namespace

bool Outstanding::hasTwin(const Slot& slot) const {
    return std::any_of(slots.begin(), slots.end(), [&](const Slot& other) {
        return &other != &slot && other.stage != Stage::Free &&
               other.transactionId == slot.transactionId;
    });
}

bool Outstanding::mayGo(const Slot& slot, size_t maxSizeInOneReport) const {
    const auto goesAlone = [=](const Slot& each) {
        return each.requestSize > maxOverlappingRequest || each.maxAnswerSize > maxSizeInOneReport;
    };
    return std::none_of(slots.begin(), slots.end(), [&](const Slot& other) {
        return other.stage == Stage::OnWire && (goesAlone(slot) || goesAlone(other));
    });
}

void Outstanding::endAll() {
    for (Slot& slot : slots) {
        if (slot.stage == Stage::OnWire) {
            slot.stage = Stage::Ended;
            slot.ended.notify_one();
        }
    }
}
