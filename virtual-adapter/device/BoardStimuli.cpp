// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "device/BoardStimuli.hpp"

#include "bytes/words.hpp"

#include <algorithm>

namespace virtual_adapter {

namespace {

constexpr unsigned bcrInterrupts = 0x02;

class BoardStimuli {
public:
    explicit BoardStimuli(Adapter& ofTheBoard) : adapter(ofTheBoard) {}

    std::string operator()(const GpioDrive& drive) const {
        adapter.getDispatcher().getGpio().driveLine(drive.pin, drive.level);
        return {};
    }

    std::string operator()(const I2cSet& set) const {
        I2cTarget* const target = busOf(set.bus).targetAt(set.address);
        return target == nullptr ? nothingAt(set.bus, set.address)
                                 : target->set(set.name, set.value);
    }

    std::string operator()(const I2cNack& nack) const {
        I2cBus& bus = busOf(nack.bus);
        if (bus.targetAt(nack.address) == nullptr) {
            return nothingAt(nack.bus, nack.address);
        }
        bus.refuse({nack.address, nack.byte, nack.times});
        return {};
    }

    std::string operator()(const I3cInterrupt& interrupt) const {
        I3cController& controller = adapter.getDispatcher().getI3cController();
        I3cTarget* const target = find(interrupt.target);
        if (target == nullptr) {
            return noTarget(interrupt.target);
        }
        const I3cCharacteristics& kind = target->characteristics();
        if (!controller.isSupplied() || !target->isPowered()) {
            return "the target " + interrupt.target.text + " has no power";
        }
        if ((kind.bcr & bcrInterrupts) == 0) {
            return "the target " + interrupt.target.text + " never interrupts: its BCR says so";
        }
        if (target->hasIbiPayload() == interrupt.payload.empty()) {
            return "an interrupt of the target " + interrupt.target.text +
                   (target->hasIbiPayload() ? " has a payload: give its bytes"
                                            : " has no payload: give no bytes");
        }
        target->requestInterrupt(interrupt.payload);
        controller.serveRequests();
        return {};
    }

    std::string operator()(const I3cPresence& presence) const {
        I3cTarget* const target = find(presence.target);
        if (target == nullptr) {
            return noTarget(presence.target);
        }
        if (target->isPowered() == presence.joins) {
            return "the target " + presence.target.text +
                   (presence.joins ? " is on the bus already" : " is not on the bus");
        }
        if (presence.joins) {
            target->join();
            adapter.getDispatcher().getI3cController().serveRequests();
        } else {
            target->setSupply(false);
        }
        return {};
    }

    std::string operator()(const UartReceive& received) const {
        return adapter.getDispatcher().getUart().receiveFromLine(received.bytes)
                   ? ""
                   : "the UART is not initialised or has no voltage: nobody listens";
    }

    /// What is not the board's.
    template <typename Other>
    std::string operator()(const Other& /*stimulus*/) const {
        return {};
    }

private:
    [[nodiscard]] I2cBus& busOf(size_t bus) const { return adapter.getBoard().i2c.at(bus); }

    static std::string nothingAt(size_t bus, uint8_t address) {
        return "nothing stands at " + hexNumber(address) + " on I2C bus " + std::to_string(bus);
    }

    static std::string noTarget(const I3cTargetName& name) {
        return "no target of the I3C bus is " + name.text;
    }

    /// By its dynamic address before its static one. Null for none.
    [[nodiscard]] I3cTarget* find(const I3cTargetName& name) const {
        const std::vector<I3cTarget*> targets = adapter.getBoard().i3c.all();
        const auto first = [&](const auto& wanted) -> I3cTarget* {
            const auto found = std::find_if(targets.begin(), targets.end(), wanted);
            return found == targets.end() ? nullptr : *found;
        };
        if (name.pid) {
            return first([&](const I3cTarget* target) {
                return target->characteristics().pid == *name.pid;
            });
        }
        I3cTarget* const assigned = first(
            [&](const I3cTarget* target) { return target->dynamicAddress() == name.address; });
        return assigned != nullptr ? assigned : first([&](const I3cTarget* target) {
            return target->characteristics().staticAddress == name.address;
        });
    }

    Adapter& adapter;
};

} // namespace

std::string stimulateBoard(Adapter& adapter, const Stimulus& stimulus) {
    return std::visit(BoardStimuli(adapter), stimulus);
}

} // namespace virtual_adapter
