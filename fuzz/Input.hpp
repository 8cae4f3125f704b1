// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <type_traits>
#include <vector>

namespace fuzzing {

using Bytes = std::vector<uint8_t>;

/// A fuzzer's input, consumed from the front. Behind its end everything is zero.
class Input {
public:
    Input(const uint8_t* firstByte, size_t byteCount) : data(firstByte), size(byteCount) {}

    [[nodiscard]] bool isEmpty() const { return size == 0; }

    /// A number of any integral or enumerated type, low byte first; a bool is its lowest bit.
    template <typename Number>
    Number number() {
        if constexpr (std::is_same_v<Number, bool>) {
            return (byte() & 1U) != 0;
        } else {
            uint64_t value = 0;
            for (size_t i = 0; i < sizeof(Number); ++i) {
                value |= uint64_t{byte()} << 8U * i;
            }
            return static_cast<Number>(value);
        }
    }

    uint8_t byte() {
        if (isEmpty()) {
            return 0;
        }
        --size;
        return *data++;
    }

    /// A length byte and so many bytes; or 0xFF, a 16-bit length and one byte so many times.
    Bytes bytes() {
        const size_t length = byte();
        if (length == longRun) {
            const size_t repeated = std::min<size_t>(number<uint16_t>(), maxRepeated);
            maxRepeated -= repeated;
            return Bytes(repeated, byte());
        }
        const uint8_t* const first = data;
        const size_t present = std::min(length, size);
        data += present;
        size -= present;
        return Bytes(first, data);
    }

    /// Bytes in two parts, so that a few literal ones can be followed by very many.
    Bytes twoPartBytes() {
        Bytes whole = bytes();
        const Bytes rest = bytes();
        whole.insert(whole.end(), rest.begin(), rest.end());
        return whole;
    }

private:
    static constexpr size_t longRun = 0xFF;

    const uint8_t* data;
    size_t size;
    /// Keeps a small input from asking for work without end.
    size_t maxRepeated = size_t{1} << 18U;
};

/// Reports a finding when what must hold does not.
inline void require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

} // namespace fuzzing
