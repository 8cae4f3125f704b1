/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Scans I2C bus 0 and prints the contents of the EEPROM at address 0x50. */
#include "example.h"

#include <ctype.h>

enum { Bus = 0, EepromAddress = 0x50, EepromSize = 256, BytesPerLine = 16 };
enum { SendAddressOnce = 0, PullUps4700Ohm = 2 };

static bool setUp(VeltraSDK_Handle* handle) {
    return succeeded("Setting the voltage", VeltraSDK_I2cSetBusVoltage(handle, 3300, true)) &&
           succeeded("Initialising the controller",
                     VeltraSDK_I2cControllerInit(handle, Bus, 400000, SendAddressOnce)) &&
           succeeded("Setting the pull-up resistors",
                     VeltraSDK_I2cSetPullUpResistors(handle, Bus, PullUps4700Ohm));
}

static bool scan(VeltraSDK_Handle* handle) {
    uint8_t addresses[255];
    uint8_t sevenBitCount = 0;
    uint8_t tenBitCount = 0;
    if (!succeeded("Scanning the bus",
                   VeltraSDK_I2cScanBus(handle, addresses, sizeof(addresses), &sevenBitCount,
                                        &tenBitCount, Bus, false))) {
        return false;
    }
    printf("Targets on bus %d:", Bus);
    for (int i = 0; i < sevenBitCount; ++i) {
        printf(" 0x%02X", addresses[i]);
    }
    putchar('\n');
    return true;
}

static void printLine(int address, const uint8_t* bytes) {
    printf("  %02X: ", address);
    for (int i = 0; i < BytesPerLine; ++i) {
        printf(" %02X", bytes[i]);
    }
    printf("  ");
    for (int i = 0; i < BytesPerLine; ++i) {
        putchar(isprint(bytes[i]) ? bytes[i] : '.');
    }
    putchar('\n');
}

static bool dumpEeprom(VeltraSDK_Handle* handle) {
    const uint8_t firstByte[] = {0x00};
    uint8_t contents[EepromSize];
    if (!succeeded("Reading the EEPROM",
                   VeltraSDK_I2cRead(handle, Bus, EepromAddress, firstByte, sizeof(firstByte),
                                     sizeof(contents), contents, false))) {
        return false;
    }
    printf("EEPROM at 0x%02X:\n", EepromAddress);
    for (int address = 0; address < EepromSize; address += BytesPerLine) {
        printLine(address, contents + address);
    }
    return true;
}

int main(void) {
    VeltraSDK_Handle* handle = VeltraSDK_Create(1000);
    const bool done =
        connectOrExplain(handle) && setUp(handle) && scan(handle) && dumpEeprom(handle);
    VeltraSDK_Destroy(handle);
    return done ? 0 : 1;
}
