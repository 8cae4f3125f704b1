// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <limits>

/// Counts the transaction identifiers of an object: 1 to 65535, then 1 again.
class TransactionIds {
public:
    uint16_t next() {
        const bool wraps = last == std::numeric_limits<uint16_t>::max();
        last = wraps ? uint16_t{1} : static_cast<uint16_t>(last + 1);
        return last;
    }

private:
    uint16_t last = 0;
};
