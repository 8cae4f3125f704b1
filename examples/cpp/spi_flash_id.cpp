// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Reads the identification of the SPI flash on chip select 0.
#include "example.hpp"

namespace {

constexpr uint8_t readIdentification = 0x9F;
constexpr uint8_t undriven = 0xFF;

bool setUp(VeltraSDK& sdk) {
    return succeeded("Setting the voltage", sdk.spiSetBusVoltage(3300, true)) &&
           succeeded("Initialising the controller",
                     sdk.spiControllerInit(SpiBitOrder_MsbFirst, SpiMode_0, SpiDataWidth_8Bits,
                                           SpiChipSelect_0, SpiChipSelectPolarity_ActiveLow,
                                           1'000'000));
}

bool printIdentification(VeltraSDK& sdk) {
    std::vector<uint8_t> command{readIdentification};
    std::vector<uint8_t> received;
    if (!succeeded("Reading the identification", sdk.spiTransfer(command, received, 4))) {
        return false;
    }
    // The first byte comes in while the command goes out, and means nothing.
    if (received.size() != 4 || received[1] == undriven) {
        std::cerr << "There is no flash on chip select 0.\n";
        return false;
    }
    const int manufacturer = received[1];
    const int type = received[2];
    const int capacity = received[3];
    std::cout << std::hex << std::uppercase << "Manufacturer 0x" << manufacturer << ", type 0x"
              << type << ", capacity 0x" << capacity << ": " << std::dec
              << (1UL << (capacity & 0x1F)) / 1024 << " KiB\n";
    return true;
}

} // namespace

int main() {
    VeltraSDK sdk(1000);
    return connectOrExplain(sdk) && setUp(sdk) && printIdentification(sdk) ? 0 : 1;
}
