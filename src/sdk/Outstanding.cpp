// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "sdk/Outstanding.hpp"

#include <algorithm>

Outstanding::Slot* Outstanding::findFree(uint8_t overlap) {
    auto* const end = slots.begin() + overlap;
    auto* const found = std::find_if(slots.begin(), end,
                                     [](const Slot& slot) { return slot.stage == Stage::Free; });
    return found == end ? nullptr : found;
}

Outstanding::Slot* Outstanding::find(uint16_t transactionId) {
    auto* const found = std::find_if(slots.begin(), slots.end(), [=](const Slot& slot) {
        return slot.stage != Stage::Free && slot.transactionId == transactionId;
    });
    return found == slots.end() ? nullptr : found;
}

bool Outstanding::mayGo(const Slot& slot) const {
    return std::none_of(slots.begin(), slots.end(), [&](const Slot& other) {
        switch (other.stage) {
        case Stage::Preparing:
            return other.turn < slot.turn;
        case Stage::OnWire:
            return slot.goesAlone || other.goesAlone;
        default:
            return false;
        }
    });
}

bool Outstanding::answer(const std::vector<uint8_t>& frame) {
    const ResponseFrame response(frame);
    Slot* const slot = find(response.transactionId());
    if (slot == nullptr || slot->stage != Stage::OnWire ||
        slot->command != response.commandCode()) {
        return false;
    }
    slot->response = frame;
    slot->stage = Stage::Answered;
    slot->ended.notify_one();
    return true;
}

void Outstanding::wakeAll() {
    for (Slot& slot : slots) {
        slot.ended.notify_one();
    }
}
