#pragma once

#include "virtual-adapter/AdapterFixture.hpp"

namespace virtual_adapter {

/// Both buses powered, initialised at 100 kHz and pulled up.
class I2cFixture : public testing::Test {
protected:
    I2cFixture() {
        adapter.powerOn();
        for (const uint8_t bus : {uint8_t{0}, uint8_t{1}}) {
            EXPECT_EQ(adapter.status({0x01, 0x00, 0x01, 0x09, bus, 0xA0, 0x86, 0x01, 0x00, 0x00}),
                      0x0000U);
            EXPECT_EQ(adapter.status({0x01, 0x00, 0x02, 0x08, bus, 0x02}), 0x0000U);
        }
    }

    /// Repeats an unacknowledged read as a user who polls would.
    Frame pollUntilAcknowledged(const Frame& read) {
        Frame response = adapter.response(read);
        for (int attempt = 0; attempt < 3 && response.at(4) == 0x06; ++attempt) {
            response = adapter.response(read);
        }
        return response;
    }

    AdapterFixture adapter;
};

} // namespace virtual_adapter
