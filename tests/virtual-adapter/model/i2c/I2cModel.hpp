// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "virtual-adapter/AdapterFixture.hpp"

namespace virtual_adapter {

/// Both buses powered, initialised at 100 kHz and pulled up.
class I2cModel : public AdapterFixture {
protected:
    explicit I2cModel(Board board = factoryBoard()) : AdapterFixture(std::move(board)) {
        powerOn();
        for (const uint8_t bus : {uint8_t{0}, uint8_t{1}}) {
            EXPECT_EQ(status({0x01, 0x00, 0x01, 0x09, bus, 0xA0, 0x86, 0x01, 0x00, 0x00}), 0x0000U);
            EXPECT_EQ(status({0x01, 0x00, 0x02, 0x08, bus, 0x02}), 0x0000U);
        }
    }

    /// Repeats an unacknowledged read as a user who polls would.
    Frame pollUntilAcknowledged(const Frame& read) {
        Frame answer = response(read);
        for (int attempt = 0; attempt < 3 && answer.at(4) == 0x06; ++attempt) {
            answer = response(read);
        }
        return answer;
    }
};

} // namespace virtual_adapter
