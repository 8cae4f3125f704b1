// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "model/i2c/I2cTarget.hpp"

#include "virtual-adapter/model/i2c/I2cModel.hpp"
#include "virtual-adapter/requests.hpp"

#include <utility>

using virtual_adapter::answerOf;
using virtual_adapter::Board;
using virtual_adapter::Bytes;
using virtual_adapter::i2cData;
using virtual_adapter::I2cDirection;
using virtual_adapter::i2cRead;
using virtual_adapter::I2cTarget;
using virtual_adapter::i2cWrite;

namespace {

/// Acknowledges bytes below 0x80; what is read counts up.
class Counter : public I2cTarget {
public:
    bool start(I2cDirection /*direction*/) override { return true; }
    bool write(uint8_t byte) override {
        written.push_back(byte);
        return byte < 0x80;
    }
    uint8_t read() override { return next++; }
    void stop() override {}

    Bytes written;

private:
    uint8_t next = 1;
};

TEST(I2cTarget, AMessageEndsAtTheFirstByteThatIsNotAcknowledged) {
    Counter target;
    EXPECT_EQ(target.writeMessage({1, 0x80, 2}), 1U);
    EXPECT_EQ(target.written, (Bytes{1, 0x80}));
    EXPECT_EQ(target.writeMessage({3, 4}), 2U);
}

TEST(I2cTarget, AReadMessageIsItsBytesOneAfterTheOther) {
    Counter target;
    EXPECT_EQ(target.readMessage(3), (Bytes{1, 2, 3}));
}

TEST(I2cTarget, HasNoSettingUnlessItSaysSo) {
    EXPECT_EQ(Counter().set("colour", "red"),
              "there is no setting 'colour'; this part has none that changes");
}

/// Takes whole messages only, and writes down what reaches it.
class Correspondent : public I2cTarget {
public:
    explicit Correspondent(std::string& itsJournal) : journal(itsJournal) {}

    bool start(I2cDirection direction) override {
        journal += direction == I2cDirection::Write ? "write" : "read";
        return true;
    }
    bool write(uint8_t /*byte*/) override { return false; }
    uint8_t read() override { return 0; }
    size_t writeMessage(const Bytes& bytes) override {
        journal += "[" + std::to_string(bytes.size()) + "] ";
        return bytes.size();
    }
    Bytes readMessage(size_t count) override {
        journal += "[" + std::to_string(count) + "] ";
        return Bytes(count, 0x5A);
    }
    void stop() override { journal += "stop"; }

private:
    std::string& journal;
};

class TargetOfMessages : public virtual_adapter::I2cModel {
protected:
    TargetOfMessages() : TargetOfMessages(std::make_unique<std::string>()) {}

    std::unique_ptr<std::string> journal;

private:
    explicit TargetOfMessages(std::unique_ptr<std::string> itsJournal)
        : I2cModel(with(*itsJournal)), journal(std::move(itsJournal)) {}

    static Board with(std::string& journal) {
        Board board;
        board.i2c[0].attach(0x20, std::make_unique<Correspondent>(journal));
        return board;
    }
};

TEST_F(TargetOfMessages, AWriteReachesItWhole) {
    EXPECT_EQ(response(i2cWrite(0, 0x20, {1}, {2, 3})), answerOf(CommandCode::I2cWrite, 0));
    EXPECT_EQ(*journal, "write[3] stop");
}

TEST_F(TargetOfMessages, AReadBehindARegisterAddressIsTwoMessages) {
    EXPECT_EQ(response(i2cRead(0, 0x20, {1, 2}, 2)), i2cData(0, {0x5A, 0x5A}));
    EXPECT_EQ(*journal, "write[2] read[2] stop");
}

TEST_F(TargetOfMessages, AMessageWithoutBytesIsNone) {
    EXPECT_EQ(response(i2cWrite(0, 0x20, {}, {})), answerOf(CommandCode::I2cWrite, 0));
    EXPECT_EQ(response(i2cRead(0, 0x20, {}, 0)), i2cData(0, {}));
    EXPECT_EQ(*journal, "writestopreadstop");
}

TEST(I2cBus, KnowsWhatStandsAtAnAddress) {
    virtual_adapter::I2cBus bus;
    auto target = std::make_unique<Counter>();
    const I2cTarget* const attached = target.get();
    bus.attach(0x20, std::move(target));
    EXPECT_EQ(bus.targetAt(0x20), attached);
    EXPECT_EQ(bus.targetAt(0x21), nullptr);
}

} // namespace
