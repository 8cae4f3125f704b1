// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "protocol/ResponseFrame.hpp"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <vector>

/// The operations that have a place in strict mode: at most as many as may overlap. Which response
/// is whose, and who may write its request, is decided here.
///
/// It has no lock of its own. What a slot holds as its response belongs to its operation alone from
/// the answer on until the slot is released.
class Outstanding {
public:
    static constexpr uint8_t maxOverlap = 4;

    enum class Stage { Free, Preparing, OnWire, Answered, Over };

    /// An operation's place. Its memory is kept for the operations after it.
    struct Slot {
        Stage stage = Stage::Free;
        uint16_t transactionId = 0;
        CommandCode command{};
        /// Places are taken in this order, and requests are written in it.
        uint64_t turn = 0;
        /// Whether nothing else may be on the wire.
        bool goesAlone = false;
        size_t maxAnswerSize = 0;
        std::vector<uint8_t> response;
        std::condition_variable ended;
    };

    /// A free slot among the first @p overlap, or null.
    Slot* findFree(uint8_t overlap);

    /// The slot of the operation with this identifier, or null.
    Slot* find(uint16_t transactionId);

    /// Whether the request of @p slot may be written now.
    [[nodiscard]] bool mayGo(const Slot& slot) const;

    /// Hands a response to the operation that waits for it. Returns whether there is one.
    bool answer(const std::vector<uint8_t>& frame);

    /// Wakes every operation that waits for its response.
    void wakeAll();

private:
    std::array<Slot, maxOverlap> slots;
};
