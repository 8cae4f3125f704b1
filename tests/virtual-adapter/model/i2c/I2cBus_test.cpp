// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i2c/I2cBus.hpp"

#include <gtest/gtest.h>

#include <string>

using virtual_adapter::I2cBus;
using virtual_adapter::I2cDirection;
using virtual_adapter::I2cTarget;

namespace {

/// Acknowledges everything and writes down what reaches it.
class Recorder : public I2cTarget {
public:
    explicit Recorder(std::string& journal) : seen(journal) {}

    bool start(I2cDirection direction) override {
        seen += direction == I2cDirection::Write ? "write " : "read ";
        return true;
    }
    bool write(uint8_t /*byte*/) override { return true; }
    uint8_t read() override { return 0; }
    void stop() override { seen += "stop "; }
    void cyclePower() override { seen += "power "; }

private:
    std::string& seen;
};

class I2cBusTest : public testing::Test {
protected:
    I2cBusTest() { bus.attach(0x20, std::make_unique<Recorder>(journal)); }

    std::string journal;
    I2cBus bus;
};

TEST_F(I2cBusTest, AStopReachesTheAddressedTargetOnce) {
    bus.start(0x20, I2cDirection::Write);
    bus.stop();
    bus.stop();
    EXPECT_EQ(journal, "write stop ");
}

TEST_F(I2cBusTest, AStartToAnotherAddressKeepsTheStopFromTheFirst) {
    bus.start(0x20, I2cDirection::Read);
    EXPECT_FALSE(bus.start(0x21, I2cDirection::Read));
    bus.stop();
    EXPECT_EQ(journal, "read ");
}

TEST_F(I2cBusTest, TakingThePowerAwayEndsTheTransferWithoutItsStop) {
    bus.start(0x20, I2cDirection::Write);
    bus.cyclePower();
    bus.stop();
    EXPECT_EQ(journal, "write power ");
}

} // namespace
