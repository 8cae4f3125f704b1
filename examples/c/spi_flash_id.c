/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Reads the identification of the SPI flash on chip select 0. */
#include "example.h"

enum { ReadIdentification = 0x9F, Undriven = 0xFF };

static bool setUp(VeltraSDK_Handle* handle) {
    return succeeded("Setting the voltage", VeltraSDK_SpiSetBusVoltage(handle, 3300, true)) &&
           succeeded("Initialising the controller",
                     VeltraSDK_SpiControllerInit(handle, SpiBitOrder_MsbFirst, SpiMode_0,
                                                 SpiDataWidth_8Bits, SpiChipSelect_0,
                                                 SpiChipSelectPolarity_ActiveLow, 1000000));
}

static bool printIdentification(VeltraSDK_Handle* handle) {
    const uint8_t command[] = {ReadIdentification};
    /* The first byte comes in while the command goes out, and means nothing. */
    uint8_t received[4];
    if (!succeeded(
            "Reading the identification",
            VeltraSDK_SpiTransfer(handle, command, sizeof(command), received, sizeof(received)))) {
        return false;
    }
    const uint8_t manufacturer = received[1];
    const uint8_t type = received[2];
    const uint8_t capacity = received[3];
    if (manufacturer == Undriven) {
        fputs("There is no flash on chip select 0.\n", stderr);
        return false;
    }
    printf("Manufacturer 0x%02X, type 0x%02X, capacity 0x%02X: %lu KiB\n", manufacturer, type,
           capacity, (1UL << (capacity & 0x1F)) / 1024);
    return true;
}

int main(void) {
    VeltraSDK_Handle* handle = VeltraSDK_Create(1000);
    const bool done = connectOrExplain(handle) && setUp(handle) && printIdentification(handle);
    VeltraSDK_Destroy(handle);
    return done ? 0 : 1;
}
