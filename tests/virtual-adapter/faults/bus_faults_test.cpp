// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "faults/BusFaults.hpp"

#include "board/parts/I2cTemperatureSensor.hpp"

#include "virtual-adapter/model/i2c/I2cModel.hpp"
#include "virtual-adapter/model/i3c/I3cModel.hpp"
#include "virtual-adapter/requests.hpp"

using virtual_adapter::answerOf;
using virtual_adapter::Board;
using virtual_adapter::BusFaults;
using virtual_adapter::Bytes;
using virtual_adapter::FaultKind;
using virtual_adapter::FaultSet;
using virtual_adapter::Frame;
using virtual_adapter::i2cData;
using virtual_adapter::I2cDirection;
using virtual_adapter::i2cRead;
using virtual_adapter::I2cTarget;
using virtual_adapter::i2cWrite;

namespace {

FaultSet setOf(FaultKind kind) {
    FaultSet set;
    set.insert(kind);
    return set;
}

const Frame readByte = i2cRead(0, 0x50, {0x00}, 1);
const Frame theByte = i2cData(0, {'H'});

class I2cBusFaults : public virtual_adapter::I2cModel {
protected:
    /// The response to a request that the fault strikes.
    Frame struck(FaultKind kind, const Frame& request) {
        const BusFaults faults(adapter.getBoard(), setOf(kind));
        return response(request);
    }
};

TEST_F(I2cBusFaults, WithoutAnAddressThatIsAcknowledgedATransferFailsOnce) {
    EXPECT_EQ(struck(FaultKind::AddressNack, readByte), answerOf(CommandCode::I2cRead, 0x0006));
    EXPECT_EQ(response(readByte), theByte);
}

TEST_F(I2cBusFaults, WithoutAnAddressThatIsAcknowledgedPollingFailsToo) {
    status({0x01, 0x00, 0x02, 0x09, 0x00, 0xA0, 0x86, 0x01, 0x00, 0x01});
    EXPECT_EQ(struck(FaultKind::AddressNack, readByte), answerOf(CommandCode::I2cRead, 0x0006));
}

TEST_F(I2cBusFaults, WithoutAnAddressThatIsAcknowledgedAScanFindsNothing) {
    EXPECT_EQ(struck(FaultKind::AddressNack, {0x01, 0x00, 0x06, 0x09, 0x00, 0x00}),
              (Frame{0x01, 0x00, 0x06, 0x09, 0x00, 0x00, 0, 0, 0}));
}

TEST_F(I2cBusFaults, AByteThatIsNotAcknowledgedIsNotWritten) {
    EXPECT_EQ(struck(FaultKind::DataNack, i2cWrite(0, 0x50, {0x00}, {'J'})),
              answerOf(CommandCode::I2cWrite, 0x0007));
    EXPECT_EQ(response(readByte), theByte);
    EXPECT_EQ(struck(FaultKind::DataNack, i2cRead(0, 0x50, {}, 1)), i2cData(0, {'e'}));
}

TEST_F(I2cBusFaults, AStuckBusIsFreedByInitialisingItsController) {
    EXPECT_EQ(struck(FaultKind::StuckBus, readByte), answerOf(CommandCode::I2cRead, 0x0009));
    EXPECT_EQ(response(readByte), answerOf(CommandCode::I2cRead, 0x0009));
    EXPECT_EQ(response(i2cWrite(1, 0x50, {}, {})), answerOf(CommandCode::I2cWrite, 0x0009));
    EXPECT_EQ(response({0x01, 0x00, 0x06, 0x09, 0x00, 0x00}),
              (Frame{0x01, 0x00, 0x06, 0x09, 0x09, 0x00, 0, 0, 0}));
    status({0x01, 0x00, 0x02, 0x09, 0x00, 0xA0, 0x86, 0x01, 0x00, 0x00});
    EXPECT_EQ(response(readByte), answerOf(CommandCode::I2cRead, 0x0009));
    status({0x01, 0x00, 0x01, 0x09, 0x00, 0xA0, 0x86, 0x01, 0x00, 0x00});
    EXPECT_EQ(response(readByte), theByte);
    EXPECT_EQ(response(i2cWrite(1, 0x50, {}, {})), answerOf(CommandCode::I2cWrite, 0x0009));
}

/// Has a write protection, and nothing else.
class Protectable : public I2cTarget {
public:
    bool start(I2cDirection /*direction*/) override { return true; }
    bool write(uint8_t /*byte*/) override { return !isProtected; }
    uint8_t read() override { return 0; }
    void stop() override {}
    std::string set(const std::string& name, const std::string& value) override {
        isProtected = name == "write_protected" && value == "true";
        return {};
    }

private:
    bool isProtected = false;
};

class ProtectableMemories : public virtual_adapter::I2cModel {
protected:
    ProtectableMemories() : I2cModel(memories()) {}

private:
    static Board memories() {
        Board board;
        board.i2c[1].attach(0x50, std::make_unique<Protectable>());
        board.i2c[1].attach(0x48, std::make_unique<virtual_adapter::I2cTemperatureSensor>(0));
        return board;
    }
};

TEST_F(ProtectableMemories, AreWriteProtectedForGood) {
    const Frame write = i2cWrite(1, 0x50, {0x00}, {1});
    EXPECT_EQ(response(write), answerOf(CommandCode::I2cWrite, 0));
    {
        const BusFaults faults(adapter.getBoard(), setOf(FaultKind::WriteProtected));
        EXPECT_EQ(response(write), answerOf(CommandCode::I2cWrite, 0x0007));
    }
    EXPECT_EQ(response(write), answerOf(CommandCode::I2cWrite, 0x0007));
}

class I3cBusFaults : public virtual_adapter::I3cModel {
protected:
    unsigned struck(const Frame& request) {
        const BusFaults faults(adapter.getBoard(), setOf(FaultKind::AddressNack));
        return status(request);
    }
};

TEST_F(I3cBusFaults, WithoutAnAddressThatIsAcknowledgedNoTargetIsReached) {
    for (const Frame& request : {
             Frame{0x01, 0x00, 0x08, 0x19, 0x0A, 0x01, 0, 0, 0, 0, 0, 0, 1, 0},
             Frame{0x01, 0x00, 0x08, 0x19, 0x50, 0x05, 0, 0, 0, 0, 0, 0, 1, 0},
             Frame{0x01, 0x00, 0x09, 0x19, 0x0A, 0x01, 0x01, 0x8F, 0x00},
         }) {
        EXPECT_EQ(struck(request), 0x0006U);
        EXPECT_EQ(status(request), 0x0000U);
    }
}

} // namespace
