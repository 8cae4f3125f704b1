// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace virtual_adapter {

/// A supply that a part of the board switches and others hang on. It starts without power.
class PowerDomain {
public:
    using Consumer = std::function<void(bool supplied)>;

    /// Tells @p consumer that it has no power yet, and from then on whenever the supply is
    /// switched.
    void feed(Consumer consumer) {
        consumer(false);
        consumers.push_back(std::move(consumer));
    }

    void supply(bool supplied) const {
        for (const Consumer& consumer : consumers) {
            consumer(supplied);
        }
    }

private:
    std::vector<Consumer> consumers;
};

} // namespace virtual_adapter
