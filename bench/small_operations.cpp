// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Reads the level of a pin as often as its argument says.

#include <veltrasdk/VeltraSDK.hpp>

#include <cstdlib>

int main(int argc, char** argv) {
    VeltraSDK sdk(10000);
    if (argc != 2 || !sdk.connect("")) {
        return EXIT_FAILURE;
    }
    constexpr uint16_t millivolts = 3300;
    constexpr GpioPinNumber pin = GpioPinNumber_0;
    if (sdk.gpioSetVoltage(millivolts, true) != 0 ||
        sdk.gpioConfigurePin(pin, GpioFunctionality_Input, GpioLogicLevel_Low) != 0) {
        return EXIT_FAILURE;
    }
    GpioLogicLevel level{};
    for (long left = std::strtol(argv[1], nullptr, 10); left > 0; --left) {
        if (sdk.gpioDigitalRead(pin, level) != 0) {
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
