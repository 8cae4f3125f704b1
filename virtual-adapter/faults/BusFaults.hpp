// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "board/Board.hpp"
#include "faults/FaultSchedule.hpp"

namespace virtual_adapter {

/// Spoils what happens on the buses while one request is carried out.
class BusFaults {
public:
    BusFaults(Board& ofTheAdapter, FaultSet striking);
    BusFaults(const BusFaults&) = delete;
    BusFaults& operator=(const BusFaults&) = delete;
    ~BusFaults();

private:
    Board& board;
};

} // namespace virtual_adapter
