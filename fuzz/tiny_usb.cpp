// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What a host may ask of the device of `veltra expose kernel`, on a bus whose transfers fail at
// times: every transfer ends at once, and a bus that is held is released.
#include "Input.hpp"

#include "expose/tiny_usb/Device.hpp"

#include <memory>
#include <utility>

using fuzzing::Bytes;
using fuzzing::Input;
using fuzzing::require;
using tiny_usb::Outcome;

namespace {

class Bus : public tiny_usb::I2cBus {
public:
    explicit Bus(Input& fate) : input(fate) {}

    Outcome write(uint8_t address, const Bytes& /*data*/, bool hold) override {
        return transfer(address, hold);
    }
    Outcome read(uint8_t address, const Bytes& registerBytes, Bytes& data, bool hold) override {
        require(registerBytes.size() <= maxRegisterBytes, "a register's address is short");
        require(!data.empty(), "a read has bytes");
        return transfer(address, hold);
    }
    void release() override { held = false; }

    bool held = false;

private:
    Outcome transfer(uint8_t address, bool hold) {
        require(address <= 0x7F, "an address has seven bits");
        const auto outcome = static_cast<Outcome>(input.byte() % 3);
        // One that is not acknowledged frees the bus; any other failure leaves it as it was.
        held = outcome == Outcome::Done ? hold : held && outcome == Outcome::Failed;
        return outcome;
    }

    Input& input;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Bus bus(input);
    size_t ended = 0;
    auto device =
        std::make_unique<tiny_usb::Device>(bus, "I2C bus 0", [&](const usbip::Result& result) {
            ++ended;
            require(result.data.size() <= 0x10000, "no more than was asked for");
        });
    for (size_t asked = 0; !input.isEmpty();) {
        usbip::Transfer transfer;
        transfer.endpointAddress = input.byte();
        for (uint8_t& byte : transfer.setup) {
            byte = input.byte();
        }
        transfer.length = size_t{transfer.setup[6]} | size_t{transfer.setup[7]} << 8U;
        transfer.data = input.bytes();
        device->submit(std::move(transfer), {});
        require(ended == ++asked, "every transfer ends at once");
    }
    device.reset();
    require(!bus.held, "nobody holds the bus");
    return 0;
}
