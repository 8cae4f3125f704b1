// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// What a program may say to the broker of `veltra run`: requests with their ioctl structures, and
// the ends of descriptors. Whatever it is, it is answered, and the buses are asked for nothing that
// they do not have.
#include "Input.hpp"

#include "devices/I2cDevice.hpp"
#include "devices/SpiDevice.hpp"
#include "devices/Switchboard.hpp"

#include <cerrno>
#include <memory>

using fuzzing::Input;
using fuzzing::require;

namespace {

class Buses : public devices::Buses {
public:
    int i2cRead(int bus, uint8_t address, const devices::Bytes& written, uint16_t count,
                bool /*hold*/, devices::Bytes& data) override {
        require(bus == 0 && address <= 0x7F, "a target can be there");
        require(written.size() <= 4 && count <= devices::maxI2cLength, "a read fits");
        data.assign(count, address);
        return next();
    }
    int i2cWrite(int bus, uint8_t address, const devices::Bytes& data, bool /*hold*/) override {
        require(bus == 0 && address <= 0x7F, "a target can be there");
        require(data.size() <= devices::maxI2cLength, "a write fits");
        return next();
    }
    int spiTransfer(const devices::SpiSetting& setting, const devices::Bytes& sent, uint16_t count,
                    devices::Bytes& received) override {
        require(setting.bits == 8 || setting.bits == 16, "words are of 8 or 16 bits");
        require(setting.mode >= 0 && setting.mode <= 3, "a mode is one of four");
        require(setting.clock >= 10'000 && setting.clock <= 50'000'000, "a clock can be had");
        require(!sent.empty() && sent.size() <= devices::maxSpiBytes && count <= sent.size(),
                "a transfer fits");
        received.assign(sent.begin(), sent.begin() + count);
        return next();
    }
    void pause(unsigned /*microseconds*/) override {}

private:
    int next() { return ++requests % 5 == 0 ? ENXIO : 0; }

    unsigned requests = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Buses buses;
    devices::Switchboard switchboard;
    switchboard.add("i2c-0", std::make_unique<devices::I2cDevice>(buses, 0));
    switchboard.add("spidev0.0", std::make_unique<devices::SpiDevice>(buses, 0));
    while (!input.isEmpty()) {
        const fuzzing::Bytes request = input.bytes();
        const devices::Switchboard::Said said = switchboard.answer(request.data(), request.size());
        require(said.bytes.size() >= devices::answerHead, "every request is answered");
        require(said.bytes.size() <= devices::sizeField + devices::maxMessageSize,
                "an answer is no longer than the program takes");
        virtual_adapter::ByteReader reader(said.bytes);
        require(reader.u32() == said.bytes.size() - devices::sizeField, "an answer says its size");
        const auto result = static_cast<int32_t>(reader.u32());
        require(result >= 0 || reader.remaining() == 0, "what is refused brings nothing");
        if (said.opened && request.size() > 20 && request.size() % 7 == 0) {
            switchboard.close(*said.opened);
        }
    }
    return 0;
}
