/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

/* Brings the I3C bus up, prints its targets, reads and writes one of them, and waits for what
   targets send of their own accord: an in-band interrupt and a hot-join.

   The bus, its table and its events are the same on every board; the registers are those of the
   virtual adapter's targets. */
#include "example.h"
#include "inbox.h"

/* Events of ENEC and DISEC, and device characteristics registers that the example looks for. */
enum { EventInterrupt = 0x01, EventHotJoin = 0x08 };
enum { DcrTemperatureSensor = 0x63, DcrMicrocontroller = 0xC6 };

/* The registers of the virtual adapter's temperature sensor and microcontroller. */
enum { RegisterTemperature = 0x00, RegisterAlert = 0x02, RegisterScratch = 0x04 };
enum { RegisterModuleSupply = 0x00 };

static const char* kindOf(uint8_t dcr) {
    switch (dcr) {
    case 0x00:
        return "generic device";
    case 0x41:
        return "accelerometer";
    case DcrTemperatureSensor:
        return "temperature sensor";
    case DcrMicrocontroller:
        return "microcontroller";
    default:
        return "device of another kind";
    }
}

static void printTarget(uint8_t address, const uint8_t pid[6], uint8_t bcr, uint8_t dcr) {
    static const char* const abilities[] = {"limited speed",     "in-band interrupts",
                                            "interrupt payload", "can be offline",
                                            "virtual targets",   "advanced capabilities"};
    const unsigned manufacturer = ((unsigned)pid[0] << 8 | pid[1]) >> 1;
    const unsigned part = (unsigned)pid[2] << 8 | pid[3];
    printf("  0x%02X: %s (DCR 0x%02X)\n", address, kindOf(dcr), dcr);
    printf("    PID %02X%02X%02X%02X%02X%02X: manufacturer 0x%04X, part 0x%04X, instance %d\n",
           pid[0], pid[1], pid[2], pid[3], pid[4], pid[5], manufacturer, part, pid[4] >> 4);
    printf("    BCR 0x%02X: %s", bcr, bcr >> 6 == 1 ? "could be the controller" : "target");
    for (unsigned bit = 0; bit < sizeof abilities / sizeof abilities[0]; ++bit) {
        if ((bcr >> bit & 1) != 0) {
            printf(", %s", abilities[bit]);
        }
    }
    putchar('\n');
}

static bool bringBusUp(VeltraSDK_Handle* handle) {
    return succeeded("Setting the bus voltage", VeltraSDK_I3cSetBusVoltage(handle, 1800)) &&
           succeeded("Initialising the controller",
                     VeltraSDK_I3cControllerInit(handle, I3cPushPullRate_8_MHz,
                                                 I3cOpenDrainTransferRate_1_MHz,
                                                 I2cTransferRate_0_4_MHz, I3cDriveStrength_8_mA)) &&
           /* Without records of its own the controller assigns addresses to all it finds. */
           succeeded("Initialising the bus", VeltraSDK_I3cInitBus(handle, NULL, 0));
}

/* The address of the first target of the kind, or 0. */
static uint8_t find(const I3cTargetInfo* table, uint8_t count, uint8_t dcr) {
    for (uint8_t i = 0; i < count; ++i) {
        if (table[i].dcr == dcr) {
            return table[i].dynamicAddress;
        }
    }
    fprintf(stderr, "There is no %s on the bus.\n", kindOf(dcr));
    return 0;
}

static bool readRegisters(VeltraSDK_Handle* handle, uint8_t address, uint8_t first, uint16_t length,
                          uint8_t* values) {
    uint16_t count = 0;
    return succeeded("Reading registers",
                     VeltraSDK_I3cSdrRead(handle, address, &first, 1, length, values, &count,
                                          I3cTransferFlags_None)) &&
           count == length;
}

static bool writeRegister(VeltraSDK_Handle* handle, uint8_t address, uint8_t index, uint8_t value) {
    return succeeded("Writing a register", VeltraSDK_I3cSdrWrite(handle, address, &index, 1, &value,
                                                                 1, I3cTransferFlags_None));
}

static bool useSensor(VeltraSDK_Handle* handle, uint8_t address) {
    uint8_t temperature[2];
    uint8_t scratch = 0;
    if (!readRegisters(handle, address, RegisterTemperature, 2, temperature) ||
        !writeRegister(handle, address, RegisterScratch, 0x5A) ||
        !readRegisters(handle, address, RegisterScratch, 1, &scratch)) {
        return false;
    }
    printf("Temperature: %.1f degrees Celsius\n",
           (int16_t)(temperature[0] << 8 | temperature[1]) / 256.0);
    printf("Scratch register: wrote 0x5A, read 0x%02X\n", scratch);
    return true;
}

static bool receiveInterrupt(VeltraSDK_Handle* handle, uint8_t address) {
    InboxItem item;
    I3cIbiData interrupt;
    if (!succeeded("Enabling interrupts",
                   VeltraSDK_I3cCccENECDirect(handle, address, EventInterrupt)) ||
        !writeRegister(handle, address, RegisterAlert, 0x21)) {
        return false;
    }
    if (!takeFromInbox(NotificationKind_I3cIbi, &item) ||
        !VeltraSDK_notificationAsI3cIbi(&item.notification, &interrupt)) {
        fputs("No in-band interrupt came.\n", stderr);
        return false;
    }
    printf("In-band interrupt from 0x%02X:", interrupt.address);
    for (size_t i = 0; i < interrupt.payloadLength && i < item.notification.size - 8; ++i) {
        printf(" %02X", interrupt.payload[i]);
    }
    putchar('\n');
    return true;
}

static bool receiveHotJoin(VeltraSDK_Handle* handle, uint8_t supplyAddress) {
    InboxItem item;
    I3cHotJoinData joined;
    /* The broadcast admits hot-joins; the microcontroller switches a module's supply on. */
    if (!succeeded("Enabling hot-joins", VeltraSDK_I3cCccENECBroadcast(handle, EventHotJoin)) ||
        !writeRegister(handle, supplyAddress, RegisterModuleSupply, 1)) {
        return false;
    }
    if (!takeFromInbox(NotificationKind_I3cHotJoin, &item) ||
        !VeltraSDK_notificationAsI3cHotJoin(&item.notification, &joined)) {
        fputs("No target joined.\n", stderr);
        return false;
    }
    puts("Joined the bus:");
    printTarget(joined.dynamicAddress, joined.pid, joined.bcrDcr[0], joined.bcrDcr[1]);
    return true;
}

static bool tour(VeltraSDK_Handle* handle) {
    I3cTargetInfo table[16];
    uint8_t count = 0;
    if (!bringBusUp(handle) || !succeeded("Reading the device table",
                                          VeltraSDK_I3cGetDeviceTable(handle, table, 16, &count))) {
        return false;
    }
    puts("Targets on the bus:");
    for (uint8_t i = 0; i < count; ++i) {
        printTarget(table[i].dynamicAddress, table[i].pid, table[i].bcr, table[i].dcr);
    }
    const uint8_t sensor = find(table, count, DcrTemperatureSensor);
    const uint8_t supply = find(table, count, DcrMicrocontroller);
    return sensor != 0 && supply != 0 && useSensor(handle, sensor) &&
           receiveInterrupt(handle, sensor) && receiveHotJoin(handle, supply);
}

int main(void) {
    VeltraSDK_Handle* handle = VeltraSDK_Create(1000);
    VeltraSDK_onNotification(handle, putIntoInbox); /* before connecting */
    const bool good = connectOrExplain(handle) && tour(handle);
    VeltraSDK_Destroy(handle);
    return good ? 0 : 1;
}
