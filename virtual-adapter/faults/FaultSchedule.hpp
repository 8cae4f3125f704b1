// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "faults/Fault.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace virtual_adapter {

/// Kinds of fault.
class FaultSet {
public:
    void insert(FaultKind kind) { bits |= bitOf(kind); }
    [[nodiscard]] bool has(FaultKind kind) const { return (bits & bitOf(kind)) != 0; }

private:
    static uint32_t bitOf(FaultKind kind) { return uint32_t{1} << static_cast<unsigned>(kind); }

    uint32_t bits = 0;
};

/// Counts the requests since the adapter was switched on, and tells which faults strike at each.
class FaultSchedule {
public:
    /// The code of a request's command, known or not; nothing for a request without a whole header.
    using Code = std::optional<uint16_t>;

    explicit FaultSchedule(const std::vector<Fault>& faults);

    /// Adds a fault to the running adapter. Returns an empty text, or why it can never strike.
    std::string add(const Fault& fault);

    /// Ends every fault, and forgets those that are still to come.
    void clear() { entries.clear(); }

    /// What would strike if the next request's command were @p code.
    [[nodiscard]] FaultSet next(Code code) const;

    /// Counts a request. Returns what strikes at it.
    FaultSet begin(Code code);

    [[nodiscard]] size_t requestCount() const { return requests; }

private:
    struct Entry {
        Fault fault;
        /// How many requests of the fault's command have come since it was asked for.
        size_t seen = 0;
        bool struck = false;

        [[nodiscard]] bool concerns(Code code) const;
        [[nodiscard]] bool strikes(Code code, size_t request) const;
    };

    std::vector<Entry> entries;
    size_t requests = 0;
};

} // namespace virtual_adapter
