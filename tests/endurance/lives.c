/* SPDX-FileCopyrightText: 2026 The libveltrasdk authors */
/* SPDX-License-Identifier: MIT */

#include "support.h"

#include <stdio.h>
#include <string.h>

/* Every way through a life has its turn: both modes, with and without a queue, found by path and by
   serial number, disconnected or destroyed as it is. */
static void live(unsigned long life) {
    char serialNumber[256];
    VeltraSDK_Handle* const handle = VeltraSDK_Create(60000);
    VeltraSDK_SetStrict(handle, life % 2 == 0);
    if (life % 4 < 2 && VeltraSDK_OpenNotificationQueue(handle, 65536) < 0) {
        fail("life %lu: the queue cannot be opened", life);
    }
    if (!(life % 8 < 4 ? VeltraSDK_Connect(handle, NULL)
                       : VeltraSDK_ConnectWithSerialNumber(handle, "VA-0001"))) {
        fail("life %lu: the adapter cannot be connected", life);
    }
    if (VeltraSDK_GetUsbString(handle, 3, serialNumber, sizeof serialNumber) != 0 ||
        strcmp(serialNumber, "VA-0001") != 0 || VeltraSDK_GpioSetVoltage(handle, 3300, true) != 0) {
        fail("life %lu: the adapter does not answer", life);
    }
    if (life % 16 < 8) {
        VeltraSDK_Disconnect(handle);
    }
    VeltraSDK_Destroy(handle);
}

void runLives(unsigned long count) {
    const unsigned long first = 16; /* of each kind one, so that what is made once is there */
    for (unsigned long life = 0; life < first; ++life) {
        live(life);
    }
    const double began = now();
    const struct Usage before = usage();
    for (unsigned long life = 0; life < count; ++life) {
        live(life);
    }
    const struct Usage after = usage();
    requireSame(before, after);
    printf("%lu in %.0f s|%u descriptors and %u threads before and behind, %zu and %zu bytes of "
           "the heap in use, "
           "%zu and %zu kB resident\n",
           count, now() - began, after.descriptors, after.threads, before.heap, after.heap,
           before.resident / 1024, after.resident / 1024);
}
