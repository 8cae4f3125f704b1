/* Scans I2C bus 0 and prints the contents of the EEPROM at address 0x50. */
#include "example.h"

#include <ctype.h>

enum { bus = 0, eepromAddress = 0x50, eepromSize = 256, bytesPerLine = 16 };
enum { sendAddressOnce = 0, pullUps4700Ohm = 2 };

static bool setUp(VeltraSDK_Handle* handle) {
    return succeeded("Setting the voltage", VeltraSDK_I2cSetBusVoltage(handle, 3300, true)) &&
           succeeded("Initialising the controller",
                     VeltraSDK_I2cControllerInit(handle, bus, 400000, sendAddressOnce)) &&
           succeeded("Setting the pull-up resistors",
                     VeltraSDK_I2cSetPullUpResistors(handle, bus, pullUps4700Ohm));
}

static bool scan(VeltraSDK_Handle* handle) {
    uint8_t addresses[255];
    uint8_t sevenBitCount = 0;
    uint8_t tenBitCount = 0;
    if (!succeeded("Scanning the bus",
                   VeltraSDK_I2cScanBus(handle, addresses, sizeof(addresses), &sevenBitCount,
                                        &tenBitCount, bus, false))) {
        return false;
    }
    printf("Targets on bus %d:", bus);
    for (int i = 0; i < sevenBitCount; ++i) {
        printf(" 0x%02X", addresses[i]);
    }
    putchar('\n');
    return true;
}

static void printLine(int address, const uint8_t* bytes) {
    printf("  %02X: ", address);
    for (int i = 0; i < bytesPerLine; ++i) {
        printf(" %02X", bytes[i]);
    }
    printf("  ");
    for (int i = 0; i < bytesPerLine; ++i) {
        putchar(isprint(bytes[i]) ? bytes[i] : '.');
    }
    putchar('\n');
}

static bool dumpEeprom(VeltraSDK_Handle* handle) {
    const uint8_t firstByte[] = {0x00};
    uint8_t contents[eepromSize];
    if (!succeeded("Reading the EEPROM",
                   VeltraSDK_I2cRead(handle, bus, eepromAddress, firstByte, sizeof(firstByte),
                                     sizeof(contents), contents, false))) {
        return false;
    }
    printf("EEPROM at 0x%02X:\n", eepromAddress);
    for (int address = 0; address < eepromSize; address += bytesPerLine) {
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
