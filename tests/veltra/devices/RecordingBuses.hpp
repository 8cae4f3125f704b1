// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "devices/Switchboard.hpp"

#include "bytes/ByteWriter.hpp"
#include "bytes/words.hpp"

#include <cerrno>
#include <string>
#include <vector>

/// Buses that write down what is asked of them and answer with 1, 2, 3 and so on.
class RecordingBuses : public devices::Buses {
public:
    std::vector<std::string> requests;
    int error = 0;

    int i2cRead(int bus, uint8_t address, const devices::Bytes& written, uint16_t count, bool hold,
                devices::Bytes& data) override {
        data = counting(count);
        return record("read " + place(bus, address) + " behind [" + hexOf(written) + "] " +
                      std::to_string(count) + (hold ? " hold" : ""));
    }
    int i2cWrite(int bus, uint8_t address, const devices::Bytes& data, bool hold) override {
        return record("write " + place(bus, address) + " [" + hexOf(data) + "]" +
                      (hold ? " hold" : ""));
    }
    int spiTransfer(const devices::SpiSetting& setting, const devices::Bytes& sent, uint16_t count,
                    devices::Bytes& received) override {
        received = counting(count);
        return record("spi " + std::to_string(setting.chipSelect) + " mode " +
                      std::to_string(setting.mode) + (setting.isActiveHigh ? " high" : "") +
                      (setting.isLsbFirst ? " lsb" : "") + " bits " + std::to_string(setting.bits) +
                      " clock " + std::to_string(setting.clock) + " [" + hexOf(sent) + "] " +
                      std::to_string(count));
    }
    void pause(unsigned microseconds) override {
        requests.push_back("pause " + std::to_string(microseconds));
    }

private:
    static std::string hexOf(const devices::Bytes& bytes) { return virtual_adapter::hexOf(bytes); }
    static std::string place(int bus, uint8_t address) {
        return std::to_string(bus) + ":" + virtual_adapter::hexNumber(address);
    }
    static devices::Bytes counting(uint16_t count) {
        devices::Bytes bytes(count);
        for (size_t i = 0; i < count; ++i) {
            bytes[i] = static_cast<uint8_t>(i + 1);
        }
        return bytes;
    }
    int record(const std::string& request) {
        requests.push_back(request);
        return error;
    }
};

/// One open device, and what its ioctls return.
class OpenDevice {
public:
    explicit OpenDevice(devices::Device& device) : opened(device.open()) {}

    /// The result, and the bytes behind it: "2 0102"; an error as "errno 22".
    std::string control(uint32_t request, const devices::Bytes& arguments) {
        devices::ByteReader reader(arguments);
        return inWords(opened->control(request, reader));
    }
    std::string control(uint32_t request, uint32_t number) {
        return control(request, virtual_adapter::ByteWriter().u32(number).take());
    }
    std::string read(uint32_t count) { return inWords(opened->read(count)); }
    std::string write(const devices::Bytes& data) { return inWords(opened->write(data)); }

private:
    static std::string inWords(const devices::Answer& answer) {
        return answer.result < 0
                   ? "errno " + std::to_string(-answer.result)
                   : std::to_string(answer.result) + " " + virtual_adapter::hexOf(answer.data);
    }

    std::unique_ptr<devices::OpenedDevice> opened;
};
