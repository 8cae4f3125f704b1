// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "support/SdkTest.hpp"

#include <array>
#include <cstdint>

namespace test_support {

/// A place for every output, recognisably untouched.
struct Outputs {
    std::array<uint8_t, 255> bytes{};
    uint8_t count = untouchedByte;
    uint8_t byte = untouchedByte;
    uint16_t word = untouchedWord;
    uint8_t size = untouchedByte;
    uint8_t flag = untouchedByte;

    Outputs() { bytes.fill(untouchedByte); }

    /// Expects nothing to be written but the flag, which is to be @p expectedFlag.
    void expectUntouched(uint8_t expectedFlag) const {
        EXPECT_TRUE(written(0).empty());
        EXPECT_EQ(count, untouchedByte);
        EXPECT_EQ(byte, untouchedByte);
        EXPECT_EQ(word, untouchedWord);
        EXPECT_EQ(size, untouchedByte);
        EXPECT_EQ(flag, expectedFlag);
    }

    /// The first bytes of the buffer, if those behind them are untouched.
    [[nodiscard]] Bytes written(size_t number) const {
        for (size_t i = number; i < bytes.size(); ++i) {
            EXPECT_EQ(bytes.at(i), untouchedByte) << "byte " << i;
        }
        return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(number)};
    }
};

} // namespace test_support
