// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <vector>

/// The operations that have a place in strict mode: at most as many as may overlap. Which response
/// is whose, and which request may go beside which, is decided here.
///
/// It has no lock of its own.
class Outstanding {
public:
    static constexpr uint8_t maxOverlap = 4;

    enum class Stage : uint8_t { Free, Preparing, OnWire, Answered, Ended };

    /// An operation's place. Its memory is kept for the operations after it.
    struct Slot {
        Stage stage = Stage::Free;
        uint16_t transactionId = 0;
        /// What the request and its response begin with.
        uint32_t header = 0;
        size_t requestSize = 0;
        size_t maxAnswerSize = 0;
        bool isWritten = false;
        std::vector<uint8_t> response;
        std::condition_variable ended;
    };

    /// A free slot among the first @p overlap, at least 1, or null.
    Slot* findFree(uint8_t overlap) {
        Slot* slot = slots.data();
        do {
            if (slot->stage == Stage::Free) {
                return slot;
            }
            ++slot;
        } while (--overlap != 0);
        return nullptr;
    }

    /// The slot of the operation that waits for a response that begins so, or null.
    Slot* findAwaiting(uint32_t header) {
        for (Slot& slot : slots) {
            if (slot.header == header && slot.stage == Stage::OnWire) {
                return &slot;
            }
        }
        return nullptr;
    }

    /// Whether another operation has the identifier of @p slot.
    [[nodiscard]] bool hasTwin(const Slot& slot) const;

    /// Whether the request of @p slot may be written beside those on the wire, where a report has
    /// room for an answer of @p maxSizeInOneReport bytes.
    [[nodiscard]] bool mayGo(const Slot& slot, size_t maxSizeInOneReport) const;

    /// Ends the wait of every operation for its response, without one.
    void endAll();

private:
    std::array<Slot, maxOverlap> slots;
};
