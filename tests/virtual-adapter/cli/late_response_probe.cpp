// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Reads the virtual EEPROM byte by byte, with one retry after a time-out: PROBE default|strict
// prints how many bytes it got wrong.
#include <veltrasdk/VeltraSDK.hpp>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int timeout = 2000; // what is not late comes sooner on a loaded machine too
constexpr std::string_view contents = "Hello from the virtual adapter!";

void expectSuccess(uint16_t result) {
    if (result != 0) {
        throw std::runtime_error("result " + std::to_string(result));
    }
}

unsigned countWrongBytes(VeltraSDK& sdk) {
    unsigned wrong = 0;
    uint8_t address = 0;
    for (const char expected : contents) {
        std::vector<uint8_t> byte;
        uint16_t result = sdk.i2cRead(0, 0x50, {address}, 1, byte, false);
        if (result != 0) {
            std::puts("timed out, tried again");
            result = sdk.i2cRead(0, 0x50, {address}, 1, byte, false);
        }
        expectSuccess(result);
        wrong += byte.size() == 1 && byte[0] == static_cast<uint8_t>(expected) ? 0U : 1U;
        ++address;
    }
    return wrong;
}

} // namespace

int main(int argc, char** argv) {
    try {
        VeltraSDK sdk(timeout);
        sdk.setStrict(argc > 1 && std::string_view(argv[1]) == "strict");
        if (!sdk.connect("")) {
            throw std::runtime_error("no adapter");
        }
        expectSuccess(sdk.i2cSetBusVoltage(3300, true));
        expectSuccess(sdk.i2cControllerInit(0, 400'000, 0));
        expectSuccess(sdk.i2cSetPullUpResistors(0, 2));
        std::printf("%u wrong\n", countWrongBytes(sdk));
        return 0;
    } catch (const std::exception& error) {
        std::puts(error.what());
        return 1;
    }
}
